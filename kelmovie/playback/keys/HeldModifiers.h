#pragma once

#include "playback/keys/KeyNames.h"
#include "recording/input/KeyLogReader.h"

#include <QtGlobal>

namespace kel
{

/// Tracks which modifiers are held.
class HeldModifiers
{
public:
    void apply(const KeyRecord &record)
    {
        const quint32 modifier = modifierOfKey(record.key);
        m_flags = record.pressed ? m_flags | modifier : m_flags & ~modifier;
    }
    bool has(int key) const { return (m_flags & modifierOfKey(key)) != 0; }
    /// Qt::KeyboardModifiers.
    quint32 flags() const { return m_flags; }

private:
    quint32 m_flags = 0;
};

} // namespace kel
