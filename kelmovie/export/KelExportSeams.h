#pragma once

#include <QSize>
#include <QString>

#include <functional>
#include <memory>

class KelAVCodecEncoder;

/// What an export takes from the outside world; a test brings its own.
struct KelExportSeams {
    /// Null for a format that there is no encoder for. `extra`: see AnimationEncoder.
    std::function<std::unique_ptr<KelAVCodecEncoder>(int format, const QSize &size, const QString &path, int fps,
                                                     int quality, const QString &extra)>
        createEncoder;

    /// The codec library's encoders.
    static KelExportSeams real();
};
