#pragma once

#include <QMessageBox>

/// Modal message boxes. They return when the user has answered; GUI thread. `parent` may be null: the box then belongs
/// to the active window. All texts are shown as plain text, however they are spelled; `detail` stands below `text` in
/// smaller letters, and may be empty.
namespace KelMsgBox
{

void warning(QWidget *parent, const QString &title, const QString &text, const QString &detail = QString());
void critical(QWidget *parent, const QString &title, const QString &text, const QString &detail = QString());

/// The button that was pressed; `defaultButton` is the one that Enter presses, No and Cancel the ones of Escape.
QMessageBox::StandardButton question(QWidget *parent, const QString &title, const QString &text,
                                     QMessageBox::StandardButtons buttons = QMessageBox::Yes | QMessageBox::No,
                                     QMessageBox::StandardButton defaultButton = QMessageBox::Yes);

} // namespace KelMsgBox
