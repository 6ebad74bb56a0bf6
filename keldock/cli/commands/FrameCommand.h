#pragma once

#include "cli/commands/Command.h"

/// `keldock frame`: saves a composed frame of a recording as a PNG file.
class FrameCommand : public Command
{
public:
    QString name() const override { return QStringLiteral("frame"); }
    QString summary() const override { return QStringLiteral("save a frame of a recording as PNG"); }
    QString help() const override;
    QString parse(const QStringList &arguments) override;
    QString run() override;

private:
    QString m_directory;
    QString m_file;
    int m_frame = 0;
};
