#include "support/HostProgram.h"

#include "support/Files.h"

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <windows.h>

namespace
{

/// What wine calls a file, as the system below calls it. Others are left alone.
QString below(const QString &argument)
{
    using Translate = char *(CDECL *)(const wchar_t *);
    static const auto translate = reinterpret_cast<Translate>(
        reinterpret_cast<void *>(GetProcAddress(GetModuleHandleW(L"kernel32"), "wine_get_unix_file_name")));
    if (!translate)
        qFatal("a test that needs a program of the system below wine");
    if (!argument.contains(":/"))
        return argument;
    char *const name = translate(QDir::toNativeSeparators(argument).toStdWString().c_str());
    const QString result = QString::fromUtf8(name);
    HeapFree(GetProcessHeap(), 0, name);
    return result;
}

} // namespace

// Nobody can wait for a program of the system below, so a shell says with a file when it has ended.
HostProgram HostProgram::run(const QString &program, const QStringList &arguments, const QByteArray &input)
{
    const QTemporaryDir scratch;
    writeFile(scratch.filePath("input"), input);
    QStringList words{"-c",
                      "dir=$1; shift; \"$@\" <\"$dir/input\" >\"$dir/output\"; echo $? >\"$dir/new\"; "
                      "mv \"$dir/new\" \"$dir/status\"",
                      "sh", below(scratch.path()), program};
    for (const QString &argument : arguments)
        words << below(argument);
    HostProgram result;
    if (QProcess::startDetached("Z:/bin/sh", words) &&
        QTest::qWaitFor([&] { return QFile::exists(scratch.filePath("status")); }, LimitMs)) {
        result.succeeded = readFile(scratch.filePath("status")).trimmed() == "0";
        result.output = readFile(scratch.filePath("output"));
    }
    return result;
}
