#include "support/HostProgram.h"

#include "support/Files.h"

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <windows.h>

namespace
{

/// Translates a wine file name to the host's; other arguments stay as they are.
QString toHostName(const QString &argument)
{
    using Translate = char *(CDECL *)(const wchar_t *);
    static const auto kTranslate = reinterpret_cast<Translate>(
        reinterpret_cast<void *>(GetProcAddress(GetModuleHandleW(L"kernel32"), "wine_get_unix_file_name")));
    if (!kTranslate)
        qFatal("this test needs wine, to run a program of the host");
    if (!argument.contains(":/"))
        return argument;
    char *const name = kTranslate(QDir::toNativeSeparators(argument).toStdWString().c_str());
    const QString result = QString::fromUtf8(name);
    HeapFree(GetProcessHeap(), 0, name);
    return result;
}

} // namespace

// Host programs cannot be waited for, so a shell creates a file when the program has ended.
HostProgram HostProgram::run(const QString &program, const QStringList &arguments, const QByteArray &input)
{
    const QTemporaryDir scratch;
    writeFile(scratch.filePath("input"), input);
    QStringList words{"-c",
                      "dir=$1; shift; \"$@\" <\"$dir/input\" >\"$dir/output\"; echo $? >\"$dir/new\"; "
                      "mv \"$dir/new\" \"$dir/status\"",
                      "sh", toHostName(scratch.path()), program};
    for (const QString &argument : arguments)
        words << toHostName(argument);
    HostProgram result;
    if (QProcess::startDetached("Z:/bin/sh", words) &&
        QTest::qWaitFor([&] { return QFile::exists(scratch.filePath("status")); }, kTimeoutMs)) {
        result.succeeded = readFile(scratch.filePath("status")).trimmed() == "0";
        result.output = readFile(scratch.filePath("output"));
    }
    return result;
}
