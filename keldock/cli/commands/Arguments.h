#pragma once

#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QList>
#include <QString>
#include <QStringList>

/// Parses and validates the arguments of a command. Every function returns a usable value; error() has the first
/// problem, so that a command can read all its options and check for errors once.
class Arguments
{
public:
    /// `options` are named without leading dashes. `--verbose` is always accepted.
    Arguments(const QList<QCommandLineOption> &options, const QStringList &arguments);

    bool isSet(const QString &option) const { return m_parser.isSet(option); }
    QString text(const QString &option) const { return m_parser.value(option); }

    /// The value of an option; `fallback` if it is missing or invalid.
    int integer(const QString &option, int minimum, int maximum, int fallback);
    double number(const QString &option, double minimum, double maximum, double fallback);

    /// The arguments that are not options: exactly one for each name, which error messages use.
    QStringList positional(const QStringList &names);

    /// Sets error() unless there is one already.
    void reject(const QString &error);
    QString error() const { return m_error; }

private:
    QCommandLineParser m_parser;
    QString m_error;
};
