#include "style/KelStyleTheme.h"

#include "logging/PlatformLog.h"
#include "style/PixelRatio.h"
#include "style/StyleFollower.h"
#include "style/SystemTheme.h"
#include "style/ThemeColors.h"

#include <QApplication>
#include <QPointer>
#include <QRegularExpression>
#include <QWidget>

#include <algorithm>

using namespace kel;

KelStyleTheme *KelStyleTheme::instance()
{
    static QPointer<KelStyleTheme> theme;
    if (!theme)
        theme = new KelStyleTheme(qApp);
    return theme;
}

KelStyleTheme::KelStyleTheme(QObject *parent)
    : QObject(parent)
    , m_isDark(ThemeColors::isDark(QGuiApplication::palette()))
{
    connect(qApp, &QGuiApplication::paletteChanged, this, &KelStyleTheme::followPalette);
}

KelStyleTheme::~KelStyleTheme() = default;

void KelStyleTheme::setMode(Mode mode)
{
    if (mode == m_mode)
        return;
    m_mode = mode;
    m_system.reset();
    switch (mode) {
    case Mode::System:
        m_system = SystemTheme::create();
        connect(m_system.get(), &SystemTheme::colorSchemeChanged, this, &KelStyleTheme::followSystem);
        followSystem();
        break;
    case Mode::Application:
        QApplication::setPalette(QPalette());
        break;
    case Mode::Light:
    case Mode::Dark:
        QApplication::setPalette(ThemeColors::palette(mode == Mode::Dark));
        break;
    }
    followPalette();
}

void KelStyleTheme::followSystem()
{
    // An empty palette restores the system's own palette. It has the desktop's colors, so it is replaced only when it
    // contradicts the desktop's light or dark setting.
    QApplication::setPalette(QPalette());
    const SystemTheme::ColorScheme scheme = m_system->colorScheme();
    const bool prefersDark = scheme == SystemTheme::ColorScheme::Dark;
    if (scheme != SystemTheme::ColorScheme::Unknown && ThemeColors::isDark(QGuiApplication::palette()) != prefersDark)
        QApplication::setPalette(ThemeColors::palette(prefersDark));
}

void KelStyleTheme::followPalette()
{
    const bool isDark = ThemeColors::isDark(QGuiApplication::palette());
    if (isDark == m_isDark)
        return;
    m_isDark = isDark;
    emit changed();
}

QColor KelStyleTheme::color(const QString &name) const
{
    QColor color = ThemeColors::color(name, m_isDark);
    if (!color.isValid())
        qCWarning(logUi, "[KelStyleTheme] No color is named %s", qPrintable(name));
    return color;
}

QString KelStyleTheme::expanded(const QString &sheet, double scale) const
{
    static const QRegularExpression macro(QStringLiteral(R"((sca|var)\(\s*([^\s)]+)\s*\))"));
    QString result;
    int end = 0;
    for (auto matches = macro.globalMatch(sheet); matches.hasNext();) {
        const QRegularExpressionMatch match = matches.next();
        result += sheet.mid(end, match.capturedStart() - end);
        end = match.capturedEnd();
        const QString argument = match.captured(2);
        if (match.captured(1) == QLatin1String("sca")) {
            const double pixels = argument.toDouble();
            result += QString::number(pixels > 0 ? std::max(1, qRound(pixels * scale)) : qRound(pixels * scale));
        } else {
            const QColor rgba = color(argument);
            result += QStringLiteral("rgba(%1, %2, %3, %4)")
                          .arg(rgba.red())
                          .arg(rgba.green())
                          .arg(rgba.blue())
                          .arg(rgba.alpha());
        }
    }
    return result + sheet.mid(end);
}

void KelStyleTheme::appleStyleTo(QWidget *widget, const KelStyleParams &params)
{
    delete widget->findChild<StyleFollower *>(QString(), Qt::FindDirectChildrenOnly);
    new StyleFollower(widget, params, this);
}

double KelStyleTheme::scaleOf(const QWidget *widget)
{
    return getPixelRatio(QRect(widget->mapToGlobal(QPoint()), widget->size()));
}
