#pragma once

#include <QImage>

class KelPlaybackTrackManager;

/// The picture that a loaded recording shows now, all layers included, in physical pixels.
/// Uses the memory of `previous` again where it fits; null without memory, or when there is nothing to see.
QImage composedPicture(KelPlaybackTrackManager *manager, QImage previous = QImage());
