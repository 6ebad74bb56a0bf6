#include "play/export/ExportOptionsDialog.h"

#include "common/TimeText.h"
#include "play/player/Player.h"
#include "style/KelStyleTheme.h"
#include "widget/ChoiceBox.h"
#include "widgets/WindowStore.h"

#include <KelMovie/EncodeFormatPanel.h>
#include <KelMovie/KelPlaybackTrackManager.h>
#include <KelMovie/SaveQualityPanel.h>

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>

using namespace kel;

namespace
{

const QString kRateKey = QStringLiteral("Export/fps");
const QString kSizeKey = QStringLiteral("Export/percent");
constexpr int kRecordedRate = 0;
constexpr int kMargin = 14; // that of the panels

void select(ChoiceBox *box, const QString &key, int fallback)
{
    box->setCurrentIndex(qMax(0, box->findData(windowStore().value(key, fallback).toInt())));
}

void addRow(QGridLayout *grid, const QString &text, const QString &toolTip, ChoiceBox *box)
{
    auto *const label = new QLabel(text);
    label->setBuddy(box);
    box->setAccessibleName(QString(text).remove(QLatin1Char('&')));
    for (QWidget *const widget : {static_cast<QWidget *>(label), static_cast<QWidget *>(box)})
        widget->setToolTip(toolTip);
    const int row = grid->rowCount();
    grid->addWidget(label, row, 0);
    grid->addWidget(box, row, 1, Qt::AlignRight);
}

} // namespace

ExportOptionsDialog::ExportOptionsDialog(const Player &player, QWidget *parent)
    : QDialog(parent)
    , m_player(player)
{
    setWindowTitle(tr("Export Recording"));
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    auto *const format = new EncodeFormatPanel(this);
    m_quality = new SaveQualityPanel(this);
    m_quality->setPlaybackManager(player.manager());
    if (player.isTrimmed())
        m_quality->setRange(player.rangeStartMs(), player.rangeEndMs());

    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(format);
    layout->addWidget(m_quality);
    layout->addLayout(createChoices());
    layout->addLayout(createButtons());
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

QLayout *ExportOptionsDialog::createChoices()
{
    const KelPlaybackTrackManager &manager = *m_player.manager();
    m_rates = new ChoiceBox(this);
    m_rates->addItem(tr("As recorded (%1)").arg(manager.fps()), kRecordedRate);
    for (const int rate : {60, 50, 30, 25, 24, 20, 15, 10, 5})
        m_rates->addItem(QString::number(rate), rate);
    select(m_rates, kRateKey, kRecordedRate);

    m_sizes = new ChoiceBox(this);
    for (const int percent : {100, 75, 50, 33, 25}) {
        const QSize size = manager.pictureSize() * (percent / 100.0);
        m_sizes->addItem(tr("%1 x %2").arg(size.width()).arg(size.height()), percent);
    }
    select(m_sizes, kSizeKey, 100);

    for (const ChoiceBox *const box : {m_rates, m_sizes})
        connect(box, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &ExportOptionsDialog::updateEstimate);
    updateEstimate();

    auto *const text = new QLabel(summary(), this);
    text->setObjectName(QStringLiteral("ExportSummary"));
    text->setWordWrap(true);

    auto *const grid = new QGridLayout;
    const int margin = qRound(kMargin * KelStyleTheme::scaleOf(this));
    grid->setContentsMargins(margin, 0, margin, margin);
    grid->setVerticalSpacing(margin / 2);
    addRow(grid, tr("F&rames a second"), tr("More frames make smoother motion and a larger file"), m_rates);
    addRow(grid, tr("Picture si&ze"), tr("Pixels of the file; a smaller picture makes a smaller file"), m_sizes);
    grid->addWidget(text, grid->rowCount(), 0, 1, 2);
    return grid;
}

QLayout *ExportOptionsDialog::createButtons()
{
    auto *const cancel = new QPushButton(tr("Cancel"), this);
    cancel->setToolTip(tr("Goes back to the recording"));
    connect(cancel, &QPushButton::clicked, this, &ExportOptionsDialog::reject);
    auto *const proceed = new QPushButton(tr("&Choose File..."), this);
    proceed->setObjectName(QStringLiteral("PrimaryButton"));
    proceed->setToolTip(tr("Asks where to save the file, then exports"));
    proceed->setDefault(true);
    proceed->setFocus();
    connect(proceed, &QPushButton::clicked, this, &ExportOptionsDialog::accept);

    auto *const row = new QHBoxLayout;
    const int margin = qRound(kMargin * KelStyleTheme::scaleOf(this));
    row->setContentsMargins(margin, 0, margin, margin);
    row->setSpacing(margin / 2);
    row->addStretch();
    row->addWidget(cancel);
    row->addWidget(proceed);
    return row;
}

QString ExportOptionsDialog::summary() const
{
    const double speed = m_player.speed();
    const QString factor = TimeText::factor(speed);
    const QString length = TimeText::precise(qRound((m_player.rangeEndMs() - m_player.rangeStartMs()) / speed));
    if (!m_player.isTrimmed())
        return tr("Exports the whole recording at speed %1. The file plays for %2.").arg(factor, length);
    return tr("Exports the part from %1 to %2 at speed %3. The file plays for %4.")
        .arg(TimeText::precise(m_player.rangeStartMs()), TimeText::precise(m_player.rangeEndMs()), factor, length);
}

void ExportOptionsDialog::updateEstimate()
{
    m_quality->setFrameRate(fps());
    m_quality->setFrameSize(pictureSize());
}

int ExportOptionsDialog::fps() const
{
    const int chosen = m_rates->currentData().toInt();
    return chosen == kRecordedRate ? m_player.manager()->fps() : chosen;
}

QSize ExportOptionsDialog::pictureSize() const
{
    const int percent = m_sizes->currentData().toInt();
    return percent == 100 ? QSize() : m_player.manager()->pictureSize() * (percent / 100.0);
}

void ExportOptionsDialog::accept()
{
    windowStore().setValue(kRateKey, m_rates->currentData());
    windowStore().setValue(kSizeKey, m_sizes->currentData());
    QDialog::accept();
}
