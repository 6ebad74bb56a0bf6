#pragma once

#include <QImage>

/// An image with the statistics of a photograph: clouds of all sizes in blending colors, with camera noise.
/// Deterministic for a seed.
QImage photograph(const QSize &size, uint seed);
