#include "console/ProgramArguments.h"

#include <QTextCodec>

#include <clocale>

#include <langinfo.h>

namespace kel
{

namespace
{

/// The plain C locale knows nothing above ASCII and would turn the name of a file into question marks.
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
