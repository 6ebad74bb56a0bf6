#pragma once

#include <QPoint>
#include <QString>
#include <QtGlobal>

#include <cstdint>
#include <memory>
#include <vector>

struct xcb_connection_t;

namespace kel
{

/// A key or button event recorded by the X server.
struct X11InputEvent {
    std::uint8_t type;   ///< XCB_KEY_PRESS, XCB_KEY_RELEASE, XCB_BUTTON_PRESS or XCB_BUTTON_RELEASE
    std::uint8_t detail; ///< key code or button number
    std::uint16_t state; ///< modifiers, buttons and keyboard group just before the event
    QPoint position;     ///< of the pointer, in pixels of the root window
};

/// Records the input of the whole X display through the RECORD extension: events are seen regardless of grabs,
/// auto-repeat as repeated presses, each with pointer position and modifiers.
///
/// Only keys and buttons are recorded, not pointer motion: it would wake the process a thousand times per second, and
/// the server loses recorded events when more than about 270 of them are unread (its output buffer is written to while
/// it is being flushed).
///
/// RECORD needs two connections: one for the recorded data, one to control the recording. The latter also receives raw
/// input events, for their side effect: the server buffers recorded events until it next writes to any client, which
/// may never happen for a key that no program receives. The raw event is sent just before the recorded one is buffered;
/// a request in response to it makes the server flush the recorded event.
///
/// Belongs to one thread, except for interrupt().
class X11InputRecorder
{
public:
    X11InputRecorder() = default;
    ~X11InputRecorder();

    /// Connects to $DISPLAY without recording yet. False, with errorString(), on failure.
    bool open();

    /// Records keys, buttons (including the wheel), both or neither from now on. False when the server is lost.
    bool setRecorded(bool keys, bool buttons);

    /// Reads the events received so far, without waiting. False when the server is lost.
    bool read(std::vector<X11InputEvent> &events);

    int dataDescriptor() const;

    /// The control connection, which callers may use for any requests. An event on it means that read() may return data
    /// after a round trip to the server.
    xcb_connection_t *control() const { return m_control.get(); }

    /// Makes every call that waits for the server return, now and in future. Any thread, while the object exists.
    void interrupt();

    QString errorString() const { return m_error; }

private:
    struct Disconnect {
        void operator()(xcb_connection_t *connection) const;
    };
    using Connection = std::unique_ptr<xcb_connection_t, Disconnect>;
    Q_DISABLE_COPY(X11InputRecorder)

    bool fail(const char *message);
    bool enable();
    void selectRawEvents(bool keys, bool buttons);

    Connection m_control;
    Connection m_data;
    std::uint32_t m_context = 0;
    std::uint32_t m_root = 0;
    unsigned m_enableSequence = 0;
    QString m_error;
};

} // namespace kel
