#pragma once

#include "support/Files.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <QtEndian>

// Reads the files of the mouse and keyboard tracks independently of the product's code.

/// "FRAME ACTION X,Y CURSOR", with " [BUTTON]" and " DELTA" if the event has them.
inline QStringList mouseEvents(const QString &path)
{
    QStringList lines;
    for (const QJsonValue &value : QJsonDocument::fromJson(readFile(path)).array()) {
        const QJsonObject event = value.toObject();
        QString line = QString("%1 %2 %3,%4 %5")
                           .arg(event["frame"].toInt())
                           .arg(event["action"].toString())
                           .arg(event["x"].toInt())
                           .arg(event["y"].toInt())
                           .arg(event["cursor"].toString());
        if (event.contains("button"))
            line += " [" + event["button"].toString() + "]";
        if (event.contains("delta"))
            line += QString(" %1").arg(event["delta"].toInt());
        lines << line;
    }
    return lines;
}

/// "KEY(hex) PRESSED FRAME" for each record, or "invalid".
inline QStringList keyRecords(const QByteArray &file)
{
    const auto number = [&file](int offset) { return qFromLittleEndian<qint32>(file.constData() + offset); };
    if (file.size() < 32 || file.size() != 32 + 12 * number(4) || number(16) != 12 * number(4))
        return {"invalid"};
    QStringList lines;
    for (int at = 32; at < file.size(); at += 12)
        lines << QString("%1 %2 %3").arg(number(at), 0, 16).arg(number(at + 4)).arg(number(at + 8));
    return lines;
}
