#pragma once

#include <QString>
#include <QTextStream>

/// Prints one measured value in the format of bench/run: name, value and unit, separated by tabs.
inline void printFigure(const QString &name, double value, const QString &unit)
{
    QTextStream(stdout) << name << '\t' << QString::number(value, 'f', 4) << '\t' << unit << '\n';
}
