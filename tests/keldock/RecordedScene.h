#pragma once

#include "keldock/ColorScene.h"
#include "keldock/Keldock.h"
#include "keldock/RecordingFiles.h"

#include <QtTest>

/// The recorded area, and the same as an argument of the command line.
inline const QRect kSceneRect(20, 30, 320, 240);
inline const QString kArea = "20,30,320x240";

/// Starts the program and returns when it is recording.
inline void startRecording(QProcess &process, const QString &out, const QByteArray &display = {})
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    if (!display.isEmpty())
        environment.insert("DISPLAY", display);
    process.setProcessEnvironment(environment);
    process.start(KELDOCK_PROGRAM, {"record", "--area", kArea, "--fps", "20", "--out", out});
    QTRY_VERIFY_WITH_TIMEOUT(isInProgress(out), Keldock::kLimitMs);
}
