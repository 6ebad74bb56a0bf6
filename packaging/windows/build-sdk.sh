#!/usr/bin/env bash
# build-sdk.sh [LIBRARY…]: builds the libraries for ./dev windows (Qt, FFmpeg and so on, for 64-bit Windows) from Debian's
# sources into /opt/kelmovie-windows or $KELMOVIE_WINDOWS_SDK. Without arguments it builds all of them in order: Qt takes
# most of an hour on two cores, the others together some ten minutes. Needs root for /opt and for missing packages.
# Sources and builds are kept in $KELMOVIE_WINDOWS_WORK (build/windows-sdk), so that a step can be repeated.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
sdk=${KELMOVIE_WINDOWS_SDK:-/opt/kelmovie-windows}
work=${KELMOVIE_WINDOWS_WORK:-$PWD/build/windows-sdk}
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

# Configure scripts look for these names; they must get the compilers with C++ threads ("posix").
mkdir -p "$work/bin"
for tool in gcc g++; do
    ln -sf "$(command -v $host-$tool-posix)" "$work/bin/$host-$tool"
done
export PATH="$work/bin:$PATH" PKG_CONFIG_LIBDIR="$sdk/deps/lib/pkgconfig"

# source_entries: this machine's package sources, turned into entries for source packages
source_entries() {
    # One-line entries in *.list files; options in brackets are kept.
    find /etc/apt/sources.list /etc/apt/sources.list.d -name '*.list' -exec sed -n 's/^deb /deb-src /p' {} + 2>/dev/null || true
    # Paragraphs of "Field: value" lines in *.sources files.
    find /etc/apt/sources.list.d -name '*.sources' -exec cat {} + -exec echo {} + 2>/dev/null | awk '
        function flush(   i, j, n, m, uri, suite) {
            n = split(uris, uri)
            m = split(suites, suite)
            for (i = 1; types ~ /(^| )deb( |$)/ && enabled != "no" && i <= n; ++i)
                for (j = 1; j <= m; ++j)
                    print "deb-src", (key == "" ? "" : "[signed-by=" key "] ") uri[i], suite[j], components
            types = uris = suites = components = key = enabled = ""
        }
        /^[# \t]/ { next } # comments and continued lines
        !/:/ { flush(); next }
        { field = tolower($1); sub(/^[^:]*:[ \t]*/, "") }
        field == "types:" { types = $0 }
        field == "uris:" { uris = $0 }
        field == "suites:" { suites = $0 }
        field == "components:" { components = $0 }
        field == "signed-by:" { key = $0 }
        field == "enabled:" { enabled = $0 }
        END { flush() }'
}

# unpack PACKAGE: the Debian source with its patches applied, in $source
unpack() {
    local apt=(apt-get -o "Dir::Etc::SourceList=$work/sources.list" -o Dir::Etc::SourceParts=/dev/null
        -o "Dir::State::Lists=$work/lists" -o APT::Sandbox::User=root)
    if [ ! -e "$work/sources.list" ]; then
        mkdir -p "$work/lists/partial"
        source_entries >"$work/sources.list.new"
        [ -s "$work/sources.list.new" ] || { echo "build-sdk.sh: /etc/apt names no package sources" >&2; exit 1; }
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

# with_cmake [ARGUMENT…]: builds and installs $source with CMake
with_cmake() {
    cmake -S "$source" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX="$sdk/deps" \
        -DCMAKE_SYSTEM_NAME=Windows -DCMAKE_SYSTEM_PROCESSOR=x86_64 -DCMAKE_C_COMPILER=$host-gcc \
        -DCMAKE_CXX_COMPILER=$host-g++ -DCMAKE_RC_COMPILER=$host-windres -DCMAKE_FIND_ROOT_PATH="$sdk/deps" \
        -DCMAKE_FIND_ROOT_PATH_MODE_LIBRARY=ONLY -DCMAKE_FIND_ROOT_PATH_MODE_INCLUDE=ONLY \
        -DCMAKE_POLICY_VERSION_MINIMUM=3.5 "$@"
    cmake --build "$build" -j "$jobs"
    cmake --install "$build"
}

# describe NAME VERSION LIBRARY: writes a pkg-config file for a library that has none
describe() {
    mkdir -p "$sdk/deps/lib/pkgconfig"
    printf 'prefix=%s\nlibdir=${prefix}/lib\nincludedir=${prefix}/include\n\nName: %s\nDescription: %s\nVersion: %s\n%s\n%s\n' \
        "$sdk/deps" "$1" "$1" "$2" "Libs: -L\${libdir} -l$3" 'Cflags: -I${includedir}' >"$sdk/deps/lib/pkgconfig/$1.pc"
}

zlib() {
    unpack zlib
    # Debian's archive lacks the makefile for Windows, which would do just this.
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
    # The linker looks for import libraries in lib.
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
    # Headers that Debian takes from other packages. /usr/include itself would add those of this machine's C library.
    mkdir -p "$work/headers"
    ln -sfn /usr/include/rapidjson "$work/headers/rapidjson"
    ln -sfn /usr/include/stb "$work/headers/stb"
    # Its rasterizer computes with "long", which has only 32 bits on Windows: every image would differ a little.
    sed -i -E 's/\blong( long)?( int)?\b/long long/g; s/\bULONG_MAX\b/ULLONG_MAX/g' "$source"/src/vector/freetype/*.{h,cpp}
    # Without threads, which hang at process exit. "ulong" is a POSIX type. Invalid files must not abort the process.
    with_cmake -DLOTTIE_THREAD=OFF -DLOTTIE_MODULE=OFF -DLOTTIE_TEST=OFF -DLOTTIE_EXAMPLE=OFF \
        -DLIB_INSTALL_DIR="$sdk/deps/lib" \
        -DCMAKE_CXX_FLAGS="-Wno-free-nonheap-object -isystem $work/headers -DRAPIDJSON_ASSERT\(x\)=\(void\)\(x\) -Dulong=unsigned\ long"
    mkdir -p "$sdk/deps/bin"
    cp "$build/librlottie.dll" "$sdk/deps/bin" # not installed by its build
}

soundtouch() {
    unpack soundtouch
    with_cmake -DBUILD_SHARED_LIBS=OFF -DSOUNDSTRETCH=OFF -DSOUNDTOUCH_DLL=OFF -DOPENMP=OFF
}

qtbase() {
    unpack qtbase-opensource-src
    # Debian's archive lacks a header for tablets. The other features are not used by the programs.
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

[ $# -gt 0 ] || set -- zlib x264 ffmpeg libwebp libdeflate rlottie soundtouch qtbase qtmultimedia
for library in "$@"; do
    case "$library" in
    zlib | x264 | ffmpeg | libwebp | libdeflate | rlottie | soundtouch | qtbase | qtmultimedia) ;;
    *)
        echo "build-sdk.sh: no library named $library" >&2
        exit 2
        ;;
    esac
    SECONDS=0
    # In the background, because "set -e" has no effect within a command on the left of ||.
    "$library" >"$work/$library.log" 2>&1 &
    wait $! || {
        tail -n 30 "$work/$library.log" >&2
        echo "build-sdk.sh: $library failed; see $work/$library.log" >&2
        exit 1
    }
    echo "$library: $SECONDS s"
done
