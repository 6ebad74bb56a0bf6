#!/usr/bin/env bash
# demo.sh BUILD_DIR [OUTPUT_DIR]: records a real screen for some seconds and exports the recording.
# Without a screen it starts a private one with an animated scene, simulated mouse and keyboard input, and music.
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

# Prints a command as it would be typed, and runs it.
show() {
    printf '$ keldock'
    printf ' %q' "$@"
    printf '\n'
    "$keldock" "$@"
}

# The simulated user: moves, clicks, drags, turns the wheel, types and presses shortcuts, in a loop.
act() {
    local i
    while :; do
        for i in {0..40}; do
            xdotool mousemove $((200 + i * 16)) $((520 - i * 8 + (i - 20) * (i - 20) / 4)) sleep 0.015
        done
        xdotool click 1 sleep 0.3 keydown ctrl sleep 0.1 key c sleep 0.1 keyup ctrl sleep 0.4
        xdotool mousedown 1 sleep 0.1 mousemove_relative 40 20 sleep 0.2 mousemove_relative 40 20 sleep 0.4 mouseup 1
        xdotool keydown ctrl sleep 0.1 keydown shift sleep 0.1 key s sleep 0.1 keyup shift keyup ctrl
        xdotool sleep 0.2 click 5 sleep 0.15 click 5 sleep 0.5 click 4 sleep 0.4
        for i in {0..30}; do
            xdotool mousemove_relative -- -14 $((i < 15 ? 9 : -5)) sleep 0.015
        done
        xdotool click 3 sleep 0.4 key Return sleep 0.2 key Return sleep 0.3 keydown alt sleep 0.1 key Tab sleep 0.1 keyup alt sleep 0.3
    done
}

# Plays a melody to the private sound server.
play_melody() {
    ffmpeg -v error -re -f lavfi -i \
        "aevalsrc='0.3*sin(2*PI*t*(392+98*floor(mod(2*t\\,4))))*exp(-3*mod(t\\,0.5))':s=48000:d=600" \
        -f pulse demo >/dev/null 2>&1 &
    children=("$!" "${children[@]}")
}

start_private_screen() {
    scratch=$(mktemp -d)
    export XDG_RUNTIME_DIR=${XDG_RUNTIME_DIR:-$scratch} # Qt warns without it
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

# The screen of XWayland, which a Wayland session runs for X11 programs, is black.
has_screen() {
    [ -n "${DISPLAY:-}" ] && xdpyinfo >/dev/null 2>&1 && ! xrandr 2>/dev/null | grep -q '^XWAYLAND'
}

if has_screen; then
    say "Recording your screen for $seconds seconds"
    what=(--mouse --system-audio) # no keys: the user may be typing a password
elif [ -z "${KEL_DEMO_WITH_SOUND:-}" ]; then
    KEL_DEMO_WITH_SOUND=1 exec "$(dirname "$0")/../tests/support/with-sound" "$0" "$build" "$out"
else
    say "Recording a private screen with an animated scene for $seconds seconds"
    start_private_screen
    xsetroot -cursor_name left_ptr
    act 2>/dev/null &
    children=("$!" "${children[@]}")
    play_melody
    what=(--mouse --keyboard --system-audio)
fi

mkdir -p "$out"
show record --screen 0 --fps 30 "${what[@]}" --duration "$seconds" --out "$out/recording"

say "What was recorded"
show info "$out/recording"

say "Exporting"
show export "$out/recording" "$out/demo.mp4"
show export "$out/recording" "$out/demo.gif" --fps 15
show frame "$out/recording" 66 "$out/picture.png"

say "The files"
du -h --apparent-size "$out/demo.mp4" "$out/demo.gif" "$out/picture.png"
