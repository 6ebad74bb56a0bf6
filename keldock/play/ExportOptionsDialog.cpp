#include "play/ExportOptionsDialog.h"

#include "play/Player.h"
#include "play/TimeText.h"

#include <KelMovie/EncodeFormatPanel.h>
#include <KelMovie/KelPlaybackTrackManager.h>
#include <KelMovie/SaveQualityPanel.h>

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QSettings>
#include <QVBoxLayout>

namespace
{

const QString kRateKey = QStringLiteral("Export/fps");
constexpr int kRecordedRate = 0;

} // namespace

ExportOptionsDialog::ExportOptionsDialog(const Player &player, QWidget *parent)
    : QDialog(parent)
    , m_player(player)
{
    setWindowTitle(tr("Export Recording"));
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);

    auto *const format = new EncodeFormatPanel(this);
    auto *const quality = new SaveQualityPanel(this);
    quality->setPlaybackManager(player.manager());
    if (player.isTrimmed())
        quality->setRange(player.rangeStartMs(), player.rangeEndMs());

    m_rates = new QComboBox(this);
    m_rates->setAccessibleName(tr("Frames a second"));
    m_rates->setToolTip(tr("More frames a second make smoother motion and a larger file"));
    fillRates();
    auto *const rate = new QFormLayout;
    rate->addRow(tr("F&rames a second"), m_rates);

    auto *const summary = new QLabel(this);
    summary->setObjectName(QStringLiteral("ExportSummary"));
    summary->setWordWrap(true);
    const double speed = player.speed();
    const int span = player.rangeEndMs() - player.rangeStartMs();
    summary->setText(player.isTrimmed()
                         ? tr("Exports the part from %1 to %2 at speed %3; the file plays for %4.")
                               .arg(TimeText::precise(player.rangeStartMs()), TimeText::precise(player.rangeEndMs()),
                                    TimeText::factor(speed), TimeText::precise(qRound(span / speed)))
                         : tr("Exports the whole recording at speed %1; the file plays for %2.")
                               .arg(TimeText::factor(speed), TimeText::precise(qRound(span / speed))));

    auto *const buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
    QPushButton *const proceed = buttons->addButton(tr("&Choose File..."), QDialogButtonBox::AcceptRole);
    proceed->setObjectName(QStringLiteral("PrimaryButton"));
    proceed->setToolTip(tr("Asks where to save the file, then exports"));
    proceed->setDefault(true);
    buttons->button(QDialogButtonBox::Cancel)->setToolTip(tr("Goes back to the recording"));
    connect(buttons, &QDialogButtonBox::accepted, this, &ExportOptionsDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &ExportOptionsDialog::reject);

    auto *const layout = new QVBoxLayout(this);
    layout->addWidget(format);
    layout->addWidget(quality);
    layout->addLayout(rate);
    layout->addWidget(summary);
    layout->addWidget(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    proceed->setFocus();
}

void ExportOptionsDialog::fillRates()
{
    const int recorded = m_player.manager()->fps();
    m_rates->addItem(tr("As recorded (%1)").arg(recorded), kRecordedRate);
    for (const int rate : {60, 50, 30, 25, 24, 20, 15, 10, 5})
        m_rates->addItem(QString::number(rate), rate);
    m_rates->setCurrentIndex(qMax(0, m_rates->findData(QSettings().value(kRateKey, kRecordedRate))));
}

int ExportOptionsDialog::fps() const
{
    const int chosen = m_rates->currentData().toInt();
    return chosen == kRecordedRate ? m_player.manager()->fps() : chosen;
}

void ExportOptionsDialog::accept()
{
    QSettings().setValue(kRateKey, m_rates->currentData());
    QDialog::accept();
}
