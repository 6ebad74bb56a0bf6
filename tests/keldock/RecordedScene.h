#pragma once

#include "keldock/ColorScene.h"
#include "keldock/Keldock.h"
#include "keldock/RecordingFiles.h"

#include <QtTest>

/// What is recorded, and the same for the command line.
inline const QRect SceneRect(20, 30, 320, 240);
inline const QString Area = QStringLiteral("20,30,320x240");

/// Starts the program and returns when it records.
inline void startRecording(QProcess &process, const QString &out, const QByteArray &display = {})
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    if (!display.isEmpty())
        environment.insert("DISPLAY", display);
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(KELDOCK_PROGRAM), {"record", "--area", Area, "--fps", "20", "--out", out});
    QTRY_VERIFY_WITH_TIMEOUT(isUnderWay(out), Keldock::LimitMs);
}
