#include "recording/input/JsonArrayFile.h"

#include "files/WriteAll.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace kel
{

namespace
{
const QByteArray kOpening = QByteArrayLiteral("[");
const QByteArray kClosing = QByteArrayLiteral("\n]\n");

/// The text of an object, indented as an array element. Line breaks inside strings are escaped, so all others can be
/// indented.
QByteArray asElement(const QJsonObject &object)
{
    QByteArray text = QJsonDocument(object).toJson();
    text.chop(1);
    return "\n    " + text.replace('\n', "\n    ");
}
} // namespace

JsonArrayFile::JsonArrayFile(const QString &path)
    : m_file(path)
{
}

bool JsonArrayFile::append(const std::vector<QJsonObject> &objects)
{
    if (!open())
        return false;
    QByteArray text;
    for (const QJsonObject &object : objects) {
        if (!m_isEmpty || !text.isEmpty())
            text += ',';
        text += asElement(object);
    }
    if (text.isEmpty())
        return true;
    if (!writeAtEnd(text))
        return false;
    m_isEmpty = false;
    return true;
}

void JsonArrayFile::close()
{
    m_file.close();
}

bool JsonArrayFile::open()
{
    if (m_file.isOpen())
        return true;
    // Unbuffered: an object is in the file when append() returns.
    if (!m_file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered)) {
        m_error = m_file.errorString();
        return false;
    }
    m_end = 0;
    m_isEmpty = true;
    if (writeAtEnd(kOpening))
        return true;
    m_file.close();
    return false;
}

/// Overwrites the closing bracket and appends a new one.
bool JsonArrayFile::writeAtEnd(const QByteArray &text)
{
    const QByteArray bytes = text + kClosing;
    if (m_file.seek(m_end) && writeAll(m_file, bytes)) {
        m_end += text.size();
        return true;
    }
    m_error = m_file.errorString();
    // Restore the closing bracket, for which the disk has room.
    if (m_end > 0 && m_file.seek(m_end) && writeAll(m_file, kClosing))
        m_file.resize(m_end + kClosing.size());
    return false;
}

} // namespace kel
