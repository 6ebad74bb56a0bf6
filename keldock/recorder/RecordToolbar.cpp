#include "recorder/RecordToolbar.h"

#include "dockicon/KelDockIcon.h"
#include "recorder/SwitchButton.h"
#include "recorder/ToolbarPlacement.h"
#include "style/KelStyleTheme.h"

#include <KelMovie/KelConfigIO.h>
#include <KelMovie/KelMovieConfig.h>
#include <KelMovie/KelMovieConfigKeys.h>
#include <KelMovie/KelRecordButton.h>
#include <KelMovie/KelRecordFpsLabel.h>
#include <KelMovie/KelRecordPauseButton.h>
#include <KelMovie/KelRecordTimeLable.h>

#include <QCloseEvent>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QMouseEvent>
#include <QPainterPath>
#include <QScreen>

using KelDockIcon::Glyph;
using State = RecordingController::State;

namespace
{

enum Display { Everything, Essentials }; // of recordRecordToolbarDisplayType

QPushButton *createButton(Glyph glyph, const QString &action, QWidget *parent)
{
    auto *const button = new QPushButton(KelDockIcon::text(glyph), parent);
    button->setFlat(true);
    button->setFocusPolicy(Qt::TabFocus);
    button->setToolTip(action);
    button->setAccessibleName(action);
    button->setCursor(Qt::PointingHandCursor);
    KelStyleTheme::instance()->appleStyleTo(button, {QStringLiteral(":/KelMovie/GlyphButton")});
    return button;
}

QVector<QRect> usableScreens()
{
    QVector<QRect> screens;
    for (const QScreen *screen : QGuiApplication::screens())
        screens.append(screen->availableGeometry());
    return screens;
}

QFrame *createSeparator(QWidget *parent)
{
    auto *const line = new QFrame(parent);
    line->setObjectName(QStringLiteral("Separator"));
    line->setFrameShape(QFrame::NoFrame);
    return line;
}

} // namespace

class RecordToolbar::Private
{
public:
    explicit Private(RecordToolbar *q)
        : controls(new QWidget(q))
        , record(new KelRecordButton(controls))
        , pause(new KelRecordPauseButton(controls))
        , time(new KelRecordTimeLable(q))
        , fps(new KelRecordFpsLabel(q))
    {
    }

    SwitchButton *createSwitch(RecordToolbar *q, const QString &name, const SwitchButton::Face &on,
                               const SwitchButton::Face &off, const QString &key, bool KelMovieConfig::*field);

    struct Switch {
        SwitchButton *button;
        bool KelMovieConfig::*field;
    };

    QWidget *const controls; // those with the module's colours
    KelRecordButton *const record;
    KelRecordPauseButton *const pause;
    KelRecordTimeLable *const time;
    KelRecordFpsLabel *const fps;
    QVector<Switch> switches;
    SwitchButton *systemAudio = nullptr;
    SwitchButton *microphone = nullptr;
    SwitchButton *mouse = nullptr;
    SwitchButton *keys = nullptr;
    QPushButton *area = nullptr;
    QVector<QWidget *> extras; // what a toolbar with the essentials lacks
    State state = State::Idle;
    QPoint grabbedAt;
};

SwitchButton *RecordToolbar::Private::createSwitch(RecordToolbar *q, const QString &name, const SwitchButton::Face &on,
                                                   const SwitchButton::Face &off, const QString &key,
                                                   bool KelMovieConfig::*field)
{
    auto *const button = new SwitchButton(name, on, off, q);
    QObject::connect(button, &SwitchButton::switched, q, [this, q, button, key](bool isOn) {
        // What is switched while recording counts for that recording alone.
        if (state == State::Recording || state == State::Paused) {
            if (button == keys)
                emit q->keysSwitched(isOn);
            else
                emit q->mouseSwitched(isOn);
        } else {
            gKelMovieConfigIO->saveBool(key, isOn);
        }
    });
    switches.append({button, field});
    return button;
}

