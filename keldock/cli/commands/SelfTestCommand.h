#pragma once

#include "cli/commands/Command.h"

/// `keldock selftest`: checks what the engine supports on this computer.
class SelfTestCommand : public Command
{
public:
    QString name() const override { return QStringLiteral("selftest"); }
    QString summary() const override { return QStringLiteral("test what works on this computer"); }
    QString help() const override;
    bool needsDisplay() const override { return true; }
    QString parse(const QStringList &arguments) override;
    QString run() override;
};
