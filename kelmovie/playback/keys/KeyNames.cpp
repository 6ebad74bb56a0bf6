#include "playback/keys/KeyNames.h"

#include <QChar>
#include <QKeySequence>
#include <QMetaEnum>

#include <algorithm>

namespace kel
{

namespace
{

/// Values of Qt::Key from here on are named keys; lower values are the characters that the keys type.
constexpr int kFirstNamedKey = Qt::Key_Escape;

bool isPrintable(int key)
{
    const uint character = uint(key);
    if (character > QChar::LastValidCodePoint || QChar::isSurrogate(character) || QChar::isNonCharacter(character))
        return false;
    switch (QChar::category(character)) {
    case QChar::Mark_NonSpacing:
    case QChar::Mark_SpacingCombining:
    case QChar::Mark_Enclosing:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
    case QChar::Other_Control:
    case QChar::Other_Format:
    case QChar::Other_PrivateUse:
    case QChar::Other_NotAssigned:
        return false;
    default:
        return true;
    }
}

bool isSpace(int key)
{
    return QChar::category(uint(key)) == QChar::Separator_Space;
}

/// For unknown keys, QKeySequence returns arbitrary characters.
bool isName(const QString &text)
{
    return text.size() > 1 && std::all_of(text.begin(), text.end(), [](QChar character) {
               return character >= QLatin1Char(' ') && character <= QLatin1Char('~');
           });
}

QString enumeratorName(int key)
{
    const char *name = QMetaEnum::fromType<Qt::Key>().valueToKey(key);
    if (!name || key == Qt::Key_unknown)
        return QStringLiteral("Key 0x%1").arg(uint(key), 0, 16);
    return QString::fromLatin1(name).mid(int(qstrlen("Key_"))).replace(QLatin1Char('_'), QLatin1Char(' '));
}

} // namespace

int shownKey(int key)
{
    switch (key) {
    case Qt::Key_Super_L:
    case Qt::Key_Super_R:
        return Qt::Key_Meta;
    case Qt::Key_Backtab:
        return Qt::Key_Tab;
    case Qt::Key_AltGr:
    case Qt::Key_Mode_switch:
        return 0;
    default:
        return key;
    }
}

quint32 modifierOfKey(int key)
{
    switch (key) {
    case Qt::Key_Shift:
        return Qt::ShiftModifier;
    case Qt::Key_Control:
        return Qt::ControlModifier;
    case Qt::Key_Alt:
        return Qt::AltModifier;
    case Qt::Key_Meta:
        return Qt::MetaModifier;
    default:
        return Qt::NoModifier;
    }
}

bool isCharacterKey(int key)
{
    return (key >= Qt::Key_A && key <= Qt::Key_Z) || (key >= Qt::Key_0 && key <= Qt::Key_9);
}

bool typesCharacter(int key)
{
    return key > 0 && key < kFirstNamedKey;
}

bool composesCharacter(int key)
{
    return key == Qt::Key_Multi_key || (key >= Qt::Key_Dead_Grave && key <= Qt::Key_Dead_Longsolidusoverlay);
}

QString keyText(int key)
{
    if (typesCharacter(key)) {
        if (isSpace(key))
            key = Qt::Key_Space;
        return isPrintable(key) ? QKeySequence(key).toString() : enumeratorName(key);
    }
    const QString text = QKeySequence(key).toString();
    return isName(text) ? text : enumeratorName(key);
}

QString typedText(int key)
{
    return isSpace(key) ? QStringLiteral("␣") : keyText(key);
}

QString modifierPrefix(quint32 modifiers)
{
    QString prefix;
    if (modifiers & Qt::ShiftModifier)
        prefix += QLatin1String("Shift+");
    if (modifiers & Qt::ControlModifier)
        prefix += QLatin1String("Ctrl+");
    if (modifiers & Qt::AltModifier)
        prefix += QLatin1String("Alt+");
    if (modifiers & Qt::MetaModifier)
        prefix += QLatin1String("Meta+");
    return prefix;
}

} // namespace kel
