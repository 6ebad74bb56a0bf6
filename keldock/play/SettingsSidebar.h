#pragma once

#include <QFrame>

class KelPlaybackTrackManager;

/// The settings of what is painted over a recording and of its sound; every change is seen at once.
class SettingsSidebar : public QFrame
{
    Q_OBJECT

public:
    /// `manager` is not owned and must outlive the sidebar.
    explicit SettingsSidebar(KelPlaybackTrackManager *manager, QWidget *parent = nullptr);
};
