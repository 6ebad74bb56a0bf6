#pragma once

#include <QImage>
#include <QString>

#include <vector>

/// An animated GIF, PNG or WebP file read by the libraries that others read it with, for tests of what writes it.
class DecodedAnimation
{
public:
    explicit DecodedAnimation(const QString &path);

    /// Why the file could not be read, empty when all of it could.
    QString errorString;

    std::vector<QImage> frames;      ///< the whole picture each, composed
    std::vector<double> durationsMs; ///< of each frame
    int plays = -1;                  ///< how often it is to be shown, 0 for endlessly

    double totalMs() const;

    /// What is to be seen at a time; a null image after the end.
    QImage at(double ms) const;

private:
    QString readWebp(const QByteArray &bytes);
    QString read(const QString &path);
};
