#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

/// The texts of the scene. They never change, so that figures measured at different times stay comparable.
namespace SceneText
{

/// The source code that scrolls through the editor.
QStringList code();

/// The names in the editor's file list.
QStringList files();

struct TerminalLine {
    bool isTyped; ///< a command that is typed, otherwise output
    QString text;
};

/// The commands and their output in the terminal, repeated forever.
QVector<TerminalLine> session();

} // namespace SceneText
