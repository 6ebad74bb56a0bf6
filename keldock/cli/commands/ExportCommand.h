#pragma once

#include "cli/commands/Command.h"

#include <QSize>

class LoadedRecording;
struct KelExportRequest;

/// `keldock export`: a recording as one MP4, GIF, APNG or WebP file.
class ExportCommand : public Command
{
public:
    QString name() const override { return QStringLiteral("export"); }
    QString summary() const override { return QStringLiteral("turn a recording into MP4, GIF, APNG or WebP"); }
    QString help() const override;
    QString parse(const QStringList &arguments) override;
    QString run() override;

private:
    QString chooseRange(const LoadedRecording &recording, KelExportRequest *request) const;

    QString m_directory;
    QString m_file;
    int m_format = -1;
    int m_fromMs = -1; ///< not given
    int m_toMs = -1;   ///< not given
    int m_fps = 0;     ///< that of the recording
    int m_quality = 90;
    int m_loops = 0;
    QSize m_size; ///< empty: as recorded
    double m_speed = 1.0;
};
