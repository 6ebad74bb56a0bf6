#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

/// The words of the scene. Fixed, so that figures measured at different times stay comparable.
namespace SceneText
{

/// The source code that scrolls through the editor.
QStringList code();

/// The names in the editor's file list.
QStringList files();

struct TerminalLine {
    bool isTyped; ///< a command that someone types, else output
    QString text;
};

/// What is typed and answered in the terminal, again and again.
QVector<TerminalLine> session();

} // namespace SceneText
