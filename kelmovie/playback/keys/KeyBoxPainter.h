#pragma once

#include "playback/keys/KeyBoxLayout.h"

class QPainter;

namespace kel
{

/// Paints a box sharply, whatever the painter's scale.
void paintKeyBox(QPainter &painter, const KeyBoxLayout &layout, const KeyOverlayStyle &style);

} // namespace kel
