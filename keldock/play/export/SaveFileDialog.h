#pragma once

#include <QCoreApplication>
#include <QString>
#include <QStringList>

class QWidget;

/// Asks where to save a file.
class SaveFileDialog
{
    Q_DECLARE_TR_FUNCTIONS(SaveFileDialog)

public:
    struct Kind {
        QString title;
        QString description;  ///< of such files: "MP4 video"
        QStringList suffixes; ///< without dot; what the user types ends in one of them, or gets the first
    };

    /// The path, in the folder that was chosen last; empty when the user gave up. What is there already is overwritten
    /// only when the user agrees.
    static QString ask(QWidget *parent, const Kind &kind, const QString &name);

private:
    static bool mayWrite(QWidget *parent, const QString &path);
};
