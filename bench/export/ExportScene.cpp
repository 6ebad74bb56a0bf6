#include "ExportScene.h"

#include "CodeStrip.h"
#include "Photograph.h"
#include "SceneColors.h"
#include "SceneText.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPolygon>

#include <cmath>
#include <memory>

namespace
{

using Paint = std::function<QImage(int)>;

QImage canvas(const QColor &color)
{
    QImage image(ExportScene::size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(color);
    return image;
}

void paintPointer(QPainter &painter, const QPoint &tip)
{
    const QPolygon arrow({{0, 0}, {0, 17}, {4, 13}, {7, 20}, {10, 19}, {7, 12}, {12, 12}});
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::black);
    painter.setBrush(Qt::white);
    painter.drawPolygon(arrow.translated(tip));
}

/// Scrolls for one second, then pauses for half a second.
int scrolled(int number, int pixelsPerFrame)
{
    constexpr int kScrolling = ExportScene::kFps;
    constexpr int kPeriod = kScrolling * 3 / 2;
    return pixelsPerFrame * (number / kPeriod * kScrolling + std::min(number % kPeriod, kScrolling));
}

Paint codeScene()
{
    constexpr int kSideBar = 220;
    constexpr int kTitleBar = 34;
    const auto strip = std::make_shared<CodeStrip>(ExportScene::size().width() - kSideBar, 15);
    return [strip](int number) {
        QImage image = canvas(SceneColors::kEditorChrome);
        QPainter painter(&image);
        painter.setFont(SceneColors::windowFont(13));
        const QStringList files = SceneText::files();
        for (int i = 0; i < files.size(); ++i) {
            painter.setPen(i == 6 ? SceneColors::kText : SceneColors::kDimmed);
            painter.drawText(16, kTitleBar + 24 + 24 * i, files.at(i));
        }
        strip->paint(painter, QRect(QPoint(kSideBar, kTitleBar), QPoint(image.width() - 1, image.height() - 1)),
                     scrolled(number, 7));
        paintPointer(painter, {900, 400});
        return image;
    };
}

Paint formScene()
{
    return [](int number) {
        static const QStringList kLabels{"First name", "Family name", "Street", "Town", "E-mail", "Message"};
        static const QStringList kTexts{"Marguerite",         "Oyelaran-Thorvaldsen",
                                        "27 Lighthouse Lane", "Port Anselm",
                                        "m.oyelaran@mail",    "Please send two tickets for the evening."};
        QImage image = canvas(QColor(0xee, 0xf1, 0xf5));
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QColor(0xc5, 0xcc, 0xd6));
        painter.setBrush(Qt::white);
        painter.drawRoundedRect(QRectF(290.5, 40.5, 700, 640), 12, 12);
        painter.setPen(QColor(0x22, 0x28, 0x33));
        painter.setFont(SceneColors::windowFont(24, QFont::Bold));
        painter.drawText(330, 95, "Order your tickets");
        int letters = number; // typed so far, over all fields
        for (int field = 0; field < kLabels.size(); ++field) {
            const int top = 130 + field * 80;
            const QString &text = kTexts.at(field);
            const bool hasFocus = letters >= 0 && letters < text.size();
            painter.setFont(SceneColors::windowFont(13));
            painter.setPen(QColor(0x5b, 0x66, 0x77));
            painter.drawText(330, top, kLabels.at(field));
            painter.setPen(QPen(hasFocus ? SceneColors::kAccent : QColor(0xc5, 0xcc, 0xd6), hasFocus ? 2 : 1));
            painter.setBrush(QColor(0xfa, 0xfb, 0xfc));
            painter.drawRoundedRect(QRectF(330.5, top + 8.5, 620, 36), 6, 6);
            painter.setFont(SceneColors::windowFont(16));
            painter.setPen(QColor(0x22, 0x28, 0x33));
            const QString typed = text.left(std::max(letters, 0));
            painter.drawText(342, top + 32, typed);
            const int caret = 343 + painter.fontMetrics().horizontalAdvance(typed);
            if (hasFocus && number % 20 < 12)
                painter.drawLine(caret, top + 15, caret, top + 38);
            letters -= text.size();
        }
        painter.setPen(Qt::NoPen);
        QLinearGradient button(0, 615, 0, 655);
        button.setColorAt(0, SceneColors::kAccent);
        button.setColorAt(1, SceneColors::kAccentEnd);
        painter.setBrush(button);
        painter.drawRoundedRect(QRectF(810, 615, 140, 40), 8, 8);
        painter.setPen(Qt::white);
        painter.drawText(QRect(810, 615, 140, 40), Qt::AlignCenter, "Order");
        const int glide = std::clamp(number - 20, 0, 60);
        paintPointer(painter, {400 + 8 * glide, 200 + 7 * glide});
        return image;
    };
}

