#include "ui/controls/playback/PlaySpeedLabel.h"

#include "ui/controls/playback/FloatPlanePlaySpeed.h"

using namespace kel;

class Q_DECL_HIDDEN PlaySpeedLabel::Private
{
public:
    double speed = 1.0;
};

PlaySpeedLabel::PlaySpeedLabel(QWidget *parent)
    : LabelWidthFloatPanel(parent)
    , d(std::make_unique<Private>())
{
    setObjectName(QStringLiteral("PlaySpeedLabel"));
    setAlignment(Qt::AlignCenter);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Minimum);
    setAccessibleName(tr("Playback speed"));
    setToolTip(tr("Playback speed"));
    setSpeed(1.0);
    setPanel(new FloatPlanePlaySpeed(this));
}

PlaySpeedLabel::~PlaySpeedLabel() = default;

void PlaySpeedLabel::setSpeed(double speed)
{
    d->speed = speed;
    setText(speedText(speed));
}

double PlaySpeedLabel::getSpeed() const
{
    return d->speed;
}

QString PlaySpeedLabel::speedText(double speed)
{
    return QString::number(speed, 'f', 1) + QLatin1Char('X');
}
