#pragma once

class KelPlaybackTrack;
struct KelMovieConfig;

namespace kel
{

/// Gives a track the settings that are meant for its kind; the only place where settings and playback meet. Values out
/// of range, as a damaged store may hold them, are brought into it.
/// `pixelRatio`: picture pixels per pixel of a 96-dpi desktop.
void applyPlaybackSettings(const KelMovieConfig &config, double pixelRatio, KelPlaybackTrack &track);

} // namespace kel
