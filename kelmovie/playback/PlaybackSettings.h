#pragma once

class KelPlaybackTrack;
struct KelMovieConfig;

namespace kel
{

/// Applies the settings for its kind to a track; the only place where playback reads settings. Values that are out of
/// range, which a damaged store may contain, are clamped.
/// `pixelRatio`: logical pixels of the frame per pixel of a 96-dpi desktop.
void applyPlaybackSettings(const KelMovieConfig &config, double pixelRatio, KelPlaybackTrack &track);

} // namespace kel
