#pragma once

/// The highest frame rate for recording and export, in frames per second.
inline constexpr int kMaxFps = 240;
