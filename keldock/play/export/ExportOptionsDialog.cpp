#include "play/export/ExportOptionsDialog.h"

#include "common/ComposedFrame.h"
#include "common/Units.h"
#include "play/player/Player.h"
#include "widget/ChoiceBox.h"
#include "widget/ScaleFactor.h"
#include "widgets/WindowStore.h"

#include <KelMovie/EncodeFormatPanel.h>
#include <KelMovie/KelPlaybackTrackManager.h>
#include <KelMovie/SaveQualityPanel.h>

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>

#include <algorithm>
#include <functional>

namespace
{

const QString kRateKey = QStringLiteral("Export/fps");
const QString kSizeKey = QStringLiteral("Export/percent");
constexpr int kRecordedRate = 0;
constexpr int kMargin = 14; // same as the module's panels

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
    m_frameRate = new ChoiceBox(this);
    m_frameRate->addItem(tr("As recorded (%1 fps)").arg(manager.fps()), kRecordedRate);
    for (const int rate : {60, 50, 30, 25, 24, 20, 15, 10, 5})
        m_frameRate->addItem(tr("%1 fps").arg(rate), rate);
    select(m_frameRate, kRateKey, kRecordedRate);

    m_frameSize = new ChoiceBox(this);
    for (const int percent : sizePercents()) {
        const QSize size = frameSize(percent);
        m_frameSize->addItem(QStringLiteral("%1 × %2").arg(size.width()).arg(size.height()), percent);
    }
    select(m_frameSize, kSizeKey, 100);

    for (const ChoiceBox *const box : {m_frameRate, m_frameSize})
        connect(box, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &ExportOptionsDialog::updateEstimate);
    updateEstimate();

    auto *const text = new QLabel(summary(), this);
    text->setObjectName(QStringLiteral("ExportSummary"));
    text->setWordWrap(true);

    auto *const grid = new QGridLayout;
    const int margin = qRound(kMargin * scaleFactor(this));
    grid->setContentsMargins(margin, 0, margin, margin);
    grid->setVerticalSpacing(margin / 2);
    addRow(grid, tr("F&rame rate"), tr("A higher frame rate makes motion smoother and the file larger"), m_frameRate);
    addRow(grid, tr("Si&ze"), tr("Width and height in pixels; a smaller size makes a smaller file"), m_frameSize);
    grid->addWidget(text, grid->rowCount(), 0, 1, 2);
    return grid;
}

QLayout *ExportOptionsDialog::createButtons()
{
    auto *const cancel = new QPushButton(tr("Cancel"), this);
    cancel->setToolTip(tr("Return to the recording"));
    connect(cancel, &QPushButton::clicked, this, &ExportOptionsDialog::reject);
    auto *const proceed = new QPushButton(tr("&Choose File..."), this);
    proceed->setObjectName(QStringLiteral("PrimaryButton"));
    proceed->setToolTip(tr("Choose where to save the file, then export"));
    proceed->setDefault(true);
    proceed->setFocus();
    connect(proceed, &QPushButton::clicked, this, &ExportOptionsDialog::accept);

    auto *const row = new QHBoxLayout;
    const int margin = qRound(kMargin * scaleFactor(this));
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
    const QString factor = Units::speed(speed);
    const QString length = Units::preciseClock(qRound((m_player.rangeEndMs() - m_player.rangeStartMs()) / speed));
    if (!m_player.isTrimmed())
        return tr("Exports the whole recording at %1 speed. The file will be %2 long.").arg(factor, length);
    return tr("Exports the part from %1 to %2 at %3 speed. The file will be %4 long.")
        .arg(Units::preciseClock(m_player.rangeStartMs()), Units::preciseClock(m_player.rangeEndMs()), factor, length);
}

void ExportOptionsDialog::updateEstimate()
{
    m_quality->setFrameRate(fps());
    m_quality->setFrameSize(frameSize());
}

int ExportOptionsDialog::fps() const
{
    const int chosen = m_frameRate->currentData().toInt();
    return chosen == kRecordedRate ? m_player.manager()->fps() : chosen;
}

QSize ExportOptionsDialog::frameSize() const
{
    return frameSize(m_frameSize->currentData().toInt());
}

/// Of the recorded pixels; the logical size of a scaled screen, in which it looks as large as it was, is among them.
QVector<int> ExportOptionsDialog::sizePercents() const
{
    QVector<int> percents{100, 75, 50, 33, 25};
    if (!percents.contains(logicalPercent()))
        percents.append(logicalPercent());
    std::sort(percents.begin(), percents.end(), std::greater<>());
    return percents;
}

int ExportOptionsDialog::logicalPercent() const
{
    return qRound(100.0 / m_player.manager()->devicePixelRatio());
}

QSize ExportOptionsDialog::frameSize(int percent) const
{
    const KelPlaybackTrackManager &manager = *m_player.manager();
    return percent == logicalPercent() ? manager.frameSize() : recordedPixels(manager) * (percent / 100.0);
}

void ExportOptionsDialog::accept()
{
    windowStore().setValue(kRateKey, m_frameRate->currentData());
    windowStore().setValue(kSizeKey, m_frameSize->currentData());
    QDialog::accept();
}
