#pragma once

#include "playback/keys/KeyBoxLayout.h"

class QPainter;

namespace kel
{

/// Paints a box at the device resolution of the painter, aligned to its pixels, so that it is sharp at any scale.
void paintKeyBox(QPainter &painter, const KeyBoxLayout &layout, const KeyOverlayStyle &style);

} // namespace kel
