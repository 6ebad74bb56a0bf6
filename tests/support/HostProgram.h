#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

/// A program of the machine that the tests run on, as "ffmpeg", by which they make and look at files. With wine it is
/// the program of the system below, which takes the names of files as that has them: they are translated.
struct HostProgram {
    bool succeeded = false;
    QByteArray output;

    /// Runs it with `input` on its standard input, and waits for its end, with a limit.
    static HostProgram run(const QString &program, const QStringList &arguments, const QByteArray &input = {});

    static constexpr int LimitMs = 60000;
};
