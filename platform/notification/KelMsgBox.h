#pragma once

#include <QMessageBox>

/// Modal message boxes; each call returns when the user has answered. GUI thread. With a null `parent`, the box belongs
/// to the active window. All texts are plain text, markup is not interpreted. `detail` is shown below `text` in smaller
/// letters; it may be empty.
namespace KelMsgBox
{

void warning(QWidget *parent, const QString &title, const QString &text, const QString &detail = QString());
void critical(QWidget *parent, const QString &title, const QString &text, const QString &detail = QString());

/// Returns the pressed button. Enter presses `defaultButton`, Escape presses No or Cancel.
QMessageBox::StandardButton question(QWidget *parent, const QString &title, const QString &text,
                                     QMessageBox::StandardButtons buttons = QMessageBox::Yes | QMessageBox::No,
                                     QMessageBox::StandardButton defaultButton = QMessageBox::Yes);

} // namespace KelMsgBox
