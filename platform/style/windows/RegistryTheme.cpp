#include "style/SystemTheme.h"

#include <QGuiApplication>
#include <QSettings>

using namespace kel;

namespace
{

/// The setting for applications in the registry. Windows announces a change together with a change of its other colors.
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
        setColorScheme(!light.isValid() ? ColorScheme::Unknown
                       : light.toBool() ? ColorScheme::Light
                                        : ColorScheme::Dark);
    }
};

} // namespace

std::unique_ptr<SystemTheme> SystemTheme::create()
{
    return std::make_unique<RegistryTheme>();
}
