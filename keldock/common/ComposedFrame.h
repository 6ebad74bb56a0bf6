#pragma once

#include <QImage>
#include <QSize>

class KelPlaybackTrackManager;

/// The size of a frame as it was recorded: in physical pixels, of which a scaled screen has more than logical ones.
QSize recordedPixels(const KelPlaybackTrackManager &manager);

/// The current frame of a loaded recording with all its layers, in physical pixels. Reuses `previous`, with its pixel
/// format, when it has the right size. Null when there is nothing to show or not enough memory. GUI thread.
QImage composedFrame(KelPlaybackTrackManager *manager, QImage previous = QImage());
