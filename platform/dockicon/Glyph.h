#pragma once

namespace KelDockIcon
{

/// The glyphs of the icon font and their code points. Made by font.py from the drawings in svg/.
enum class Glyph : char16_t {
    Pause = 0xe622,
    Play = 0xe624,
    Record = 0xe62f,
    Stop = 0xe692,
    Close = 0xe700,
    Settings = 0xe701,
    Mouse = 0xe702,
    Keyboard = 0xe703,
    Speaker = 0xe704,
    Microphone = 0xe705,
    SpeakerOff = 0xe706,
    MicrophoneOff = 0xe707,
    Area = 0xe708,
    Window = 0xe709,
    Screen = 0xe70a,
    Folder = 0xe70b,
    Trash = 0xe70c,
    Export = 0xe70d,
    Trim = 0xe70e,
    Speed = 0xe70f,
    Tray = 0xe710,
    Check = 0xe711,
    ChevronDown = 0xe712,
    Warning = 0xe713,
    Rerecord = 0xe714,
    Pointer = 0xe715,
    Grip = 0xe716,
    KeyboardOff = 0xe717,
    Camera = 0xe720,
    FullScreen = 0xe721,
};

} // namespace KelDockIcon
