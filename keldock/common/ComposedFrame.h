#pragma once

#include <QImage>

class KelPlaybackTrackManager;

/// The current frame of a loaded recording with all its layers, in physical pixels. Reuses `previous`, with its pixel
/// format, when it has the right size. Null when there is nothing to show or not enough memory. GUI thread.
QImage composedFrame(KelPlaybackTrackManager *manager, QImage previous = QImage());
