#pragma once

#include "files/PrivateFile.h"

#include <QByteArray>
#include <QString>

#include <vector>

class QJsonObject;

namespace kel
{

/// A file that holds one JSON array of objects, in the layout of QJsonDocument, and grows at its end. It is valid JSON
/// after every call, and a call costs only what it appends. One thread at a time.
class JsonArrayFile
{
public:
    explicit JsonArrayFile(const QString &path);

    /// The first call replaces an earlier file. False when the file cannot be written; it is then unchanged, and the
    /// objects may be appended later.
    bool append(const std::vector<QJsonObject> &objects);

    /// A later append() writes the file anew.
    void close();

    QString path() const { return m_file.fileName(); }
    QString errorString() const { return m_error; }

private:
    bool open();
    bool writeAtEnd(const QByteArray &text);

    PrivateFile m_file;
    qint64 m_end = 0; // of the last object, or of the opening bracket
    bool m_isEmpty = true;
    QString m_error;
};

} // namespace kel
