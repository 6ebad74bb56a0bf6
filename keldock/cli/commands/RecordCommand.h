#pragma once

#include "cli/commands/Command.h"

#include <KelMovie/KelMultiTrackRecorder.h>

#include <QRect>
#include <QStringList>

class Arguments;

/// `keldock record`: records a screen or a part of it for a given time or until a stop signal.
class RecordCommand : public Command
{
public:
    QString name() const override { return QStringLiteral("record"); }
    QString summary() const override { return QStringLiteral("record a screen or a part of it into a directory"); }
    QString help() const override;
    bool needsDisplay() const override { return true; }
    QString parse(const QStringList &arguments) override;
    QString run() override;

private:
    void parseArea(Arguments &options);
    void parseTracks(Arguments &options);
    QString findArea(QRect *area) const;
    QString prepareDirectory() const;
    QString summaryText() const;

    KelMultiTrackRecorder::RecordConfig m_config;
    QRect m_area;            ///< empty for a whole screen
    int m_screen = -1;       ///< -1 for an area
    qint64 m_durationMs = 0; ///< 0: until a stop signal
};
