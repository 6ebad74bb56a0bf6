#pragma once

#include <QString>
#include <QtTest>

/// Adds the column "name" and rows of directory names that are legal but often mishandled.
inline void addFileNames()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("spaces") << "my first recording";
    QTest::newRow("Chinese") << "录制 第一次";
    QTest::newRow("right to left") << "הקלטה‏ تسجيل";
    QTest::newRow("beyond 16 bits") << "🎬 𝕶";
    QTest::newRow("combining accent") << "e\u0301te\u0301";
    QTest::newRow("special to shells and URLs") << "100% #1 & 'so' $HOME;+{a}[b]=(1)!~@^`,";
    QTest::newRow("special to our own names") << "100%1 %2 %3.wav_part0.wav";
    QTest::newRow("space at the end") << "recording ";
    QTest::newRow("dot at the end") << "recording.";
    QTest::newRow("begins with a minus") << "-i";
    QTest::newRow("longer than 260 characters")
        << QString(100, 'a') + '/' + QString(100, 'b') + '/' + QString(100, 'c');
}
