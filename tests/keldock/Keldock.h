#pragma once

#include <QProcess>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

/// The real program, run as a person or a script runs it.
struct Keldock {
    int status = -1; ///< -1: it crashed, hung or was killed
    QString output;
    QString errors;

    static constexpr int LimitMs = 60000;

    static Keldock run(const QStringList &arguments,
                       const QProcessEnvironment &environment = QProcessEnvironment::systemEnvironment())
    {
        QProcess process;
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral(KELDOCK_PROGRAM), arguments);
        return finish(process);
    }

    /// Through a shell, in which "$0" is the program.
    static Keldock runShell(const QString &script)
    {
        QProcess process;
        process.start(QStringLiteral("bash"), {QStringLiteral("-c"), script, QStringLiteral(KELDOCK_PROGRAM)});
        return finish(process);
    }

    static Keldock finish(QProcess &process)
    {
        Keldock result;
        if (process.state() != QProcess::NotRunning && !process.waitForFinished(LimitMs))
            process.kill();
        else if (process.exitStatus() == QProcess::NormalExit && process.error() == QProcess::UnknownError)
            result.status = process.exitCode();
        result.output = text(process.readAllStandardOutput());
        result.errors = text(process.readAllStandardError());
        return result;
    }

    /// It failed in the way in which everything here fails: status 1 and one line that says why.
    bool failedWith(const QString &reason) const
    {
        return status == 1 && errors.startsWith(QLatin1String("keldock: ")) && errors.contains(reason) &&
               errors.count(QLatin1Char('\n')) == 1;
    }

private:
    /// With one end of a line, which Windows writes with two characters.
    static QString text(const QByteArray &bytes) { return QString::fromUtf8(bytes).replace("\r\n", "\n"); }
};
