#include "style/SystemTheme.h"

#include <QGuiApplication>
#include <QSettings>

using namespace kel;

namespace
{

/// The choice of the settings for applications. Windows tells of a change together with its other colours.
class RegistryTheme final : public SystemTheme
{
public:
    RegistryTheme()
    {
        read();
        connect(qApp, &QGuiApplication::paletteChanged, this, &RegistryTheme::read);
    }

private:
    void read()
    {
        const QSettings personalize(
            QStringLiteral("HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Themes\\Personalize"),
            QSettings::NativeFormat);
        const QVariant light = personalize.value(QStringLiteral("AppsUseLightTheme"));
        setWish(!light.isValid() ? Wish::Unknown : light.toBool() ? Wish::Light : Wish::Dark);
    }
};

} // namespace

std::unique_ptr<SystemTheme> SystemTheme::create()
{
    return std::make_unique<RegistryTheme>();
}
