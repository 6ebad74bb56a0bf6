#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QMap>
#include <QPoint>
#include <QString>
#include <QStringList>

inline QJsonObject mouseMove(int frame, int x, int y, const QString &action = "move")
{
    return {{"frame", frame}, {"x", x}, {"y", y}, {"timestamp", frame}, {"cursor", "square"}, {"action", action}};
}

/// From a text such as "0:20,30 4:30,40": frame and position of each move.
inline QJsonArray mouseMoves(const QString &script)
{
    QJsonArray records;
    for (const QString &move : script.split(' ', Qt::SkipEmptyParts)) {
        const QString place = move.section(':', 1);
        records.append(mouseMove(move.section(':', 0, 0).toInt(), place.section(',', 0, 0).toInt(),
                                 place.section(',', 1).toInt()));
    }
    return records;
}

/// From a text such as "10 left down, 14 left up @3, 20 wheel -120": frame and event, with its timestamp in ms after an
/// @; the default is 40 ms per frame.
inline QJsonArray mouseClicks(const QString &script, QPoint place = QPoint(100, 50))
{
    static const QMap<QString, QString> actions{{"down", "click"}, {"up", "release"}};
    QJsonArray records;
    for (const QString &entry : script.split(", ", Qt::SkipEmptyParts)) {
        const QStringList words = entry.split(' ');
        const int frame = words[0].toInt();
        const bool isWheel = words[1] == "wheel";
        QJsonObject record{{"frame", frame},
                           {"x", place.x()},
                           {"y", place.y()},
                           {"timestamp", words.value(3).startsWith('@') ? words[3].mid(1).toInt() : frame * 40},
                           {"cursor", "square"},
                           {"action", isWheel ? words[1] : actions.value(words[2], words[2])},
                           {"button", isWheel ? QString() : words[1]}};
        if (isWheel)
            record["delta"] = words[2].toInt();
        records.append(record);
    }
    return records;
}
