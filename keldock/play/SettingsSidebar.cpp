#include "play/SettingsSidebar.h"

#include "widgets/ScrollPage.h"

#include <KelMovie/AudioSettingsPanel.h>
#include <KelMovie/CursorSettingsPanel.h>
#include <KelMovie/KelPlaybackTrackManager.h>
#include <KelMovie/KelRecordingMetadata.h>
#include <KelMovie/KeyboardSettingsPanel.h>
#include <KelMovie/ProgressSettingsPanel.h>

#include <QTabWidget>
#include <QVBoxLayout>

namespace
{

template <typename Panel>
Panel *addTab(QTabWidget *tabs, const QString &title, const QString &toolTip, KelPlaybackTrackManager *manager)
{
    auto *const panel = new Panel;
    QObject::connect(panel, &Panel::sigConfigUpdated, manager, &KelPlaybackTrackManager::updateSettings);
    // A click on a control leaves the keyboard to the player.
    for (QWidget *const control : panel->template findChildren<QWidget *>()) {
        if (control->focusPolicy() == Qt::StrongFocus || control->focusPolicy() == Qt::WheelFocus)
            control->setFocusPolicy(Qt::TabFocus);
    }
    tabs->setTabToolTip(tabs->addTab(new ScrollPage(panel), title), toolTip);
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
