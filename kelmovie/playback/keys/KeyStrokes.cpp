#include "playback/keys/KeyStrokes.h"

#include "playback/keys/HeldModifiers.h"
#include "playback/keys/KeyNames.h"

#include <QHash>

#include <algorithm>
#include <optional>

namespace kel
{

namespace
{

/// Text that a program typed appears at once. Its keys are displayed one per frame until they are that late.
constexpr int kMaxDelayFrames = 15;

/// For each record, whether the next key that is pressed before Shift is released or capture is switched types a
/// character.
std::vector<bool> precedesText(const std::vector<KeyRecord> &records)
{
    std::vector<bool> result(records.size());
    bool isTextNext = false;
    for (std::size_t i = records.size(); i-- > 0;) {
        result[i] = isTextNext;
        const KeyRecord &record = records[i];
        if (record.key == 0 || (record.key == Qt::Key_Shift && !record.pressed))
            isTextNext = false;
        else if (record.pressed && record.key != Qt::Key_Shift)
            isTextNext = typesCharacter(record.key) || composesCharacter(record.key);
    }
    return result;
}

/// Interprets records one after another.
class KeyInterpreter
{
public:
    KeyInterpreter(int shownTypes, const KelPlaybackRules &rules)
        : m_shownTypes(shownTypes)
        , m_rules(rules)
    {
    }

    /// Nothing if the record has no meaning for the display. `precedesText`: see precedesText().
    std::optional<KeyStroke> read(const KeyRecord &record, bool precedesText)
    {
        m_held.apply(record);
        KeyStroke stroke;
        stroke.frame = record.frame;
        stroke.key = record.key;
        stroke.modifiers = m_held.flags();
        if (record.key == 0) {
            m_isCaptureOn = record.pressed;
            m_down.clear();
        }
        if (record.key == 0 || !m_isCaptureOn) {
            stroke.kind = KeyStroke::Standstill;
            return stroke;
        }
        classify(stroke);
        return record.pressed ? readPress(stroke, precedesText) : readRelease(stroke);
    }

private:
    void classify(KeyStroke &stroke) const
    {
        constexpr quint32 kCommands = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
        stroke.isText = m_rules.hidesAllTypedText && typesCharacter(stroke.key) && !(m_held.flags() & kCommands);
        if (stroke.isText)
            stroke.modifiers = Qt::NoModifier; // Shift is part of the character
        if (modifierOfKey(stroke.key) != 0)
            stroke.type = KeyDisplayItem::Modifier;
        else if (stroke.modifiers != 0)
            stroke.type = KeyDisplayItem::Combination;
        else
            stroke.type =
                stroke.isText || isCharacterKey(stroke.key) ? KeyDisplayItem::Character : KeyDisplayItem::Other;
    }

    /// Whether the key only serves to type the next character.
    bool isPartOfText(const KeyStroke &stroke, bool precedesText) const
    {
        const bool isShiftAlone = stroke.key == Qt::Key_Shift && m_held.flags() == Qt::ShiftModifier;
        return m_rules.hidesAllTypedText && (composesCharacter(stroke.key) || (isShiftAlone && precedesText));
    }

    std::optional<KeyStroke> readPress(KeyStroke &stroke, bool precedesText)
    {
        const bool isPart = isPartOfText(stroke, precedesText);
        const bool isHidden = isPart || (m_rules.shownKeysOnlyInHistory && !(stroke.type & m_shownTypes));
        stroke.kind = isHidden ? KeyStroke::HiddenPress : KeyStroke::Press;
        stroke.isRepeat = m_down.contains(stroke.key);
        m_down.insert(stroke.key, !isHidden);
        // What a hidden modifier modifies decides whether something is interrupted.
        const bool isDropped = isPart || (isHidden && stroke.type == KeyDisplayItem::Modifier);
        return isDropped ? std::nullopt : std::optional(stroke);
    }

    std::optional<KeyStroke> readRelease(KeyStroke &stroke)
    {
        stroke.kind = KeyStroke::Release;
        const bool mayBeHidden = m_rules.hidesAllTypedText || m_rules.shownKeysOnlyInHistory;
        const bool wasDisplayed = m_down.take(stroke.key);
        return wasDisplayed || !mayBeHidden ? std::optional(stroke) : std::nullopt;
    }

