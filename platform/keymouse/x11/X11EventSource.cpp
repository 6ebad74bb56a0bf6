#include "keymouse/x11/X11EventSource.h"

#include "keymouse/KelKeyMouseHook.h"
#include "keymouse/x11/X11InputMapper.h"

#include <xcb/xcb.h>

#include <poll.h>

#include <iterator>
#include <vector>

namespace kel
{

X11EventSource::X11EventSource() = default;

X11EventSource::~X11EventSource() = default;

bool X11EventSource::open()
{
    if (!m_recorder.open())
        return false;
    m_mapper = std::make_unique<X11InputMapper>(m_recorder.control());
    return true;
}

bool X11EventSource::watch(int kinds)
{
    return m_recorder.setRecorded(kinds & KelKeyMouseHook::Keyboard, kinds & KelKeyMouseHook::Mouse);
}

void X11EventSource::interrupt()
{
    m_recorder.interrupt();
}

QString X11EventSource::errorString() const
{
    return m_recorder.errorString();
}

bool X11EventSource::deliverUntil(int wakeDescriptor, KeyMouseEventSink &sink)
{
    std::vector<X11InputEvent> events;
    bool hasNotifications = false;
    for (;;) {
        do {
            events.clear();
            if (!m_recorder.read(events))
                return false;
            if (hasNotifications || !events.empty())
                m_mapper->update();
            for (const X11InputEvent &event : events)
                m_mapper->deliver(event, sink);
            hasNotifications = m_mapper->processNotifications(); // received while the mapper was waiting for the server
        } while (hasNotifications);

        pollfd waits[] = {{m_recorder.dataDescriptor(), POLLIN, 0},
                          {xcb_get_file_descriptor(m_recorder.control()), POLLIN, 0},
                          {wakeDescriptor, POLLIN, 0}};
        poll(waits, std::size(waits), -1);
        if (waits[2].revents)
            return true;
        hasNotifications = waits[1].revents != 0;
    }
}

} // namespace kel
