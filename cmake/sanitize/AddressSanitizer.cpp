// Linked into every program of a build with the address and undefined-behavior sanitizers. Sets their options in the
// program, so that they apply however it is started.
#include <QtGlobal>

/// Libraries stay loaded, as they keep caches that can be reached only from them.
extern "C" Q_DECL_EXPORT int dlclose(void *)
{
    return 0;
}

extern "C" Q_DECL_EXPORT const char *__asan_default_options()
{
    return "detect_stack_use_after_return=1:check_initialization_order=1:allocator_may_return_"
           "null=1";
}

extern "C" Q_DECL_EXPORT const char *__ubsan_default_options()
{
    return "print_stacktrace=1";
}

extern "C" Q_DECL_EXPORT const char *__lsan_default_options()
{
    return "print_suppressions=0";
}

extern "C" Q_DECL_EXPORT const char *__lsan_default_suppressions()
{
    // These libraries keep caches until the process ends.
    return "leak:libfontconfig.so\n"
           "leak:libglib-2.0.so\n"
           "leak:libdbus-1.so\n"
           // Qt's Wayland platform never frees some of its objects. They are allocated here, where stacks end.
           "leak:libwayland-client.so\n"
           "leak:libQt5WaylandClient.so\n"
           // Qt's offscreen platform never frees its screen.
           "leak:libqoffscreen.so\n";
}
