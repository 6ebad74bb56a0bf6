#pragma once

#include <QObject>

#include <memory>

namespace kel
{

/// The desktop's light or dark setting, which Qt's palette does not always reflect. GUI thread.
class SystemTheme : public QObject
{
    Q_OBJECT

public:
    enum class ColorScheme { Unknown, Light, Dark };

    /// The implementation for this system.
    static std::unique_ptr<SystemTheme> create();

    ColorScheme colorScheme() const { return m_colorScheme; }

signals:
    void colorSchemeChanged();

protected:
    void setColorScheme(ColorScheme scheme);

private:
    ColorScheme m_colorScheme = ColorScheme::Unknown;
};

} // namespace kel
