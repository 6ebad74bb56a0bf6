#!/usr/bin/env bash
# build-sdk.sh [LIBRARY…]: builds what ./dev windows builds against (Qt, FFmpeg and so on, for 64-bit Windows) from
# Debian's own sources, into /opt/kelmovie-windows or $KELMOVIE_WINDOWS_SDK. Without names everything, in order; Qt takes
# most of an hour on two cores, all others together some ten minutes. Needs root for /opt and for missing packages.
# Sources and builds are kept in $KELMOVIE_WINDOWS_WORK (build/windows-sdk), so that a step can be repeated.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
sdk=${KELMOVIE_WINDOWS_SDK:-/opt/kelmovie-windows}
work=${KELMOVIE_WINDOWS_WORK:-$PWD/build/windows-sdk}
release=bookworm
jobs=$(nproc)
host=x86_64-w64-mingw32
mkdir -p "$work" "$sdk"/{qt,host,deps}

tools=(g++-mingw-w64-x86-64-posix build-essential cmake ninja-build pkg-config nasm dpkg-dev perl python3
    rapidjson-dev libstb-dev)
missing=()
for tool in "${tools[@]}"; do
    dpkg-query -W -f='${Status}' "$tool" 2>/dev/null | grep -q 'ok installed' || missing+=("$tool")
