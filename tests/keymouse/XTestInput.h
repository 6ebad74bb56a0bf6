#pragma once

#include <QtGlobal>

#include <xcb/xcb.h>
#include <xcb/xtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>

/// Generates input on the X display with the XTEST extension. When a call returns, the server has processed it.
class XTestInput
{
public:
    XTestInput()
        : m_connection(xcb_connect(nullptr, nullptr))
        , m_root(xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root)
    {
    }
    ~XTestInput() { xcb_disconnect(m_connection); }
    Q_DISABLE_COPY(XTestInput)

    void key(int code, bool pressed) { fake(pressed ? XCB_KEY_PRESS : XCB_KEY_RELEASE, code); }
    void tap(int code)
    {
        key(code, true);
        key(code, false);
    }
    /// As key(), but without a round trip: the server sends nothing but the events of the key.
    void keyWithoutAnswer(int code, bool pressed)
    {
        xcb_test_fake_input(m_connection, pressed ? XCB_KEY_PRESS : XCB_KEY_RELEASE, std::uint8_t(code),
                            XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
        xcb_flush(m_connection);
    }
    void setKeysym(int code, std::uint32_t keysym)
    {
        xcb_change_keyboard_mapping(m_connection, 1, std::uint8_t(code), 1, &keysym);
        sync();
    }
    void button(int number, bool pressed) { fake(pressed ? XCB_BUTTON_PRESS : XCB_BUTTON_RELEASE, number); }
    void click(int number)
    {
        button(number, true);
        button(number, false);
    }
    /// Moves the pointer as a mouse does.
    void move(int x, int y)
    {
        xcb_test_fake_input(m_connection, XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME, m_root, x, y, 0);
        sync();
    }
    /// Moves the pointer as a program does.
    void warp(int x, int y)
    {
        xcb_warp_pointer(m_connection, XCB_NONE, m_root, 0, 0, 0, 0, x, y);
        sync();
    }
    void focus(xcb_window_t window)
    {
        xcb_set_input_focus(m_connection, XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME);
        sync();
    }
    /// Swaps the first and the third button, as for left-handed use, or swaps them back.
    void swapButtons()
    {
        std::uint8_t map[256];
        auto *reply = xcb_get_pointer_mapping_reply(m_connection, xcb_get_pointer_mapping(m_connection), nullptr);
        const int count = xcb_get_pointer_mapping_map_length(reply);
        std::copy_n(xcb_get_pointer_mapping_map(reply), count, map);
        std::free(reply);
        std::swap(map[0], map[2]);
        std::free(xcb_set_pointer_mapping_reply(
            m_connection, xcb_set_pointer_mapping(m_connection, std::uint8_t(count), map), nullptr));
    }

private:
    void fake(int type, int detail)
    {
        xcb_test_fake_input(m_connection, std::uint8_t(type), std::uint8_t(detail), XCB_CURRENT_TIME, XCB_NONE, 0, 0,
                            0);
        sync();
    }
    void sync() { std::free(xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr)); }

    xcb_connection_t *m_connection;
    xcb_window_t m_root;
};
