#pragma once

#include "KelStyleGlobal.h"

#include <QColor>
#include <QObject>
#include <QString>

#include <memory>

class QWidget;
namespace kel
{
class SystemTheme;
} // namespace kel

/// A style sheet and its scale.
struct KelStyleParams {
    QString sheet;    ///< path of the style sheet, a file or a resource
    double scale = 0; ///< logical pixels per sca(1); 0 for the scale of the widget's screen
};

/// The light and the dark theme: named colors, and style sheets that use them. GUI thread.
///
/// A sheet may contain two macros. sca(N) converts N pixels of a 96-dpi desktop to logical pixels of the widget's
/// screen; it expands to an integer without a unit, at least 1 for a positive N. var(Name) expands to a color of the
/// theme: ColorMain, ColorMainText, ColorBg1 (window), ColorBg2 (field), ColorBg3 (floating panel), ColorBg3Border,
/// ColorText, ColorTextWeak, ColorTextDisabled, ColorHover, ColorPressed, ColorDanger.
///
/// Theme and application palette are always both light or both dark. The mode determines which of them follows the
/// other.
class KELSTYLE_EXPORT KelStyleTheme : public QObject
{
    Q_OBJECT

public:
    /// Where the theme comes from.
    enum class Mode {
        Application, ///< the theme follows the application palette (default)
        System,      ///< theme and palette follow the desktop setting
        Light,       ///< the light theme, with a palette of its colors
        Dark         ///< the dark theme, with a palette of its colors
    };

    /// The only instance; it lives as long as the QApplication, which must exist.
    static KelStyleTheme *instance();
    ~KelStyleTheme() override;

    Mode mode() const { return m_mode; }     ///< the mode set last
    void setMode(Mode mode);                 ///< applies at once
    bool isDark() const { return m_isDark; } ///< whether the dark theme is active

    /// A named color of the current theme. Logs a warning and returns an invalid color for an unknown name.
    QColor color(const QString &name) const;

    /// `sheet` with its macros expanded; `scale` is the value of sca(1) in logical pixels.
    QString expanded(const QString &sheet, double scale) const;

    /// Styles the widget, and again whenever the theme or the scale of its screen changes. Replaces the sheet of an
    /// earlier call for the same widget. When the sheet cannot be read, logs a warning and leaves the widget unchanged.
    void appleStyleTo(QWidget *widget, const KelStyleParams &params);

    /// The value of sca(1) for a widget, in logical pixels.
    static double scaleOf(const QWidget *widget);

signals:
    /// The theme switched between light and dark.
    void changed();

private:
    explicit KelStyleTheme(QObject *parent);

    void followSystem();
    void followPalette();

    std::unique_ptr<kel::SystemTheme> m_system;
    Mode m_mode = Mode::Application;
    bool m_isDark = false;
};
