#pragma once

#include <QCoreApplication>
#include <QString>
#include <QStringList>

class QWidget;

/// Asks where to save a file. GUI thread.
class SaveFileDialog
{
    Q_DECLARE_TR_FUNCTIONS(SaveFileDialog)

public:
    struct Kind {
        QString title;
        QString description;  ///< of the file type: "MP4 video"
        QStringList suffixes; ///< without dot; the first is appended to names that have none of them
    };

    /// Proposes `name` in the folder that was last used. Returns the path, after the user has agreed to replace a file
    /// that exists there; empty if the user cancelled.
    static QString ask(QWidget *parent, const Kind &kind, const QString &name);

private:
    static bool confirmReplace(QWidget *parent, const QString &path);
};
