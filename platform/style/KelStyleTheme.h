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

/// What appleStyleTo() needs besides the widget.
struct KelStyleParams {
    QString sheet;    ///< path of the style sheet, a file or a resource
    double scale = 0; ///< what sca(1) is in logical pixels; 0: the scale of the screen that the widget is on
};

/// The light and the dark theme: their named colours, and style sheets written with them. GUI thread.
///
/// A sheet may contain two macros. sca(N) is N pixels of a 96-dpi desktop in logical pixels of the widget's screen, as
/// a whole number without unit, and never 0 unless N is. var(Name) is a colour of the theme: ColorMain, ColorMainText,
/// ColorBg1 (window), ColorBg2 (field), ColorBg3 (floating panel), ColorBg3Border, ColorText, ColorTextWeak,
/// ColorTextDisabled, ColorHover, ColorPressed, ColorDanger.
///
/// Theme and application palette always agree on light or dark. Whichever of them leads is a matter of the mode.
class KELSTYLE_EXPORT KelStyleTheme : public QObject
{
    Q_OBJECT

public:
    enum class Mode {
        Application, ///< the theme follows the application palette and changes nothing, as at first
        System,      ///< both follow the desktop
        Light,       ///< the palette is the theme's
        Dark
    };

    /// Exists as long as the QApplication.
    static KelStyleTheme *instance();
    ~KelStyleTheme() override;

    Mode mode() const { return m_mode; }
    void setMode(Mode mode);
    bool isDark() const { return m_isDark; }

    /// A named colour of the present theme; invalid, and told in the log, when there is none of that name.
    QColor color(const QString &name) const;

    /// `sheet` with its macros expanded.
    QString expanded(const QString &sheet, double scale) const;

    /// Styles the widget from now on: again at every change of the theme or of the scale of its screen. A second call
    /// for the same widget replaces the first. A sheet that cannot be read is told in the log and changes nothing.
    void appleStyleTo(QWidget *widget, const KelStyleParams &params);

    /// What sca(1) is for a widget, in logical pixels.
    static double scaleOf(const QWidget *widget);

signals:
    /// Other colours from now on.
    void changed();

private:
    explicit KelStyleTheme(QObject *parent);

    void followSystem();
    void followPalette();

    std::unique_ptr<kel::SystemTheme> m_system;
    Mode m_mode = Mode::Application;
    bool m_isDark = false;
};