RecordToolbar::RecordToolbar(QWidget *parent)
    : QWidget(parent, Qt::Window | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint)
    , d(std::make_unique<Private>(this))
{
    setObjectName(QStringLiteral("RecordToolbar"));
    setWindowTitle(tr("Screen recorder"));
    setAttribute(Qt::WA_StyledBackground);

    d->systemAudio = d->createSwitch(
        this, tr("System sound"), {Glyph::Speaker, tr("System sound is recorded. Click to leave it out")},
        {Glyph::SpeakerOff, tr("System sound is not recorded. Click to record it")},
        KelMovieConfigKeys::kRecordRecordSystemAudio, &KelMovieConfig::recordRecordSystemAudio);
    d->microphone = d->createSwitch(
        this, tr("Microphone"), {Glyph::Microphone, tr("The microphone is recorded. Click to leave it out")},
        {Glyph::MicrophoneOff, tr("The microphone is not recorded. Click to record it")},
        KelMovieConfigKeys::kRecordRecordMicrophone, &KelMovieConfig::recordRecordMicrophone);
    d->mouse = d->createSwitch(this, tr("Mouse"), {Glyph::Mouse, tr("The mouse is recorded. Click to leave it out")},
                               {Glyph::Mouse, tr("The mouse is not recorded. Click to record it")},
                               KelMovieConfigKeys::kRecordMouse, &KelMovieConfig::recordMouse);
    d->keys = d->createSwitch(
        this, tr("Keys"),
        {Glyph::Keyboard, tr("Keys are recorded, passwords too. Click before you type what nobody shall see")},
        {Glyph::KeyboardOff, tr("Keys are not recorded. Click to record them")}, KelMovieConfigKeys::kRecordKeyboard,
        &KelMovieConfig::recordKeyboard);
    d->area = createButton(Glyph::Area, tr("Choose the area to record"), this);
    QPushButton *const recordings = createButton(Glyph::Folder, tr("Recordings"), this);
    QPushButton *const settings = createButton(Glyph::Settings, tr("Settings"), this);
    QPushButton *const minimize = createButton(Glyph::ChevronDown, tr("Hide the toolbar"), this);
    QPushButton *const close = createButton(Glyph::Close, tr("Close"), this);

    auto *const controls = new QHBoxLayout(d->controls);
    controls->setContentsMargins(0, 0, 0, 0);
    controls->setSpacing(2);
    controls->addWidget(d->record);
    controls->addWidget(d->pause);
    KelStyleTheme::instance()->appleStyleTo(d->controls, {QStringLiteral(":/KelMovie/KelPlayCtrlWidget")});

    auto *const layout = new QHBoxLayout(this);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->setContentsMargins(8, 6, 8, 6);
    layout->setSpacing(2);
    QFrame *const beforeFps = createSeparator(this);
    QFrame *const beforeClose = createSeparator(this);
    for (QWidget *widget : std::initializer_list<QWidget *>{
             d->controls, d->time, d->fps, createSeparator(this), d->area, d->systemAudio, d->microphone, d->mouse,
             d->keys, beforeFps, recordings, settings, beforeClose, minimize, close})
        layout->addWidget(widget);
    QWidget *before = d->record;
    for (QWidget *widget :
         std::initializer_list<QWidget *>{d->pause, d->time, d->fps, d->area, d->systemAudio, d->microphone, d->mouse,
                                          d->keys, recordings, settings, minimize, close}) {
        setTabOrder(before, widget);
        before = widget;
    }
    d->extras = {d->fps, beforeFps, recordings, d->mouse};
    KelStyleTheme::instance()->appleStyleTo(this, {QStringLiteral(":/keldock/Bar")});

    connect(d->record, &KelRecordButton::sigRecordStateChanged, this, [this](bool isRecording) {
        // The look follows the controller, which may refuse.
        d->record->setRecording(d->state != State::Idle);
        if (isRecording)
            emit recordRequested();
        else
            emit stopRequested();
    });
    connect(d->pause, &KelRecordPauseButton::sigPauseStateChanged, this, [this] {
        d->pause->setPause(d->state == State::Paused);
        emit pauseRequested();
    });
    connect(d->area, &QPushButton::clicked, this, &RecordToolbar::areaRequested);
    connect(recordings, &QPushButton::clicked, this, &RecordToolbar::recordingsRequested);
    connect(settings, &QPushButton::clicked, this, &RecordToolbar::settingsRequested);
    connect(minimize, &QPushButton::clicked, this, &RecordToolbar::minimizeRequested);
    connect(close, &QPushButton::clicked, this, &RecordToolbar::closeRequested);
    refresh();
    showState(State::Idle);
}

