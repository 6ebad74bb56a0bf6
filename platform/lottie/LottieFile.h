#pragma once

#include <QByteArray>
#include <QString>

namespace kel
{

/// The text of an animation, looked over before the renderer gets it: the renderer trusts what it reads.
class LottieFile
{
public:
    LottieFile(const QString &path, qint64 maxSize);

    /// Empty when the file can be used, else why not, in English.
    QString errorString() const { return m_error; }

    QByteArray data() const { return m_data; }

private:
    QString read(const QString &path, qint64 maxSize);
    QString check() const;

    QByteArray m_data;
    QString m_error;
};

} // namespace kel
