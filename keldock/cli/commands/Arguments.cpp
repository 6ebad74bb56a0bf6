#include "cli/commands/Arguments.h"

Arguments::Arguments(const QList<QCommandLineOption> &options, const QStringList &arguments)
{
    m_parser.addOptions(options);
    m_parser.addOption(QCommandLineOption(QStringLiteral("verbose")));
    // The parser expects the program name as the first argument.
    if (!m_parser.parse(QStringList(QString()) + arguments)) {
        const QStringList unknown = m_parser.unknownOptionNames();
        reject(unknown.isEmpty()
                   ? m_parser.errorText()
                   : QStringLiteral("unknown option '%1%2'")
                         .arg(unknown.first().size() == 1 ? QLatin1String("-") : QLatin1String("--"), unknown.first()));
    }
}

int Arguments::integer(const QString &option, int minimum, int maximum, int fallback)
{
    if (!isSet(option))
        return fallback;
    bool isNumber = false;
    const int value = text(option).toInt(&isNumber);
    if (isNumber && value >= minimum && value <= maximum)
        return value;
    reject(QStringLiteral("--%1 must be an integer from %2 to %3, not '%4'")
               .arg(option, QString::number(minimum), QString::number(maximum), text(option)));
    return fallback;
}

double Arguments::number(const QString &option, double minimum, double maximum, double fallback)
{
    if (!isSet(option))
        return fallback;
    bool isNumber = false;
    const double value = text(option).toDouble(&isNumber);
    // This form of the comparison also rejects "nan".
    if (isNumber && value >= minimum && value <= maximum)
        return value;
    reject(QStringLiteral("--%1 must be a number from %2 to %3, not '%4'")
               .arg(option, QString::number(minimum), QString::number(maximum), text(option)));
    return fallback;
}

QStringList Arguments::positional(const QStringList &names)
{
    QStringList values = m_parser.positionalArguments();
    if (values.size() > names.size())
        reject(QStringLiteral("unexpected argument '%1'").arg(values.at(names.size())));
    else if (values.size() < names.size())
        reject(QStringLiteral("%1 is missing").arg(names.at(values.size())));
    while (values.size() < names.size())
        values.append(QString());
    for (int i = 0; i < names.size(); ++i) {
        if (values.at(i).isEmpty())
            reject(QStringLiteral("%1 is empty").arg(names.at(i)));
    }
    return values;
}

void Arguments::reject(const QString &error)
{
    if (m_error.isEmpty())
        m_error = error;
}
