#pragma once

#include <QByteArray>
#include <QString>

namespace kel
{

/// The content of an animation file, validated before it is passed to the renderer, which does no validation of its
/// own.
class LottieFile
{
public:
    LottieFile(const QString &path, qint64 maxSize);

    /// Empty when the file can be used, otherwise the reason in English.
    QString errorString() const { return m_error; }

    QByteArray data() const { return m_data; }

private:
    QString read(const QString &path, qint64 maxSize);
    QString check() const;

    QByteArray m_data;
    QString m_error;
};

} // namespace kel
