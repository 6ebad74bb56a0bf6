#pragma once

#include "cli/commands/Command.h"

#include <QSize>

class LoadedRecording;
struct KelExportRequest;

/// `keldock export`: exports a recording as MP4, GIF, APNG or WebP.
class ExportCommand : public Command
{
public:
    QString name() const override { return QStringLiteral("export"); }
    QString summary() const override { return QStringLiteral("export a recording as MP4, GIF, APNG or WebP"); }
    QString help() const override;
    QString parse(const QStringList &arguments) override;
    QString run() override;

private:
    QString setRange(const LoadedRecording &recording, KelExportRequest *request) const;

    QString m_directory;
    QString m_file;
    int m_format = -1;
    int m_fromMs = -1; ///< -1: from the start
    int m_toMs = -1;   ///< -1: to the end
    int m_fps = 0;     ///< 0: as recorded
    int m_quality = 90;
    int m_loops = 0;
    QSize m_size; ///< empty: as recorded
    double m_speed = 1.0;
};
