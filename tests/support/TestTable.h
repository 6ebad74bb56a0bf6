#pragma once

#include <QtTest>

/// The table of a data-driven test: constructed with the column names, called with name and values of each row.
template <typename... Columns>
class TestTable
{
public:
    template <typename... Names>
    explicit TestTable(Names... names)
    {
        (QTest::addColumn<Columns>(names), ...);
    }

    void operator()(const QByteArray &name, const Columns &...values) const { (QTest::newRow(name) << ... << values); }
};
