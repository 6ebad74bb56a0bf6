#pragma once

#include <QtTest>

/// The table of a data-driven test: made with the names of its columns, called for each row with its name and values.
template <typename... Columns>
class TestTable
{
public:
    template <typename... Names>
    explicit TestTable(Names... names)
    {
        (QTest::addColumn<Columns>(names), ...);
    }

    void operator()(const char *name, const Columns &...values) const { (QTest::newRow(name) << ... << values); }
};
