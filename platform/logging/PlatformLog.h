#pragma once

#include <QLoggingCategory>

/// The logging categories of the platform libraries. Header-only, because some of them are shared libraries of their
/// own.
namespace kel
{

/// Encoders, decoders, FFmpeg and x264.
inline const QLoggingCategory &logCodec()
{
    static const QLoggingCategory category("kelmovie.codec");
    return category;
}

/// Global keyboard and mouse events.
inline const QLoggingCategory &logInput()
{
    static const QLoggingCategory category("kelmovie.input");
    return category;
}

/// Vector animations.
inline const QLoggingCategory &logLottie()
{
    static const QLoggingCategory category("kelmovie.lottie");
    return category;
}

/// Frames and pointer of the screen.
inline const QLoggingCategory &logScreen()
{
    static const QLoggingCategory category("kelmovie.screen");
    return category;
}

/// Theme, style sheets and icons.
inline const QLoggingCategory &logUi()
{
    static const QLoggingCategory category("kelmovie.ui");
    return category;
}

} // namespace kel
