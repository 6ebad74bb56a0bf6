#include "x11/XWayland.h"

#include "x11/XcbPtr.h"

#include <xcb/randr.h>

#include <cstring>

namespace kel
{

namespace
{

constexpr char kExtension[] = "XWAYLAND"; // since version 23.1
constexpr char kOutputPrefix[] = "XWAYLAND";
constexpr int kPrefixLength = sizeof(kOutputPrefix) - 1;

bool hasExtension(xcb_connection_t *connection)
{
    const XcbPtr<xcb_query_extension_reply_t> reply(xcb_query_extension_reply(
        connection, xcb_query_extension(connection, sizeof(kExtension) - 1, kExtension), nullptr));
    return reply && reply->present;
}

bool isXWaylandOutput(xcb_connection_t *connection, xcb_randr_output_t output, xcb_timestamp_t timestamp)
{
    const XcbPtr<xcb_randr_get_output_info_reply_t> info(
        xcb_randr_get_output_info_reply(connection, xcb_randr_get_output_info(connection, output, timestamp), nullptr));
    return info && xcb_randr_get_output_info_name_length(info.get()) >= kPrefixLength &&
           std::memcmp(xcb_randr_get_output_info_name(info.get()), kOutputPrefix, kPrefixLength) == 0;
}

bool hasXWaylandOutput(xcb_connection_t *connection)
{
    const xcb_query_extension_reply_t *extension = xcb_get_extension_data(connection, &xcb_randr_id);
    if (!extension || !extension->present)
        return false;
    // RandR rejects all but this request until the client has named the version that it speaks.
    const XcbPtr<xcb_randr_query_version_reply_t> version(
        xcb_randr_query_version_reply(connection, xcb_randr_query_version(connection, 1, 3), nullptr));
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    const XcbPtr<xcb_randr_get_screen_resources_current_reply_t> resources(xcb_randr_get_screen_resources_current_reply(
        connection, xcb_randr_get_screen_resources_current(connection, root), nullptr));
    if (!version || !resources)
        return false;
    const xcb_randr_output_t *outputs = xcb_randr_get_screen_resources_current_outputs(resources.get());
    const int count = xcb_randr_get_screen_resources_current_outputs_length(resources.get());
    for (int i = 0; i < count; ++i) {
        if (isXWaylandOutput(connection, outputs[i], resources->config_timestamp))
            return true;
    }
    return false;
}

} // namespace

bool isXWayland(xcb_connection_t *connection)
{
    return !xcb_connection_has_error(connection) && (hasExtension(connection) || hasXWaylandOutput(connection));
}

QString xWaylandError()
{
    return QStringLiteral(
        "this is a Wayland session whose screen cannot be reached. Install xdg-desktop-portal with the part for your "
        "desktop, and PipeWire, or log out and choose an X11 session (often called \"Xorg\") on the login screen.");
}

} // namespace kel
