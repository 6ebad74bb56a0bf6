// kel_effect_sheet FILE.png: draws every click and wheel effect over its frames, on light, dark and colored
// backgrounds.

#include "lottie/KelLottie.h"

#include <QCommandLineParser>
#include <QGuiApplication>
#include <QPainter>

#include <cstdio>

namespace
{

constexpr int kSmallSide = 64;
constexpr int kLargeSide = 256;
constexpr int kGap = 8;
constexpr int kLabelHeight = 20;
constexpr int kFrameStep = 4;
const QColor kAccent("#3388ff");

struct Effect {
    const char *name;
    int shownFrame; ///< enlarged: where a click holds while the button is down
    double angle;
};

const Effect kEffects[] = {{"click_ray", 8, -50},  {"click_floral", 0, 0},  {"click_fireworks", 12, 0},
                           {"click_starts", 8, 0}, {"click_ripple", 12, 0}, {"wheel_arrow", 18, 0}};

struct Background {
    QColor color;
    QColor accent;
};
const Background kBackgrounds[] = {{Qt::white, kAccent},
                                   {QColor("#1e1f24"), kAccent},
                                   {QColor("#3388ff"), kAccent},
                                   {QColor("#f3f3f3"), QColor("#ff5a36")}};

int frameCount(const KelLottie &animation)
{
    return (int(animation.totalFrame()) + kFrameStep - 1) / kFrameStep;
}

void drawEffect(QPainter &painter, const Effect &effect, QPoint corner, int width)
{
    KelLottie animation(QString(":/KelScreenRecord/%1.json").arg(effect.name));
    painter.setPen(Qt::black);
    painter.drawText(corner + QPoint(0, kLabelHeight - 6),
                     QString("%1: every %2th of %3 frames at %4 pixels; right, frame %5 at %6 pixels")
                         .arg(effect.name)
                         .arg(kFrameStep)
                         .arg(animation.totalFrame())
                         .arg(kSmallSide)
                         .arg(effect.shownFrame)
                         .arg(kLargeSide));
    int y = corner.y() + kLabelHeight;
    for (const Background &background : kBackgrounds) {
        painter.fillRect(corner.x(), y, width - 2 * kGap - 2 * kLargeSide, kSmallSide, background.color);
        animation.setColor(background.accent);
        for (int i = 0; i < frameCount(animation); ++i)
            animation.paint(&painter, float(i * kFrameStep),
                            QRectF(corner.x() + i * kSmallSide, y, kSmallSide, kSmallSide), effect.angle);
        y += kSmallSide;
    }
    animation.setColor(kAccent);
    for (int i = 0; i < 2; ++i) {
        const QRect place(corner.x() + width - (2 - i) * kLargeSide - (1 - i) * kGap, corner.y() + kLabelHeight,
                          kLargeSide, kLargeSide);
        painter.fillRect(place, kBackgrounds[i].color);
        animation.paint(&painter, float(effect.shownFrame), place, effect.angle);
    }
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    QCommandLineParser parser;
    parser.addPositionalArgument("file", "the image to write");
    parser.process(app);
    if (parser.positionalArguments().size() != 1)
        parser.showHelp(2);

    const int columns = frameCount(KelLottie(":/KelScreenRecord/click_ray.json"));
    const int width = columns * kSmallSide + 2 * (kGap + kLargeSide);
    const int height = kLabelHeight + 4 * kSmallSide + kGap;
    QImage sheet(width + 2 * kGap, int(std::size(kEffects)) * height + kGap, QImage::Format_RGB32);
    sheet.fill(QColor("#dcdcdc"));
    QPainter painter(&sheet);
    for (std::size_t i = 0; i < std::size(kEffects); ++i)
        drawEffect(painter, kEffects[i], QPoint(kGap, kGap / 2 + int(i) * height), width);
    painter.end();
    if (!sheet.save(parser.positionalArguments().first())) {
        std::fprintf(stderr, "cannot write %s\n", qPrintable(parser.positionalArguments().first()));
        return 1;
    }
    return 0;
}
