#pragma once

#include <QSize>
#include <QString>

#include <functional>
#include <memory>

class KelAVCodecEncoder;

/// What an export needs from its environment; tests replace it.
struct KelExportDependencies {
    /// Creates the encoder for a format of KelExportRequest; null if there is none. `extra`: see AnimationEncoder.
    std::function<std::unique_ptr<KelAVCodecEncoder>(int format, const QSize &size, const QString &path, int fps,
                                                     int quality, const QString &extra)>
        createEncoder;

    /// The encoders of the codec library.
    static KelExportDependencies real();
};
