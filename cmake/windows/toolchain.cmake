# 64-bit Windows, cross-built with mingw-w64 (g++-mingw-w64-x86-64-posix on Debian). Qt and the codecs come from
# packaging/windows/build-sdk.sh; The environment variable KELMOVIE_WINDOWS_SDK names another directory.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(KELMOVIE_WINDOWS_SDK /opt/kelmovie-windows)
if(DEFINED ENV{KELMOVIE_WINDOWS_SDK})
  set(KELMOVIE_WINDOWS_SDK $ENV{KELMOVIE_WINDOWS_SDK})
endif()

# The "posix" variant, because the other has no std::thread and std::mutex.
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

set(CMAKE_PREFIX_PATH ${KELMOVIE_WINDOWS_SDK}/qt ${KELMOVIE_WINDOWS_SDK}/deps)
set(CMAKE_FIND_ROOT_PATH ${CMAKE_PREFIX_PATH})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_LIBDIR} ${KELMOVIE_WINDOWS_SDK}/deps/lib/pkgconfig)
set(RapidJSON_DIR ${CMAKE_CURRENT_LIST_DIR} CACHE PATH "Header-only, so this machine's can be used")

# Runs tests and programs of the build.
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../../tests/support/with-wine)
