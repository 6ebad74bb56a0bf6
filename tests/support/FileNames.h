#pragma once

#include <QString>
#include <QtTest>

/// A row for each name of a directory that people have and programs stumble over, in the column "name".
inline void addFileNames()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("spaces") << QStringLiteral("my first recording");
    QTest::newRow("Chinese") << QStringLiteral(u"录制 第一次");
    QTest::newRow("right to left") << QStringLiteral(u"הקלטה‏ تسجيل");
    QTest::newRow("beyond 16 bits") << QStringLiteral(u"🎬 𝕶");
    QTest::newRow("an accent of its own") << QStringLiteral(u"e\u0301te\u0301");
    QTest::newRow("signs that shells and URLs know") << QStringLiteral("100% #1 & 'so' $HOME;+{a}[b]=(1)!~@^`,");
    QTest::newRow("what we put into names") << QStringLiteral("100%1 %2 %3.wav_part0.wav");
    QTest::newRow("space at the end") << QStringLiteral("recording ");
    QTest::newRow("dot at the end") << QStringLiteral("recording.");
    QTest::newRow("begins with a minus") << QStringLiteral("-i");
    QTest::newRow("longer than 260 characters")
        << QString(100, 'a') + '/' + QString(100, 'b') + '/' + QString(100, 'c');
}
