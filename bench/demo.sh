#!/usr/bin/env bash
# demo.sh BUILD_DIR [OUTPUT_DIR]: records a real screen for some seconds and exports the recording.
# Without a screen of its own it starts a private one with a lively scene.
set -euo pipefail

build=${1:?usage: demo.sh BUILD_DIR [OUTPUT_DIR]}
out=${2:-recordings/demo-$(date +%Y%m%d-%H%M%S)}
keldock=$build/bin/keldock
seconds=6
children=()
scratch=

clean_up() {
    for child in "${children[@]}"; do
        kill "$child" 2>/dev/null || true
        wait "$child" 2>/dev/null || true
    done
    [ -z "$scratch" ] || rm -rf "$scratch"
}
trap clean_up EXIT
trap 'exit 130' INT
trap 'exit 143' TERM HUP

say() { printf '\n\033[1m%s\033[0m\n' "$*"; }
[ -t 1 ] || say() { printf '\n%s\n' "$*"; }

# A command as a person would type it, then what it does.
show() {
    printf '$ keldock'
    printf ' %q' "$@"
    printf '\n'
    "$keldock" "$@"
}

start_private_screen() {
    scratch=$(mktemp -d)
    export XDG_RUNTIME_DIR=${XDG_RUNTIME_DIR:-$scratch} # Qt complains without
    mkfifo "$scratch/display" "$scratch/scene"
    Xvfb -displayfd 3 -screen 0 1280x720x24 -nolisten tcp -noreset 3>"$scratch/display" >/dev/null 2>&1 &
    children=("$!")
    local number line
    read -r -t 30 number <"$scratch/display" || { echo "demo: Xvfb did not start" >&2; exit 1; }
    export DISPLAY=":$number"
    unset WAYLAND_DISPLAY XAUTHORITY
    "$build/bin/kel_scene" --fps 30 >"$scratch/scene" &
    children=("$!" "${children[@]}")
    read -r -t 30 line <"$scratch/scene" || { echo "demo: the scene did not start" >&2; exit 1; }
}

if [ -n "${DISPLAY:-}" ] && xdpyinfo >/dev/null 2>&1; then
    say "Recording your screen for $seconds seconds"
else
    say "Recording a private screen with a lively scene for $seconds seconds"
    start_private_screen
fi

mkdir -p "$out"
show record --screen 0 --fps 30 --duration "$seconds" --out "$out/recording"

say "What was recorded"
show info "$out/recording"

say "Exporting"
show export "$out/recording" "$out/demo.mp4"
show export "$out/recording" "$out/demo.gif" --fps 15
show frame "$out/recording" 60 "$out/picture.png"

say "The files"
du -h --apparent-size "$out/demo.mp4" "$out/demo.gif" "$out/picture.png"
