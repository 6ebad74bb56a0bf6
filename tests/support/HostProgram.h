#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

/// Runs a program of the host machine, such as "ffmpeg", to create or check files. Under wine this is the host's own
/// program, and file names are translated to the host's.
struct HostProgram {
    bool succeeded = false;
    QByteArray output;

    /// Runs it with `input` on its standard input and waits for its end, with a timeout.
    static HostProgram run(const QString &program, const QStringList &arguments, const QByteArray &input = {});

    static constexpr int kTimeoutMs = 60000;
};
