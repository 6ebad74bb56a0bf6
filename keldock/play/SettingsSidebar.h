#pragma once

#include <QFrame>

class KelPlaybackTrackManager;

/// The settings for the sound of a recording and for what is painted over it. Changes take effect immediately. GUI
/// thread.
class SettingsSidebar : public QFrame
{
    Q_OBJECT

public:
    /// `manager` is not owned and must outlive the sidebar.
    explicit SettingsSidebar(KelPlaybackTrackManager *manager, QWidget *parent = nullptr);
};
