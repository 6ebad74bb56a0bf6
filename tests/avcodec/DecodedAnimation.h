#pragma once

#include <QImage>
#include <QString>

#include <vector>

/// An animated GIF, PNG or WebP file read with libavformat or libwebp alone, for testing the encoders.
class DecodedAnimation
{
public:
    explicit DecodedAnimation(const QString &path);

    /// Why the file could not be read; empty if all of it could.
    QString errorString;

    std::vector<QImage> frames;      ///< composed to complete images
    std::vector<double> durationsMs; ///< of each frame
    int plays = -1;                  ///< how many times it is played, 0 for endlessly

    double totalMs() const;

    /// The image shown at a time; null after the end.
    QImage at(double ms) const;

private:
    QString readWebp(const QByteArray &bytes);
    QString read(const QString &path);
};
