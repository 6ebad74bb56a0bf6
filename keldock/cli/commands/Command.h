#pragma once

#include <QString>
#include <QStringList>

/// A command of keldock. It parses its arguments and then runs once.
class Command
{
public:
    virtual ~Command() = default;

    /// The name on the command line.
    virtual QString name() const = 0;

    /// A one-line description.
    virtual QString summary() const = 0;

    /// The help page, with a newline at the end.
    virtual QString help() const = 0;

    /// Whether the command accesses the screen. The others run without a display.
    virtual bool needsDisplay() const { return false; }

    /// Parses the arguments after the name, before an application object exists. Returns an error message, or an empty
    /// string.
    virtual QString parse(const QStringList &arguments) = 0;

    /// Executes the command. Returns an error message of one line, or an empty string.
    virtual QString run() = 0;
};