done
if [ ${#missing[@]} -gt 0 ]; then
    apt-get update -q && apt-get install -q -y --no-install-recommends "${missing[@]}"
fi

# The compilers that configure scripts look for are the flavour with threads of C++.
mkdir -p "$work/bin"
for tool in gcc g++; do
    ln -sf "$(command -v $host-$tool-posix)" "$work/bin/$host-$tool"
done
export PATH="$work/bin:$PATH" PKG_CONFIG_LIBDIR="$sdk/deps/lib/pkgconfig"

# unpack PACKAGE: Debian's source, patches applied, in $source
unpack() {
    local apt=(apt-get -o "Dir::Etc::SourceList=$work/sources.list" -o Dir::Etc::SourceParts=/dev/null
        -o "Dir::State::Lists=$work/lists" -o APT::Sandbox::User=root)
    if [ ! -e "$work/sources.list" ]; then
        mkdir -p "$work/lists/partial"
        echo "deb-src http://deb.debian.org/debian $release main" >"$work/sources.list.new"
        mv "$work/sources.list.new" "$work/sources.list"
        "${apt[@]}" update -q
    fi
    mkdir -p "$work/$1"
    source=$(find "$work/$1" -mindepth 1 -maxdepth 1 -type d ! -name build)
    if [ -z "$source" ]; then
        (cd "$work/$1" && "${apt[@]}" source -q "$1")
        source=$(find "$work/$1" -mindepth 1 -maxdepth 1 -type d ! -name build)
    fi
    build=$work/$1/build
    rm -rf "$build"
    mkdir -p "$build"
}

# with_cmake [ARGUMENT…]: $source with CMake
with_cmake() {
    cmake -S "$source" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX="$sdk/deps" \
        -DCMAKE_SYSTEM_NAME=Windows -DCMAKE_SYSTEM_PROCESSOR=x86_64 -DCMAKE_C_COMPILER=$host-gcc \
        -DCMAKE_CXX_COMPILER=$host-g++ -DCMAKE_RC_COMPILER=$host-windres -DCMAKE_FIND_ROOT_PATH="$sdk/deps" \
        -DCMAKE_FIND_ROOT_PATH_MODE_LIBRARY=ONLY -DCMAKE_FIND_ROOT_PATH_MODE_INCLUDE=ONLY \
        -DCMAKE_POLICY_VERSION_MINIMUM=3.5 "$@"
    cmake --build "$build" -j "$jobs"
    cmake --install "$build"
}

# describe NAME VERSION LIBRARY: a description for pkg-config where a library brings none
describe() {
    mkdir -p "$sdk/deps/lib/pkgconfig"
    printf 'prefix=%s\nlibdir=${prefix}/lib\nincludedir=${prefix}/include\n\nName: %s\nDescription: %s\nVersion: %s\n%s\n%s\n' \
        "$sdk/deps" "$1" "$1" "$2" "Libs: -L\${libdir} -l$3" 'Cflags: -I${includedir}' >"$sdk/deps/lib/pkgconfig/$1.pc"
}

zlib() {
    unpack zlib
    # Debian's archive lacks the makefile for Windows; all that it would do is this.
    (cd "$build" && $host-gcc -O3 -c "$source"/*.c && $host-ar rcs libz.a ./*.o)
    mkdir -p "$sdk"/deps/{include,lib}
    cp "$source"/{zlib,zconf}.h "$sdk/deps/include"
    cp "$build/libz.a" "$sdk/deps/lib"
    describe zlib "$(sed -n 's/#define ZLIB_VERSION "\(.*\)"/\1/p' "$source/zlib.h")" z
}

x264() {
    unpack x264
    (cd "$build" && "$source/configure" --host=$host --cross-prefix=$host- --prefix="$sdk/deps" --enable-static \
        --enable-pic --disable-cli --disable-lavf --disable-swscale && make -j "$jobs" install)
}

ffmpeg() {
    unpack ffmpeg
    (cd "$build" && "$source/configure" --prefix="$sdk/deps" --arch=x86_64 --target-os=mingw32 \
        --enable-cross-compile --cross-prefix=$host- --pkg-config=pkg-config --pkg-config-flags=--static \
        --extra-cflags="-I$sdk/deps/include" --extra-ldflags="-L$sdk/deps/lib" --enable-gpl --enable-shared \
        --disable-static --disable-programs --disable-doc --disable-debug --disable-network --disable-autodetect \
        --disable-avdevice --disable-avfilter --disable-postproc --enable-libx264 --enable-zlib --enable-dxva2 \
        --enable-d3d11va &&
        make -j "$jobs" install)
    # The linker wants them beside the others.
    mv "$sdk"/deps/bin/lib{avcodec,avformat,avutil,swscale,swresample}.dll.a "$sdk/deps/lib" 2>/dev/null || true
}

libwebp() {
    unpack libwebp
    with_cmake -DBUILD_SHARED_LIBS=OFF -DWEBP_BUILD_ANIM_UTILS=OFF -DWEBP_BUILD_CWEBP=OFF -DWEBP_BUILD_DWEBP=OFF \
        -DWEBP_BUILD_GIF2WEBP=OFF -DWEBP_BUILD_IMG2WEBP=OFF -DWEBP_BUILD_VWEBP=OFF -DWEBP_BUILD_WEBPINFO=OFF \
        -DWEBP_BUILD_WEBPMUX=OFF -DWEBP_BUILD_EXTRAS=OFF
}

libdeflate() {
    unpack libdeflate
    cp -a "$source/." "$build"
    (cd "$build" && make -j "$jobs" CC=$host-gcc AR=$host-ar PREFIX="$sdk/deps" libdeflatestatic.lib)
    mkdir -p "$sdk"/deps/{include,lib}
    cp "$build/libdeflate.h" "$sdk/deps/include"
    cp "$build/libdeflatestatic.lib" "$sdk/deps/lib/libdeflate.a"
    describe libdeflate "$(sed -n 's/#define LIBDEFLATE_VERSION_STRING.*"\(.*\)"/\1/p' "$build/libdeflate.h")" deflate
}

rlottie() {
    unpack rlottie
    # Headers that Debian takes from other packages, apart from those of this machine's C library.
    mkdir -p "$work/headers"
    ln -sfn /usr/include/rapidjson "$work/headers/rapidjson"
    ln -sfn /usr/include/stb "$work/headers/stb"
    # Its rasterizer counts in "long", which has 64 bits elsewhere and 32 here: every picture would differ a little.
    sed -i -E 's/\blong( long)?( int)?\b/long long/g; s/\bULONG_MAX\b/ULLONG_MAX/g' "$source"/src/vector/freetype/*.{h,cpp}
    # Threads that end with the process hang in its last moments; a type of POSIX is missing; bad files shall not abort.
    with_cmake -DLOTTIE_THREAD=OFF -DLOTTIE_MODULE=OFF -DLOTTIE_TEST=OFF -DLOTTIE_EXAMPLE=OFF \
        -DLIB_INSTALL_DIR="$sdk/deps/lib" \
        -DCMAKE_CXX_FLAGS="-Wno-free-nonheap-object -isystem $work/headers -DRAPIDJSON_ASSERT\(x\)=\(void\)\(x\) -Dulong=unsigned\ long"
    mkdir -p "$sdk/deps/bin"
    cp "$build/librlottie.dll" "$sdk/deps/bin" # which it forgets to install
}

qtbase() {
    unpack qtbase-opensource-src
    # A header for tablets is missing from Debian's archive; everything else is what the programs do without.
    (cd "$build" && "$source/configure" -opensource -confirm-license -release -shared -xplatform win32-g++ \
        -device-option CROSS_COMPILE=$host- -prefix "$sdk/qt" -hostprefix "$sdk/host" -nomake examples -nomake tests \
        -no-pch -opengl desktop -qt-zlib -qt-libpng -qt-libjpeg -qt-freetype -qt-harfbuzz -qt-pcre \
        -qt-doubleconversion -no-dbus -no-openssl -no-icu -no-glib -no-feature-tabletevent -no-feature-sql \
        -no-feature-printer -no-feature-vulkan -no-feature-direct2d -no-feature-direct2d1_1 &&
        make -j "$jobs" && make install)
}

qtmultimedia() {
    unpack qtmultimedia-opensource-src
    (cd "$build" && "$sdk/host/bin/qmake" "$source" -- -no-wmf && make -j "$jobs" && make install)
}

[ $# -gt 0 ] || set -- zlib x264 ffmpeg libwebp libdeflate rlottie qtbase qtmultimedia
for library in "$@"; do
    case "$library" in
    zlib | x264 | ffmpeg | libwebp | libdeflate | rlottie | qtbase | qtmultimedia) ;;
    *)
        echo "build-sdk.sh: no library named $library" >&2
        exit 2
        ;;
    esac
    SECONDS=0
    # In the background: on the left of || a failure within would not end it.
    "$library" >"$work/$library.log" 2>&1 &
    wait $! || {
        tail -n 30 "$work/$library.log" >&2
        echo "build-sdk.sh: $library failed; see $work/$library.log" >&2
        exit 1
    }
    echo "$library: $SECONDS s"
done
