#pragma once

#include <QImage>

/// A picture with the statistics of a photograph: clouds of all sizes in colours that flow into each other, with the
/// noise of a camera. The same for the same seed.
QImage photograph(const QSize &size, uint seed);
