#pragma once

#include <QString>
#include <QTextStream>

/// Prints one measured value as bench/run reads it: name, value and unit, separated by tabs.
inline void printFigure(const QString &name, double value, const QString &unit)
{
    QTextStream(stdout) << name << '\t' << QString::number(value, 'f', 4) << '\t' << unit << '\n';
}
