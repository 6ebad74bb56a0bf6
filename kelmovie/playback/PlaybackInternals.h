#pragma once

#include <KelMovie/KelPlaybackRules.h>

#include <QString>

#include <memory>

class KelPlaybackTrackManager;
struct KelPlaybackDependencies;

namespace kel
{

class PlaybackEngine;

/// Access to the parts of a KelPlaybackTrackManager that only the module itself uses.
class PlaybackInternals
{
public:
    /// Owned by the manager.
    static PlaybackEngine &engine(KelPlaybackTrackManager &manager);
    static const PlaybackEngine &engine(const KelPlaybackTrackManager &manager);

    /// Loads a recording with another clock, other decoders or another sound device.
    static std::unique_ptr<KelPlaybackTrackManager>
    load(const QString &recordDir, const KelPlaybackDependencies &dependencies, const KelPlaybackRules &rules = {});
};

} // namespace kel
