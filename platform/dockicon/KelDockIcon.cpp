#include "KelDockIcon.h"
#include "logging/PlatformLog.h"

#include <QFontDatabase>
#include <QIconEngine>
#include <QLoggingCategory>
#include <QPainter>

#include <algorithm>

namespace
{

QString loadFamily()
{
    const int id = QFontDatabase::addApplicationFont(QStringLiteral(":/KelDockIcon/KelDockIcon.ttf"));
    const QStringList families = QFontDatabase::applicationFontFamilies(id);
    if (families.isEmpty()) {
        qCWarning(kel::logUi, "[KelDockIcon] The icon font could not be loaded");
        return QStringLiteral("KelDockIcon");
    }
    return families.first();
}

class GlyphIconEngine final : public QIconEngine
{
public:
    GlyphIconEngine(KelDockIcon::Glyph glyph, const QColor &color)
        : m_glyph(glyph)
        , m_color(color)
    {
    }

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State) override
    {
        painter->save();
        painter->setFont(KelDockIcon::font(std::min(rect.width(), rect.height())));
        painter->setPen(m_color);
        painter->setOpacity(mode == QIcon::Disabled ? 0.4 : 1);
        painter->drawText(rect, Qt::AlignCenter, KelDockIcon::text(m_glyph));
        painter->restore();
    }

    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override
    {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, pixmap.rect(), mode, state);
        return pixmap;
    }

    QIconEngine *clone() const override { return new GlyphIconEngine(*this); }

private:
    KelDockIcon::Glyph m_glyph;
    QColor m_color;
};

} // namespace

QString KelDockIcon::family()
{
    static const QString name = loadFamily();
    return name;
}

QFont KelDockIcon::font(int pixelSize)
{
    QFont font(family());
    font.setPixelSize(std::max(1, pixelSize));
    return font;
}

QIcon KelDockIcon::icon(Glyph glyph, const QColor &color)
{
    return QIcon(new GlyphIconEngine(glyph, color));
}
