// kel_effect_sheet FILE.png: draws every click and wheel effect over its frames, on light, dark and coloured ground.

#include "lottie/KelLottie.h"

#include <QCommandLineParser>
#include <QGuiApplication>
#include <QPainter>

#include <cstdio>

namespace
{

constexpr int smallSide = 64;
constexpr int largeSide = 256;
constexpr int gap = 8;
constexpr int labelHeight = 20;
constexpr int frameStep = 4;
const QColor accent("#3388ff");

struct Effect {
    const char *name;
    int shownFrame; ///< shown large: where a held button stops a click
    double angle;
};

const Effect effects[] = {{"click_ray", 8, -50},  {"click_floral", 0, 0},  {"click_fireworks", 12, 0},
                          {"click_starts", 8, 0}, {"click_ripple", 12, 0}, {"wheel_arrow", 18, 0}};

struct Ground {
    QColor color;
    QColor accent;
};
const Ground grounds[] = {{Qt::white, accent},
                          {QColor("#1e1f24"), accent},
                          {QColor("#3388ff"), accent},
                          {QColor("#f3f3f3"), QColor("#ff5a36")}};

int frameCount(const KelLottie &animation)
{
    return (int(animation.totalFrame()) + frameStep - 1) / frameStep;
}

void drawEffect(QPainter &painter, const Effect &effect, QPoint corner, int width)
{
    KelLottie animation(QString(":/KelScreenRecord/%1.json").arg(effect.name));
    painter.setPen(Qt::black);
    painter.drawText(corner + QPoint(0, labelHeight - 6),
                     QString("%1: every %2th of %3 frames at %4 pixels; right, frame %5 at %6 pixels")
                         .arg(effect.name)
                         .arg(frameStep)
                         .arg(animation.totalFrame())
                         .arg(smallSide)
                         .arg(effect.shownFrame)
                         .arg(largeSide));
    int y = corner.y() + labelHeight;
    for (const Ground &ground : grounds) {
        painter.fillRect(corner.x(), y, width - 2 * gap - 2 * largeSide, smallSide, ground.color);
        animation.setColor(ground.accent);
        for (int i = 0; i < frameCount(animation); ++i)
            animation.paint(&painter, float(i * frameStep), QRectF(corner.x() + i * smallSide, y, smallSide, smallSide),
                            effect.angle);
        y += smallSide;
    }
    animation.setColor(accent);
    for (int i = 0; i < 2; ++i) {
        const QRect place(corner.x() + width - (2 - i) * largeSide - (1 - i) * gap, corner.y() + labelHeight, largeSide,
                          largeSide);
        painter.fillRect(place, grounds[i].color);
        animation.paint(&painter, float(effect.shownFrame), place, effect.angle);
    }
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    QCommandLineParser parser;
    parser.addPositionalArgument("file", "where the picture goes");
    parser.process(app);
    if (parser.positionalArguments().size() != 1)
        parser.showHelp(2);

    const int columns = frameCount(KelLottie(":/KelScreenRecord/click_ray.json"));
    const int width = columns * smallSide + 2 * (gap + largeSide);
    const int height = labelHeight + 4 * smallSide + gap;
    QImage sheet(width + 2 * gap, int(std::size(effects)) * height + gap, QImage::Format_RGB32);
    sheet.fill(QColor("#dcdcdc"));
    QPainter painter(&sheet);
    for (std::size_t i = 0; i < std::size(effects); ++i)
        drawEffect(painter, effects[i], QPoint(gap, gap / 2 + int(i) * height), width);
    painter.end();
    if (!sheet.save(parser.positionalArguments().first())) {
        std::fprintf(stderr, "cannot write %s\n", qPrintable(parser.positionalArguments().first()));
        return 1;
    }
    return 0;
}