    const int m_shownTypes;
    const KelPlaybackRules m_rules;
    QHash<int, bool> m_down; // whether the press of each key that is down is displayed
    HeldModifiers m_held;
    bool m_isCaptureOn = true;
};

/// All records that have a meaning for the display, at their own frames.
std::vector<KeyStroke> allStrokes(const std::vector<KeyRecord> &records, int shownTypes, const KelPlaybackRules &rules)
{
    std::vector<KeyStroke> strokes;
    strokes.reserve(records.size());
    const std::vector<bool> isBeforeText = precedesText(records);
    KeyInterpreter interpreter(shownTypes, rules);
    for (std::size_t i = 0; i < records.size(); ++i) {
        if (const auto stroke = interpreter.read(records[i], isBeforeText[i]))
            strokes.push_back(*stroke);
    }
    return strokes;
}

/// Keeps the first stroke of each frame. Hidden presses take no frame.
std::vector<KeyStroke> firstOfEachFrame(const std::vector<KeyStroke> &strokes, int totalFrames)
{
    std::vector<KeyStroke> kept;
    int frame = 0;
    int taken = -1;
    for (KeyStroke stroke : strokes) {
        if (stroke.frame >= totalFrames)
            break;
        const bool takesFrame = stroke.kind != KeyStroke::HiddenPress;
        if (takesFrame && stroke.frame <= taken)
            continue;
        if (takesFrame)
            taken = stroke.frame;
        stroke.frame = frame = std::max(stroke.frame, frame);
        kept.push_back(stroke);
    }
    return kept;
}

/// Gives each press a frame of its own, in order. A key shares the frame of the modifiers pressed before it, so that a
/// combination appears as a whole; repeats share the frame of the press before them.
std::vector<KeyStroke> oneAfterAnother(const std::vector<KeyStroke> &strokes, int totalFrames, int maxContinueChar)
{
    std::vector<KeyStroke> spread;
    int frame = 0;
    int nextFree = 0; // the frame after the last press
    int pressesInFrame = 0;
    auto lastType = KeyDisplayItem::NoType; // of the last press
    for (KeyStroke stroke : strokes) {
        if (stroke.frame >= totalFrames)
            break;
        if (stroke.kind == KeyStroke::Standstill)
            continue;
        const bool isPress = stroke.kind == KeyStroke::Press;
        const bool isModifier = stroke.type == KeyDisplayItem::Modifier;
        // No more characters than fit into a box, so that every box is displayed.
        const bool catchesUp = qint64(nextFree) - stroke.frame > kMaxDelayFrames && pressesInFrame < maxContinueChar &&
                               stroke.type == KeyDisplayItem::Character && lastType == KeyDisplayItem::Character;
        const bool sharesFrame = stroke.isRepeat || lastType == KeyDisplayItem::Modifier || catchesUp;
        const int previous = frame;
        frame = std::max(frame, stroke.frame);
        if ((isPress && !sharesFrame) || (!isPress && isModifier)) // a modifier alone is displayed before its release
            frame = std::max(frame, nextFree);
        frame = stroke.frame = std::min(frame, totalFrames - 1);
        if (isPress) {
            nextFree = frame + 1;
            pressesInFrame = frame == previous ? pressesInFrame + 1 : 1;
        }
        if (isPress || isModifier)
            lastType = isPress ? stroke.type : KeyDisplayItem::NoType;
        spread.push_back(stroke);
    }
    return spread;
}

} // namespace

std::vector<KeyStroke> keyStrokes(const std::vector<KeyRecord> &records, int totalFrames,
                                  const KeyDisplaySettings &settings, const KelPlaybackRules &rules)
{
    const std::vector<KeyStroke> strokes = allStrokes(records, settings.shownTypes, rules);
    return rules.showsEveryKeyPress ? oneAfterAnother(strokes, totalFrames, settings.maxContinueChar)
                                    : firstOfEachFrame(strokes, totalFrames);
}

} // namespace kel
