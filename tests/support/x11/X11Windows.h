#pragma once

#include <QByteArray>
#include <QRect>

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>

/// Finds windows of other programs.
class X11Windows
{
public:
    struct Window {
        xcb_window_t id = XCB_NONE;
        QRect rect; ///< on the screen
        explicit operator bool() const { return id != XCB_NONE; }
    };

    X11Windows()
        : m_connection(xcb_connect(nullptr, nullptr))
        , m_root(xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root)
    {
    }
    ~X11Windows() { xcb_disconnect(m_connection); }
    X11Windows(const X11Windows &) = delete;
    X11Windows &operator=(const X11Windows &) = delete;

    /// The topmost visible window with this title; none if there is no such window.
    Window find(const QByteArray &title) const { return find(m_root, title); }

private:
    template <typename T>
    static std::unique_ptr<T, decltype(&std::free)> owned(T *reply)
    {
        return {reply, &std::free};
    }

    Window find(xcb_window_t parent, const QByteArray &title) const
    {
        const auto tree = owned(xcb_query_tree_reply(m_connection, xcb_query_tree(m_connection, parent), nullptr));
        if (!tree)
            return {};
        const xcb_window_t *const children = xcb_query_tree_children(tree.get());
        for (int i = xcb_query_tree_children_length(tree.get()) - 1; i >= 0; --i) {
            if (!isVisible(children[i]))
                continue;
            if (name(children[i]) == title)
                return {children[i], rect(children[i])};
            if (const Window inner = find(children[i], title))
                return inner;
        }
        return {};
    }

    bool isVisible(xcb_window_t window) const
    {
        const auto attributes = owned(
            xcb_get_window_attributes_reply(m_connection, xcb_get_window_attributes(m_connection, window), nullptr));
        return attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
    }

    QByteArray name(xcb_window_t window) const
    {
        const auto property = owned(xcb_get_property_reply(
            m_connection,
            xcb_get_property(m_connection, 0, window, XCB_ATOM_WM_NAME, XCB_GET_PROPERTY_TYPE_ANY, 0, 256), nullptr));
        if (!property)
            return {};
        return {static_cast<const char *>(xcb_get_property_value(property.get())),
                xcb_get_property_value_length(property.get())};
    }

    QRect rect(xcb_window_t window) const
    {
        const auto geometry =
            owned(xcb_get_geometry_reply(m_connection, xcb_get_geometry(m_connection, window), nullptr));
        const auto origin = owned(xcb_translate_coordinates_reply(
            m_connection, xcb_translate_coordinates(m_connection, window, m_root, 0, 0), nullptr));
        return geometry && origin ? QRect(origin->dst_x, origin->dst_y, geometry->width, geometry->height) : QRect();
    }

    xcb_connection_t *m_connection;
    xcb_window_t m_root;
};
