#include "screen/portal/RestoreTokens.h"

#include "files/PrivateFile.h"
#include "logging/PlatformLog.h"

#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStandardPaths>
#include <QStringList>
#include <QtDebug>

#include <utility>

namespace kel
{

namespace
{

QString keyOf(const QVector<QRect> &monitors)
{
    QStringList names;
    for (const QRect &monitor : monitors)
        names << QStringLiteral("%1x%2+%3+%4")
                     .arg(monitor.width())
                     .arg(monitor.height())
                     .arg(monitor.x())
                     .arg(monitor.y());
    names.sort();
    return names.join(QLatin1Char(' '));
}

/// A file that is missing or damaged has no tokens.
QJsonObject readTokens(const QString &path)
{
    QFile file(path);
    return file.open(QFile::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).object() : QJsonObject();
}

} // namespace

RestoreTokens::RestoreTokens()
    : RestoreTokens(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
                    QLatin1String("/KelMovie/screen-cast.json"))
{
}

RestoreTokens::RestoreTokens(QString path)
    : m_path(std::move(path))
{
}

QString RestoreTokens::token(const QVector<QRect> &monitors) const
{
    return readTokens(m_path).value(keyOf(monitors)).toString();
}

void RestoreTokens::setToken(const QVector<QRect> &monitors, const QString &token)
{
    QJsonObject tokens = readTokens(m_path);
    const QString key = keyOf(monitors);
    if (tokens.value(key).toString() == token)
        return;
    if (token.isEmpty())
        tokens.remove(key);
    else
        tokens.insert(key, token);
    QString error = makePrivateDirectory(QFileInfo(m_path).path());
    PrivateFile file(m_path);
    const QByteArray content = QJsonDocument(tokens).toJson();
    const bool isWritten = error.isEmpty() && file.open(QFile::WriteOnly | QFile::Truncate) &&
                           file.write(content) == content.size() && file.flush();
    if (!isWritten)
        qCWarning(logScreen, "[RestoreTokens] cannot write %s: %s", qUtf8Printable(m_path),
                  qUtf8Printable(error.isEmpty() ? file.errorString() : error));
}

} // namespace kel