Paint photoScene()
{
    const auto page = std::make_shared<QImage>(ExportScene::size().width(), 2600, QImage::Format_RGB32);
    page->fill(Qt::white);
    QPainter painter(page.get());
    painter.setPen(QColor(0x22, 0x28, 0x33));
    for (int i = 0; i < 6; ++i) {
        const int top = 30 + i * 430;
        painter.setFont(SceneColors::windowFont(20, QFont::Bold));
        painter.drawText(140, top + 24, QString("Day %1: along the coast").arg(i + 1));
        painter.drawImage(140, top + 40, photograph({480, 330}, uint(2 * i)));
        painter.drawImage(660, top + 40, photograph({480, 330}, uint(2 * i + 1)));
        painter.setFont(SceneColors::windowFont(13));
        painter.drawText(140, top + 392, "The ferry was late, the light was not. We walked until it got dark.");
    }
    painter.end();
    return [page](int number) {
        QImage image = canvas(Qt::white);
        QPainter onto(&image);
        onto.drawImage(0, 0, *page, 0, scrolled(number, 11), image.width(), image.height());
        paintPointer(onto, {1180, 360});
        return image;
    };
}

Paint dragScene()
{
    const auto wallpaper = std::make_shared<QImage>(canvas(Qt::black));
    QLinearGradient sky(0, 0, 400, 720);
    sky.setColorAt(0, QColor(0x1b, 0x2a, 0x6b));
    sky.setColorAt(0.55, QColor(0x9b, 0x4f, 0x96));
    sky.setColorAt(1, QColor(0xf6, 0xb2, 0x6b));
    QPainter(wallpaper.get()).fillRect(wallpaper->rect(), sky);
    const auto strip = std::make_shared<CodeStrip>(460, 13);
    return [wallpaper, strip](int number) {
        QImage image = *wallpaper;
        QPainter painter(&image);
        const double angle = 0.06 * std::clamp(number - 10, 0, 75); // still at both ends
        const QPoint corner(410 - int(330 * std::cos(angle)), 190 + int(150 * std::sin(1.7 * angle)));
        for (int spread = 12; spread > 0; --spread) // shadow
            painter.fillRect(QRect(corner, QSize(460, 340)).adjusted(-spread, -spread, spread, spread),
                             QColor(0, 0, 0, 6));
        painter.fillRect(QRect(corner, QSize(460, 30)), SceneColors::kEditorChrome);
        painter.setPen(SceneColors::kText);
        painter.setFont(SceneColors::windowFont(13));
        painter.drawText(corner + QPoint(12, 20), "samples.h");
        strip->paint(painter, QRect(corner + QPoint(0, 30), QSize(460, 310)), 120);
        paintPointer(painter, corner + QPoint(200, 12));
        return image;
    };
}

} // namespace

QStringList ExportScene::names()
{
    return {"code", "form", "photos", "drag"};
}

ExportScene::ExportScene(const QString &name)
    : m_paint(name == "code"     ? codeScene()
              : name == "form"   ? formScene()
              : name == "photos" ? photoScene()
                                 : dragScene())
{
}