RecordToolbar::~RecordToolbar() = default;

void RecordToolbar::refresh()
{
    for (const Private::Switch &one : qAsConst(d->switches)) {
        if (d->state == State::Idle)
            one.button->setOn(gKelMovieConfig.*one.field);
    }
    d->time->updateText();
    d->fps->updateText();
    for (QWidget *extra : qAsConst(d->extras))
        extra->setVisible(gKelMovieConfig.recordRecordToolbarDisplayType != Essentials);
}

void RecordToolbar::showState(State state)
{
    d->state = state;
    const bool isIdle = state == State::Idle;
    const bool isRecording = state == State::Recording || state == State::Paused;
    d->record->setRecording(!isIdle);
    d->pause->setEnabled(isRecording);
    d->pause->setPause(state == State::Paused);
    d->time->setIsRecording(isRecording);
    d->fps->setEnabled(isIdle);
    d->area->setEnabled(isIdle);
    for (SwitchButton *sound : {d->systemAudio, d->microphone}) {
        if (isIdle)
            sound->unlock();
        else
            sound->lock(tr("Sound cannot be switched during a recording"));
    }
    for (SwitchButton *input : {d->mouse, d->keys}) {
        // A track that was left out cannot be added to a recording that is under way.
        if (isIdle || (isRecording && (input->isChecked() || input->isEnabled())))
            input->unlock();
        else
            input->lock(tr("This can be switched on only before a recording"));
    }
    if (isIdle)
        refresh();
}

void RecordToolbar::showElapsed(qint64 ms)
{
    d->time->setRecordTime(ms);
}

bool RecordToolbar::makeWayFor(const QRect &area)
{
    if (isVisible() && !geometry().intersects(area))
        return true;
    const std::optional<QPoint> place = ToolbarPlacement::beside(area, sizeHint(), usableScreens());
    if (place)
        move(*place);
    return place.has_value();
}

void RecordToolbar::appearBeside(const QRect &area)
{
    if (area.isEmpty() || !makeWayFor(area)) {
        const QRect screen = usableScreens().constFirst();
        move(screen.center().x() - sizeHint().width() / 2, screen.top() + screen.height() * 4 / 5);
    }
}

void RecordToolbar::closeEvent(QCloseEvent *event)
{
    // What closing means depends on what goes on: whoever listens decides.
    event->ignore();
    emit closeRequested();
}

void RecordToolbar::enterEvent(QEvent *)
{
    emit hovered(true);
}

void RecordToolbar::leaveEvent(QEvent *)
{
    emit hovered(false);
}

void RecordToolbar::mousePressEvent(QMouseEvent *event)
{
    d->grabbedAt = event->pos();
}

void RecordToolbar::mouseMoveEvent(QMouseEvent *event)
{
    if (event->buttons() & Qt::LeftButton)
        move(event->globalPos() - d->grabbedAt);
}

void RecordToolbar::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape && d->state == State::CountingDown)
        emit stopRequested();
    else
        QWidget::keyPressEvent(event);
}

void RecordToolbar::resizeEvent(QResizeEvent *)
{
    // The corners: without a compositor they would be black, not transparent.
    QPainterPath shape;
    shape.addRoundedRect(rect(), 8 * KelStyleTheme::scaleOf(this), 8 * KelStyleTheme::scaleOf(this));
    setMask(QRegion(shape.toFillPolygon().toPolygon()));
}
