#pragma once

#include <QString>
#include <QStringList>

/// One thing that keldock does: it reads its own arguments and then runs, once.
class Command
{
public:
    virtual ~Command() = default;

    /// The word by which it is called.
    virtual QString name() const = 0;

    /// What it does, in one short line.
    virtual QString summary() const = 0;

    /// The whole help page, ending in a newline.
    virtual QString help() const = 0;

    /// Whether it works on the screen itself; the others run without any display.
    virtual bool needsDisplay() const { return false; }

    /// Reads what follows the name. Runs before there is an application object. Answers what is wrong, empty when
    /// nothing is.
    virtual QString parse(const QStringList &arguments) = 0;

    /// Does the work. Answers in one line why it failed, empty when it did not.
    virtual QString run() = 0;
};
