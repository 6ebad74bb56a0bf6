#pragma once

#include <QString>
#include <QtGlobal>

namespace kel
{

/// The key that is shown for a recorded one: left, right and shifted variants are shown as one key. 0 for keys that
/// only modify what another key types, such as AltGr: the typed character is shown instead.
int shownKey(int key);

/// The Qt::KeyboardModifier of a shown key, Qt::NoModifier for any other key.
quint32 modifierOfKey(int key);

/// Whether the key is a letter or a digit. Consecutive ones are joined into one text.
bool isCharacterKey(int key);

/// Whether the key types a character by itself or with Shift or AltGr.
bool typesCharacter(int key);

/// Whether the key types no character but changes the next one: a dead key or Compose.
bool composesCharacter(int key);

/// The text for a key: the character that it types, or its name. Never empty, and printable for any value.
QString keyText(int key);

/// The text for a key that types a character, as a part of continuous text: spaces are visible characters, not names.
QString typedText(int key);

/// "Shift+Ctrl+" etc. for a set of Qt::KeyboardModifier; empty for none.
QString modifierPrefix(quint32 modifiers);

} // namespace kel
