#include "support/HostProgram.h"

#include <QProcess>

HostProgram HostProgram::run(const QString &program, const QStringList &arguments, const QByteArray &input)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(program, arguments);
    process.write(input);
    process.closeWriteChannel();
    HostProgram result;
    result.succeeded =
        process.waitForFinished(kTimeoutMs) && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
    result.output = process.readAllStandardOutput();
    return result;
}
