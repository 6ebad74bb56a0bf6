#include "recording/input/MouseEventWriter.h"

#include "recording/KelRecordingFiles.h"

#include <QJsonObject>

#include <algorithm>

namespace kel
{

namespace
{
bool isMove(const MouseTrackEvent &event)
{
    return event.action == QLatin1String("move") || event.action == QLatin1String("hide");
}

bool isClick(const MouseTrackEvent &event)
{
    return event.action == QLatin1String("click") || event.action == QLatin1String("release") ||
           event.action == QLatin1String("wheel");
}

QJsonObject toJson(const MouseTrackEvent &event)
{
    QJsonObject object{{QStringLiteral("frame"), event.frame},   {QStringLiteral("x"), event.x},
                       {QStringLiteral("y"), event.y},           {QStringLiteral("timestamp"), event.timestamp},
                       {QStringLiteral("cursor"), event.cursor}, {QStringLiteral("action"), event.action}};
    if (isClick(event))
        object.insert(QStringLiteral("button"), event.button);
    if (event.action == QLatin1String("wheel"))
        object.insert(QStringLiteral("delta"), event.delta);
    return object;
}
} // namespace

MouseEventWriter::MouseEventWriter(const QString &trackDir)
    : m_moves{isMove, JsonArrayFile(KelRecordingFiles::path(trackDir, KelRecordingFiles::kMouseMoves))}
    , m_clicks{isClick, JsonArrayFile(KelRecordingFiles::path(trackDir, KelRecordingFiles::kMouseClicks))}
{
}

std::size_t MouseEventWriter::firstNeeded() const
{
    return std::min(m_moves.written, m_clicks.written);
}

bool MouseEventWriter::update(std::size_t first, const std::vector<MouseTrackEvent> &events)
{
    bool isComplete = true;
    for (EventFile *target : {&m_moves, &m_clicks}) {
        std::vector<QJsonObject> objects;
        for (std::size_t i = target->written - first; i < events.size(); ++i) {
            if (target->holds(events[i]))
                objects.push_back(toJson(events[i]));
        }
        if (target->file.append(objects)) {
            target->written = first + events.size();
        } else if (isComplete) {
            isComplete = false;
            m_failedPath = target->file.path();
            m_error = target->file.errorString();
        }
    }
    return isComplete;
}

void MouseEventWriter::close()
{
    for (EventFile *target : {&m_moves, &m_clicks}) {
        target->file.close();
        target->written = 0;
    }
}

} // namespace kel
