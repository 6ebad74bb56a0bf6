#include "play/SettingsSidebar.h"

#include <KelMovie/AudioSettingsPanel.h>
#include <KelMovie/CursorSettingsPanel.h>
#include <KelMovie/KelPlaybackTrackManager.h>
#include <KelMovie/KelRecordingMetadata.h>
#include <KelMovie/KeyboardSettingsPanel.h>
#include <KelMovie/ProgressSettingsPanel.h>

#include <QScrollArea>
#include <QTabWidget>
#include <QVBoxLayout>

namespace
{

template <typename Panel>
Panel *addTab(QTabWidget *tabs, const QString &title, const QString &toolTip, KelPlaybackTrackManager *manager)
{
    auto *const panel = new Panel;
    QObject::connect(panel, &Panel::sigConfigUpdated, manager, &KelPlaybackTrackManager::updateSettings);
    auto *const scroller = new QScrollArea;
    scroller->setFrameShape(QFrame::NoFrame);
    scroller->setWidgetResizable(true);
    scroller->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroller->setFocusPolicy(Qt::NoFocus);
    scroller->setWidget(panel);
    scroller->setMinimumWidth(panel->minimumSizeHint().width());
    tabs->setTabToolTip(tabs->addTab(scroller, title), toolTip);
    return panel;
}

} // namespace

SettingsSidebar::SettingsSidebar(KelPlaybackTrackManager *manager, QWidget *parent)
    : QFrame(parent)
{
    setObjectName(QStringLiteral("SettingsSidebar"));
    auto *const tabs = new QTabWidget(this);
    tabs->setDocumentMode(true);
    tabs->setAccessibleName(tr("Playback settings"));
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(tabs);

    const KelRecordingMetadata &recorded = manager->metadata();
    // Without the settings for future recordings.
    if (recorded.mouseTrack) {
        addTab<CursorSettingsPanel>(tabs, tr("Pointer"), tr("Pointer and clicks"), manager)->setRecordingShown(false);
    }
    if (recorded.keyboardTrack) {
        addTab<KeyboardSettingsPanel>(tabs, tr("Keys"), tr("Keystrokes"), manager)->setRecordingShown(false);
    }
    addTab<ProgressSettingsPanel>(tabs, tr("Time"), tr("Time display"), manager);
    if (manager->hasSound()) {
        auto *const sound = addTab<AudioSettingsPanel>(tabs, tr("Sound"), tr("System sound and microphone"), manager);
        sound->setPlaybackManager(manager);
        sound->setRecordingShown(false);
    }
}
