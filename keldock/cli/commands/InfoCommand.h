#pragma once

#include "cli/commands/Command.h"

class LoadedRecording;

/// `keldock info`: describes a recording, as text or JSON.
class InfoCommand : public Command
{
public:
    QString name() const override { return QStringLiteral("info"); }
    QString summary() const override { return QStringLiteral("describe a recording"); }
    QString help() const override;
    QString parse(const QStringList &arguments) override;
    QString run() override;

private:
    static QString asText(const LoadedRecording &recording);
    static QString asJson(const LoadedRecording &recording);

    QString m_directory;
    bool m_json = false;
};
