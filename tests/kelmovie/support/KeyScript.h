#pragma once

#include "recording/input/KeyLogReader.h"

#include <QMetaEnum>
#include <QString>
#include <QStringList>
#include <QtEndian>

/// Records from a text such as "10:+Control 12:+C 14:-C 20:off 30:on": frame, + pressed or - released, Qt::Key or the
/// character of a key.
inline std::vector<kel::KeyRecord> keyScript(const QString &script)
{
    std::vector<kel::KeyRecord> records;
    for (const QString &word : script.split(' ', Qt::SkipEmptyParts)) {
        const int frame = word.section(':', 0, 0).toInt();
        const QString event = word.section(':', 1);
        if (event == "off" || event == "on") {
            records.push_back({0, event == "on", frame});
            continue;
        }
        const QByteArray name = "Key_" + event.mid(1).toLatin1();
        bool isKnown = event.size() == 2;
        const int key = isKnown ? event[1].unicode() : QMetaEnum::fromType<Qt::Key>().keyToValue(name, &isKnown);
        if (!isKnown)
            qFatal("no such key: %s", qPrintable(word));
        records.push_back({key, event.startsWith('+'), frame});
    }
    return records;
}

/// The content of a keyboard.keymeta.
inline QByteArray keyMetaFile(const std::vector<kel::KeyRecord> &records, const QSize &canvas, qint32 fps = 30)
{
    const auto count = qint32(records.size());
    std::vector<qint32> words{0, count, fps, 0, count * 12, 0, canvas.width(), canvas.height()};
    for (const kel::KeyRecord &record : records)
        words.insert(words.end(), {record.key, record.pressed ? 1 : 0, record.frame});
    QByteArray bytes(int(words.size() * sizeof(qint32)), Qt::Uninitialized);
    qToLittleEndian<qint32>(words.data(), qsizetype(words.size()), bytes.data());
    return bytes.replace(0, 4, "KELK");
}
