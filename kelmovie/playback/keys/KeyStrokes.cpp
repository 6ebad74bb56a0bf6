#include "playback/keys/KeyStrokes.h"

#include "playback/keys/KeyNames.h"

#include <QHash>

#include <algorithm>

namespace kel
{

namespace
{

/// Text that a program typed appears at once. Its keys are displayed one per frame until they are that late.
constexpr int kMaxDelayFrames = 15;

void classify(KeyStroke &stroke, const KelPlaybackRules &rules)
{
    constexpr quint32 kCommands = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
    stroke.isText = rules.hidesAllTypedText && typesCharacter(stroke.key) && !(stroke.modifiers & kCommands);
    if (stroke.isText)
        stroke.modifiers = Qt::NoModifier; // Shift is part of the character
    if (modifierOfKey(stroke.key) != 0)
        stroke.type = KeyDisplayItem::Modifier;
    else if (stroke.modifiers != 0)
        stroke.type = KeyDisplayItem::Combination;
    else
        stroke.type = stroke.isText || isCharacterKey(stroke.key) ? KeyDisplayItem::Character : KeyDisplayItem::Other;
}

/// All records as strokes, at their own frames.
std::vector<KeyStroke> allStrokes(const std::vector<KeyRecord> &records, int shownTypes, const KelPlaybackRules &rules)
{
    std::vector<KeyStroke> strokes;
    strokes.reserve(records.size());
    QHash<int, bool> down; // whether the press of each key that is down is displayed
    quint32 held = 0;
    bool isCaptureOn = true;
    for (const KeyRecord &record : records) {
        KeyStroke stroke;
        stroke.frame = record.frame;
        stroke.key = record.key;
        const quint32 modifier = modifierOfKey(record.key);
        held = record.pressed ? held | modifier : held & ~modifier;
        stroke.modifiers = held;
        classify(stroke, rules);
        if (record.key == 0) {
            isCaptureOn = record.pressed;
            down.clear();
        }
        if (record.key == 0 || !isCaptureOn) {
            stroke.kind = KeyStroke::Standstill;
        } else if (rules.hidesAllTypedText && composesCharacter(record.key)) {
            continue; // the next key types the character
        } else if (record.pressed) {
            const bool isDisplayed = !rules.shownKeysOnlyInHistory || (stroke.type & shownTypes);
            stroke.kind = isDisplayed ? KeyStroke::Press : KeyStroke::HiddenPress;
            stroke.isRepeat = down.contains(record.key);
            down.insert(record.key, isDisplayed);
            if (!isDisplayed && modifier != 0)
                continue;
        } else {
            stroke.kind = KeyStroke::Release;
            if (!down.take(record.key) && rules.shownKeysOnlyInHistory)
                continue;
        }
        strokes.push_back(stroke);
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
        const bool catchesUp = nextFree - stroke.frame > kMaxDelayFrames && pressesInFrame < maxContinueChar &&
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
