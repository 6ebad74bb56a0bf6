#pragma once

#include <QProcess>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

/// Runs the real program with arguments, and holds the result.
struct Keldock {
    int status = -1; ///< -1 if it crashed, hung or was killed
    QString output;
    QString errors;

    static constexpr int kLimitMs = 60000;

    static Keldock run(const QStringList &arguments,
                       const QProcessEnvironment &environment = QProcessEnvironment::systemEnvironment())
    {
        QProcess process;
        process.setProcessEnvironment(environment);
        process.start(KELDOCK_PROGRAM, arguments);
        return finish(process);
    }

    /// Runs a shell script in which "$0" is the program.
    static Keldock runShell(const QString &script)
    {
        QProcess process;
        process.start("bash", {"-c", script, KELDOCK_PROGRAM});
        return finish(process);
    }

    static Keldock finish(QProcess &process)
    {
        Keldock result;
        if (process.state() != QProcess::NotRunning && !process.waitForFinished(kLimitMs))
            process.kill();
        else if (process.exitStatus() == QProcess::NormalExit && process.error() == QProcess::UnknownError)
            result.status = process.exitCode();
        result.output = text(process.readAllStandardOutput());
        result.errors = text(process.readAllStandardError());
        return result;
    }

    /// Whether it failed with status 1 and a one-line error message that contains `reason`.
    bool failedWith(const QString &reason) const
    {
        return status == 1 && errors.startsWith("keldock: ") && errors.contains(reason) && errors.count('\n') == 1;
    }

private:
    /// Converts the line ends of Windows.
    static QString text(const QByteArray &bytes) { return QString::fromUtf8(bytes).replace("\r\n", "\n"); }
};
