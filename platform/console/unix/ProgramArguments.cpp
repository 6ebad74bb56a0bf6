#include "console/ProgramArguments.h"

#include <QTextCodec>

#include <clocale>

#include <langinfo.h>

namespace kel
{

namespace
{

/// The plain C locale is limited to ASCII and would turn other characters of file names into question marks.
void useUtf8InPlainLocale()
{
    std::setlocale(LC_ALL, "");
    if (qstrcmp(nl_langinfo(CODESET), "ANSI_X3.4-1968") == 0)
        QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
}

} // namespace

QStringList programArguments(int argc, char **argv)
{
    useUtf8InPlainLocale();
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    return arguments;
}

} // namespace kel
