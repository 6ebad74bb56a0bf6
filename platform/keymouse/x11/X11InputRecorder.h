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

/// A key or button event as the X server recorded it.
struct X11InputEvent {
    std::uint8_t type;   ///< XCB_KEY_PRESS, XCB_KEY_RELEASE, XCB_BUTTON_PRESS or XCB_BUTTON_RELEASE
    std::uint8_t detail; ///< key code or button number
    std::uint16_t state; ///< modifiers, buttons and keyboard group just before the event
    QPoint position;     ///< of the pointer, in pixels of the root window
};

/// Input of the whole X display through the RECORD extension. It sees events whoever holds a grab, auto-repeat as
/// repeated presses, and the pointer's position and the modifiers in each event.
///
/// Only keys and buttons are recorded, never the motion of the pointer: it would wake the process a thousand times a
/// second, and a server forgets recorded events when more than some 270 of them are left unread (its output buffer is
/// written to while it is being flushed).
///
/// RECORD wants two connections: one is given over to the recorded data, the other controls what is recorded. The
/// latter also receives raw input events, for their effect alone: the server keeps what it has recorded until it next
/// writes to any client, and for a key that no program gets that could be never. The raw event goes out just before the
/// recorded one is stored; whoever sees it, asks the server something, and the answer brings out the recorded event.
///
/// Belongs to one thread, except for interrupt().
class X11InputRecorder
{
public:
    X11InputRecorder() = default;
    ~X11InputRecorder();

    /// Connects to $DISPLAY, recording nothing yet. False, with errorString(), when that is impossible.
    bool open();

    /// Records keys, buttons (the wheel is among them), both or neither from now on. False when the server is lost.
    bool setRecorded(bool keys, bool buttons);

    /// Takes what has arrived, without waiting. False when the server is lost.
    bool read(std::vector<X11InputEvent> &events);

    int dataDescriptor() const;

    /// The connection beside the data; for requests of any kind. An event there says that there may be something to
    /// read(), if the server is asked something first.
    xcb_connection_t *control() const { return m_control.get(); }

    /// Lets every call return that waits for the server, now and in future. Any thread, while the object lives.
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
