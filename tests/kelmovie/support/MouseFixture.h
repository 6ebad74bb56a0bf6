#pragma once

#include "support/Files.h"

#include <QDir>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <memory>

/// Handmade files of a mouse track.
class MouseFixture
{
public:
    MouseFixture()
        : m_dir(std::make_unique<QTemporaryDir>())
        , m_path(m_dir->path())
    {
        QDir(m_path).mkdir("cursors");
    }
    /// Creates them in `path`.
    explicit MouseFixture(const QString &path)
        : m_path(path)
    {
        QDir().mkpath(path + "/cursors");
    }

    QString path() const { return m_path; }
    QString filePath(const QString &name) const { return m_path + '/' + name; }
    void write(const QString &name, const QByteArray &content) const { writeFile(filePath(name), content); }
    void write(const QString &name, const QJsonArray &records) const { write(name, QJsonDocument(records).toJson()); }

    static QJsonObject move(int frame, int x, int y, const QString &cursor = "square", const QString &action = "move")
    {
        return {{"frame", frame}, {"x", x}, {"y", y}, {"timestamp", frame}, {"cursor", cursor}, {"action", action}};
    }

    /// From a text such as "10 left down, 14 left up @3, 20 wheel -120": frame and event, with its timestamp in ms
    /// after an @; the default is 40 ms per frame.
    static QJsonArray clicks(const QString &text)
    {
        static const QMap<QString, QString> actions{{"down", "click"}, {"up", "release"}};
        QJsonArray records;
        for (const QString &entry : text.split(", ", Qt::SkipEmptyParts)) {
            const QStringList words = entry.split(' ');
            const int frame = words[0].toInt();
            QJsonObject record{
                {"frame", frame}, {"x", 100}, {"y", 50}, {"timestamp", frame * 40}, {"cursor", "square"}};
            if (words.value(3).startsWith('@'))
                record["timestamp"] = words[3].mid(1).toInt();
            record["action"] = words[1] == "wheel" ? words[1] : actions.value(words[2], words[2]);
            record["button"] = words[1] == "wheel" ? QString() : words[1];
            if (words[1] == "wheel")
                record["delta"] = words[2].toInt();
            records.append(record);
        }
        return records;
    }

    /// One cursor, "square": `pixels` by `pixels` of plain green with a red pixel at its hotspot (2, 3).
    void writeSquareCursor(int pixels = 16, double ratio = 1) const
    {
        QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::green);
        image.setPixelColor(2, 3, Qt::red);
        if (!image.save(filePath("cursors/square.png")))
            qFatal("cannot write the fixture");
        writeCursorList("square.png", ratio);
    }
    void writeCursorList(const QString &image, double ratio = 1) const
    {
        const QJsonObject cursor{
            {"id", "square"}, {"image", image}, {"hotspot_x", 2}, {"hotspot_y", 3}, {"device_pixel_ratio", ratio}};
        const QJsonObject list{{"cursors", QJsonArray{cursor}}, {"total_types", 1}};
        write("cursor.json", QJsonDocument(list).toJson());
    }

private:
    std::unique_ptr<QTemporaryDir> m_dir;
    const QString m_path;
};
