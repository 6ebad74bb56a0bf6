#pragma once

#include <QString>
#include <QtGlobal>

namespace kel
{

/// The key that is shown for a recorded one: left, right and shifted forms of a key are one key to a viewer. 0 for keys
/// that only choose what another key types, such as AltGr: the viewer sees what was typed.
int shownKey(int key);

/// The Qt::KeyboardModifier of a shown key, Qt::NoModifier for any other key.
quint32 modifierOfKey(int key);

/// A letter or a digit, which typed in a row make one text.
bool isCharacterKey(int key);

/// What a box calls a key: what it types, or its name. Never empty, and legible for every number.
QString keyText(int key);

/// "Shift+Ctrl+" and so on for a set of Qt::KeyboardModifier; empty for none.
QString modifierPrefix(quint32 modifiers);

} // namespace kel
