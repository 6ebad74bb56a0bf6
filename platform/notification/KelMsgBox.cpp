#include "notification/KelMsgBox.h"

#include <QApplication>
#include <QTextDocument>

namespace
{

QMessageBox::StandardButton ask(QMessageBox::Icon icon, QWidget *parent, const QString &title, const QString &text,
                                const QString &detail, QMessageBox::StandardButtons buttons,
                                QMessageBox::StandardButton defaultButton)
{
    QMessageBox box(icon, title, text, buttons, parent ? parent : QApplication::activeWindow());
    box.setTextFormat(Qt::PlainText);
    box.setInformativeText(detail.isEmpty() ? detail : Qt::convertFromPlainText(detail));
    box.setTextInteractionFlags(Qt::TextSelectableByMouse);
    box.setDefaultButton(defaultButton);
    return QMessageBox::StandardButton(box.exec());
}

} // namespace

void KelMsgBox::warning(QWidget *parent, const QString &title, const QString &text, const QString &detail)
{
    ask(QMessageBox::Warning, parent, title, text, detail, QMessageBox::Ok, QMessageBox::Ok);
}

void KelMsgBox::critical(QWidget *parent, const QString &title, const QString &text, const QString &detail)
{
    ask(QMessageBox::Critical, parent, title, text, detail, QMessageBox::Ok, QMessageBox::Ok);
}

QMessageBox::StandardButton KelMsgBox::question(QWidget *parent, const QString &title, const QString &text,
                                                QMessageBox::StandardButtons buttons,
                                                QMessageBox::StandardButton defaultButton)
{
    return ask(QMessageBox::Question, parent, title, text, QString(), buttons, defaultButton);
}
