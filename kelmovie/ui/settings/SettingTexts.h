#pragma once

#include <QCoreApplication>
#include <QString>

namespace kel
{

/// Formats the values of settings for display.
class SettingTexts
{
    Q_DECLARE_TR_FUNCTIONS(SettingTexts)

public:
    static QString pixels(int count) { return tr("%1 px").arg(count); }
    static QString percent(int count) { return tr("%1%").arg(count); }
    static QString seconds(int count) { return tr("%1 s").arg(count); }
    static QString milliseconds(int count) { return tr("%1 ms").arg(count); }
    static QString number(int count) { return QString::number(count); }
};

} // namespace kel
