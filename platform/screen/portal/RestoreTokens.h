#pragma once

#include <QRect>
#include <QString>
#include <QVector>

namespace kel
{

/// The tokens with which the portal shows the same monitors again without asking, kept in a file that only its owner
/// can read. One token for each choice of monitors.
class RestoreTokens
{
public:
    /// In the file of this user.
    RestoreTokens();
    explicit RestoreTokens(QString path);

    /// Empty without one.
    QString token(const QVector<QRect> &monitors) const;

    /// Replaces the token; an empty one removes it. A token that cannot be written costs one more question, and is
    /// logged.
    void setToken(const QVector<QRect> &monitors, const QString &token);

private:
    const QString m_path;
};

} // namespace kel
