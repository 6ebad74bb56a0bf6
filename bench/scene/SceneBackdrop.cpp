#include "SceneBackdrop.h"

#include "SceneColors.h"
#include "SceneText.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>

namespace
{

constexpr int kWindowRadius = 10;

void paintDesktop(QPainter &painter, const QSize &size)
{
    QLinearGradient sky(0, 0, size.width(), size.height());
    sky.setColorAt(0.0, QColor(0x1d, 0x2b, 0x53));
    sky.setColorAt(0.55, QColor(0x43, 0x3a, 0x7a));
    sky.setColorAt(1.0, QColor(0x7a, 0x43, 0x78));
    painter.fillRect(QRect(QPoint(), size), sky);

    const auto glow = [&](double x, double y, double radius, QColor color) {
        QRadialGradient gradient(x * size.width(), y * size.height(), radius * size.width());
        gradient.setColorAt(0.0, color);
        color.setAlpha(0);
        gradient.setColorAt(1.0, color);
        painter.fillRect(QRect(QPoint(), size), gradient);
    };
    glow(0.85, 0.10, 0.45, QColor(0x3f, 0xb8, 0xc8, 110));
    glow(0.70, 0.95, 0.40, QColor(0xf0, 0x8a, 0x6a, 100));
    glow(0.05, 0.90, 0.35, QColor(0x4a, 0x7c, 0xe0, 90));
}

void paintWindow(QPainter &painter, const QRect &rect, int titleBar, const QColor &background, const QString &title)
{
    painter.drawImage(rect.topLeft() - QPoint(kShadowMargin, kShadowMargin), paintShadow(rect.size(), kWindowRadius));
    QPainterPath outline;
    outline.addRoundedRect(rect, kWindowRadius, kWindowRadius);
    painter.fillPath(outline, background);

    painter.save();
    painter.setClipPath(outline);
    painter.fillRect(rect.x(), rect.y(), rect.width(), titleBar, SceneColors::kEditorChrome);
    painter.restore();

    painter.setPen(Qt::NoPen);
    const int dot = titleBar / 3;
    int x = rect.x() + titleBar / 2;
    for (const QRgb color : {0xffff6b6bu, 0xfff7c948u, 0xff5dd39eu}) {
        painter.setBrush(QColor(color));
        painter.drawEllipse(x, rect.y() + (titleBar - dot) / 2, dot, dot);
        x += dot * 5 / 3;
    }
    painter.setBrush(Qt::NoBrush);
    painter.setPen(SceneColors::kDimmed);
    painter.setFont(SceneColors::windowFont(titleBar * 2 / 5));
    painter.drawText(QRect(rect.x(), rect.y(), rect.width(), titleBar), Qt::AlignCenter, title);
    painter.setPen(QColor(255, 255, 255, 26));
    painter.drawPath(outline);
}

void paintFileList(QPainter &painter, const SceneLayout &layout)
{
    painter.fillRect(layout.fileList, SceneColors::kEditorChrome);
    painter.setFont(SceneColors::windowFont(layout.fontPx));
    const int lineHeight = layout.fontPx * 2;
    int y = layout.fileList.y() + lineHeight / 2;
    const QStringList files = SceneText::files();
    for (const QString &file : files) {
        if (y + lineHeight > layout.fileList.bottom())
            break;
        const QRect row(layout.fileList.x(), y, layout.fileList.width(), lineHeight);
        const bool isOpen = file.endsWith(QLatin1String("samples.h"));
        if (isOpen)
            painter.fillRect(row, SceneColors::kEditorSelection);
        const bool isFolder = !file.contains('.');
        painter.setPen(isOpen || isFolder ? SceneColors::kText : SceneColors::kDimmed);
        const int indent = (file.size() - file.trimmed().size()) * layout.fontPx / 3;
        painter.drawText(row.adjusted(layout.fontPx + indent, 0, 0, 0), Qt::AlignVCenter, file.trimmed());
        y += lineHeight;
    }
}

void paintStatusBar(QPainter &painter, const SceneLayout &layout)
{
    const QRect bar(layout.editor.x(), layout.editor.bottom() + 1 - layout.statusBar, layout.editor.width(),
                    layout.statusBar);
    QPainterPath outline;
    outline.addRoundedRect(layout.editor, kWindowRadius, kWindowRadius);
    painter.save();
    painter.setClipPath(outline);
    painter.fillRect(bar, SceneColors::kAccent);
    painter.restore();
    painter.setPen(Qt::white);
    painter.setFont(SceneColors::windowFont(layout.fontPx - 1));
    const QRect text = bar.adjusted(layout.fontPx, 0, -layout.fontPx, 0);
    painter.drawText(text, Qt::AlignVCenter | Qt::AlignLeft, "main   0 errors   0 warnings");
    painter.drawText(text, Qt::AlignVCenter | Qt::AlignRight, "C++17   UTF-8   4 spaces");
}

} // namespace

SceneLayout::SceneLayout(const QSize &sceneSize)
    : size(sceneSize)
{
    const int w = size.width();
    const int h = size.height();
    fontPx = qBound(8, 6 + h * 7 / 1080, 20);
    titleBar = fontPx * 14 / 5;
    statusBar = fontPx * 9 / 5;
    editor = QRect(w * 3 / 100, h * 6 / 100, w * 62 / 100, h * 85 / 100);
    const QRect inside = editor.adjusted(0, titleBar, 0, -statusBar);
    fileList = QRect(inside.x(), inside.y(), editor.width() * 18 / 100, inside.height());
    code = inside.adjusted(fileList.width(), 0, 0, 0);
    terminal = QRect(w * 60 / 100, h * 52 / 100, w * 37 / 100, h * 42 / 100);
    terminalText = terminal.adjusted(fontPx, titleBar + fontPx / 2, -fontPx, -fontPx);
    card = QSize(qMax(220, w * 19 / 100), qMax(120, h * 21 / 100));
}

QImage paintShadow(const QSize &size, int radius)
{
    const QRect box = QRect(QPoint(kShadowMargin, kShadowMargin + 6), size);
    QImage image(size + 2 * QSize(kShadowMargin, kShadowMargin), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    // Faint layers, each a little smaller and stronger than the one outside it, add up to a soft edge.
    for (int spread = kShadowMargin - 8; spread > 0; --spread) {
        painter.setBrush(QColor(0, 0, 0, spread > 20 ? 1 : spread > 10 ? 3 : 6));
        painter.drawRoundedRect(box.adjusted(-spread, -spread, spread, spread), radius + spread, radius + spread);
    }
    return image;
}

QImage paintSceneBackdrop(const SceneLayout &layout)
{
    QImage image(layout.size, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    paintDesktop(painter, layout.size);
    paintWindow(painter, layout.editor, layout.titleBar, SceneColors::kEditorBackground, "samples.h - aurora");
    paintFileList(painter, layout);
    paintStatusBar(painter, layout);
    return image;
}

QImage paintTerminalWindow(const SceneLayout &layout)
{
    const QPoint margin(kShadowMargin, kShadowMargin);
    QImage image(layout.terminal.size() + 2 * QSize(kShadowMargin, kShadowMargin), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    paintWindow(painter, QRect(margin, layout.terminal.size()), layout.titleBar, SceneColors::kTerminalBackground,
                "aurora - zsh");
    return image;
}
