#include "playback/keys/KelPlaybackKeyboardTrack.h"

#include "logging/Log.h"
#include "playback/keys/KeyBoxPainter.h"
#include "playback/keys/KeyDisplayListBuilder.h"

#include <QPainter>

#include <algorithm>

using namespace kel;

namespace
{

constexpr double kMinScale = 0.25;
constexpr double kMaxScale = 16.0;

} // namespace

KelPlaybackKeyboardTrack::KelPlaybackKeyboardTrack(const QString &directory, int totalFrames, double pixelRatio,
                                                   const QSize &frameSize, KelPlaybackTrackManager *manager)
    : KelPlaybackTrack(directory, manager)
    , m_totalFrames(totalFrames)
    , m_scale(qBound(kMinScale, pixelRatio, kMaxScale))
{
    setName(QStringLiteral("Keyboard"));
    if (!readKeyLog(directory, m_recording)) {
        setErrorString(QLatin1String("KelPlaybackKeyboardTrack open meta file failed: ") + directory);
        qCCritical(logPlayback).noquote() << errorString();
        return;
    }
    // The file may be damaged; boxes must stay inside the frame.
    m_canvas = m_recording.canvas;
    if (!frameSize.isEmpty())
        m_canvas = m_canvas.isEmpty() ? frameSize : m_canvas.boundedTo(frameSize);
    build();
}

void KelPlaybackKeyboardTrack::build()
{
    m_list = KeyDisplayListBuilder::build(m_recording, m_totalFrames, m_style.display, rules(), timeline());
}

void KelPlaybackKeyboardTrack::setContext(const RecordingTimeline &timeline, const KelPlaybackRules &rules)
{
    KelPlaybackTrack::setContext(timeline, rules);
    build();
}

void KelPlaybackKeyboardTrack::setStyle(const KeyOverlayStyle &style)
{
    const bool isListStale = !(style.display == m_style.display);
    m_style = style;
    if (!isListStale)
        return;
    build();
    seekToFrame(m_frame);
}

void KelPlaybackKeyboardTrack::seekToFrame(int frame)
{
    m_frame = frame;
    m_entry = frame == 0 ? -1 : m_list.indexAt(frame);
}

bool KelPlaybackKeyboardTrack::moveToFrame(int frame)
{
    const int entry = m_entry;
    const Shown before = shown();
    seekToFrame(frame);
    return m_entry != entry && !shown().looksLike(before);
}

bool KelPlaybackKeyboardTrack::Shown::looksLike(const Shown &other) const
{
    const auto isAlike = [](const KeyDisplayItem *a, const KeyDisplayItem *b) {
        return a == b || (a && b && a->type == b->type && a->count == b->count && a->text == b->text);
    };
    return isAlike(current, other.current) &&
           std::equal(past.begin(), past.end(), other.past.begin(), other.past.end(), isAlike);
}

KelPlaybackKeyboardTrack::Shown KelPlaybackKeyboardTrack::shown() const
{
    Shown shown;
    if (m_entry < 0 || !m_style.enabled)
        return shown;
    const auto isShown = [this](const KeyDisplayItem &item) { return (item.type & m_style.display.shownTypes) != 0; };
    const KeyDisplayEntry &entry = m_list.entries[size_t(m_entry)];
    if (isShown(entry.current))
        shown.current = &entry.current;
    for (int i = entry.historyEnd - 1; i >= entry.historyBegin; --i) {
        if (isShown(m_list.past[size_t(i)]))
            shown.past.push_back(&m_list.past[size_t(i)]);
    }
    return shown;
}

void KelPlaybackKeyboardTrack::paint(QPainter *painter)
{
    if (!painter)
        return;
    const KeyBoxLayout::Canvas canvas{m_canvas, m_scale};
    double offset = 0.0;
    // Returns false if there is no room for this box, and so for none above it.
    const auto paintItem = [&](const KeyDisplayItem &item, bool isCurrent) {
        const KeyBoxLayout layout(item, m_style, canvas, offset, isCurrent);
        paintKeyBox(*painter, layout, m_style);
        offset = layout.nextOffset();
        return !layout.isEmpty();
    };
    const Shown items = shown();
    if (items.current && !paintItem(*items.current, true))
        return;
    for (const KeyDisplayItem *item : items.past) {
        if (!paintItem(*item, false))
            return;
    }
}

int KelPlaybackKeyboardTrack::nextKeyFrame()
{
    return m_list.nextFrame(m_entry, m_frame);
}

bool KelPlaybackKeyboardTrack::isVisible()
{
    return m_style.enabled && m_style.display.shownTypes != 0;
}

void KelPlaybackKeyboardTrack::resetHistory()
{
    m_frame = 0;
    m_entry = -1;
}
