#pragma once

#include "keldock/Keldock.h"

#include <QByteArray>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QString>

/// The output of `keldock info --json`.
inline QJsonObject recordingInfo(const QString &recording)
{
    return QJsonDocument::fromJson(Keldock::run({"info", recording, "--json"}).output.toUtf8()).object();
}

/// Whether frames and metadata of a recording in progress are on disk.
inline bool isInProgress(const QString &recording)
{
    return QFileInfo(recording + "/Screen/screen_record.mp4").size() > 0 &&
           recordingInfo(recording).value("actualRecordedFrames").toInt() > 0;
}

inline QByteArray readAll(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline bool writeAll(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

inline bool copyTree(const QString &from, const QString &to)
{
    QDirIterator files(from, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = files.next();
        const QString target = to + path.mid(from.size());
        if (!QDir().mkpath(QFileInfo(target).path()) || !QFile::copy(path, target))
            return false;
    }
    return true;
}
