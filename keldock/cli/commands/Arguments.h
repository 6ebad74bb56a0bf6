#pragma once

#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QList>
#include <QString>
#include <QStringList>

/// The arguments of one command, read with checks. Every reader answers something usable; the first thing that was
/// wrong is kept in error(), so that a command can read all of its options and look once.
class Arguments
{
public:
    /// Options without the leading dashes; `--verbose` is understood besides.
    Arguments(const QList<QCommandLineOption> &options, const QStringList &arguments);

    bool isSet(const QString &option) const { return m_parser.isSet(option); }
    QString text(const QString &option) const { return m_parser.value(option); }

    /// The option's number, `fallback` when it is not given.
    int integer(const QString &option, int minimum, int maximum, int fallback);
    double number(const QString &option, double minimum, double maximum, double fallback);

    /// What stands without an option: exactly one argument for each of the names.
    QStringList positional(const QStringList &names);

    /// Notes what is wrong, unless something is already.
    void reject(const QString &error);
    QString error() const { return m_error; }

private:
    QCommandLineParser m_parser;
    QString m_error;
};
