#include "recorder/RecordToolbar.h"

#include "common/WindowPlacement.h"
#include "recorder/SwitchButton.h"
#include "recorder/ToolbarPlacement.h"
#include "recorder/TrackSwitches.h"
#include "style/KelStyleTheme.h"
#include "widget/ScaleFactor.h"
#include "widgets/DockStyle.h"
#include "widgets/FlatButton.h"

#include <KelMovie/KelMovieConfig.h>
#include <KelMovie/KelRecordButton.h>
#include <KelMovie/KelRecordFpsLabel.h>
#include <KelMovie/KelRecordPauseButton.h>
#include <KelMovie/KelRecordTimeLable.h>

#include <QCloseEvent>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QMouseEvent>
#include <QPainterPath>
#include <QPushButton>
#include <QScreen>
#include <QWindow>

using KelDockIcon::Glyph;
using State = RecordingController::State;

namespace
{

constexpr int kEssentials = 1; // of recordRecordToolbarDisplayType
constexpr int kCornerRadius = 8;

QVector<QRect> availableGeometries()
{
    QVector<QRect> geometries;
    for (const QScreen *screen : QGuiApplication::screens())
        geometries.append(screen->availableGeometry());
    return geometries;
}

QFrame *createSeparator(QWidget *parent)
{
    auto *const line = new QFrame(parent);
    line->setObjectName(QStringLiteral("Separator"));
    line->setFrameShape(QFrame::NoFrame);
    return line;
}

} // namespace

RecordToolbar::RecordToolbar(QWidget *parent)
    : QWidget(parent, Qt::Window | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint)
    , m_recordButtons(new QWidget(this))
    , m_record(new KelRecordButton(m_recordButtons))
    , m_pause(new KelRecordPauseButton(m_recordButtons))
    , m_time(new KelRecordTimeLable(this))
    , m_fps(new KelRecordFpsLabel(this))
    , m_switches(new TrackSwitches(this))
{
    setObjectName(QStringLiteral("RecordToolbar"));
    setWindowTitle(tr("Screen recorder"));
    setAttribute(Qt::WA_StyledBackground);
    layOut();
    applyDockStyle(this, QStringLiteral("Bar"));
    connectRecordButtons();
    connect(m_switches, &TrackSwitches::keysSwitched, this, &RecordToolbar::keysSwitched);
    connect(m_switches, &TrackSwitches::mouseSwitched, this, &RecordToolbar::mouseSwitched);
    connect(qGuiApp, &QGuiApplication::focusWindowChanged, this, &RecordToolbar::giveWayTo);
    showState(State::Idle);
}

/// The toolbar is above the windows of other programs, but not above a window of this one that the user works in.
void RecordToolbar::giveWayTo(QWindow *focused)
{
    QWindow *const toolbar = windowHandle();
    if (!toolbar || (focused && focused->type() != Qt::Window && focused->type() != Qt::Dialog))
        return;
    const bool isOwn = !focused || focused == toolbar || focused->transientParent() == toolbar;
    toolbar->setFlag(Qt::WindowStaysOnTopHint, isOwn);
    if (!isOwn)
        focused->raise();
}

void RecordToolbar::layOut()
{
    m_area = addButton(Glyph::Area, tr("Choose the area to record"), &RecordToolbar::areaRequested);
    QPushButton *const recordings = addButton(Glyph::Folder, tr("Recordings"), &RecordToolbar::recordingsRequested);
    QPushButton *const settings = addButton(Glyph::Settings, tr("Settings"), &RecordToolbar::settingsRequested);
    QPushButton *const minimize = addButton(Glyph::ChevronDown, tr("Hide toolbar"), &RecordToolbar::minimizeRequested);
    QPushButton *const close = addButton(Glyph::Close, tr("Close"), &RecordToolbar::closeRequested);
    QFrame *const beforeRecordings = createSeparator(this);

    auto *const recordButtons = new QHBoxLayout(m_recordButtons);
    recordButtons->setContentsMargins(0, 0, 0, 0);
    recordButtons->setSpacing(2);
    recordButtons->addWidget(m_record);
    recordButtons->addWidget(m_pause);
    KelStyleTheme::instance()->appleStyleTo(m_recordButtons, {QStringLiteral(":/KelMovie/KelPlayCtrlWidget")});

    QVector<QWidget *> controls{m_recordButtons, m_time, m_fps, createSeparator(this), m_area};
    QVector<QWidget *> tabOrder{m_record, m_pause, m_time, m_fps, m_area};
    for (SwitchButton *button : m_switches->buttons()) {
        controls.append(button);
        tabOrder.append(button);
    }
    controls += {beforeRecordings, recordings, settings, createSeparator(this), minimize, close};
    tabOrder += {recordings, settings, minimize, close};

    auto *const layout = new QHBoxLayout(this);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->setContentsMargins(8, 6, 8, 6);
    layout->setSpacing(2);
    for (QWidget *widget : qAsConst(controls))
        layout->addWidget(widget);
    for (int i = 1; i < tabOrder.size(); ++i)
        setTabOrder(tabOrder.at(i - 1), tabOrder.at(i));
    m_extras = {m_fps, beforeRecordings, recordings, m_switches->mouseButton()};
}

QPushButton *RecordToolbar::addButton(Glyph glyph, const QString &action, void (RecordToolbar::*request)())
{
    QPushButton *const button = createBarButton(glyph, action, this);
    connect(button, &QPushButton::clicked, this, request);
    return button;
}

/// The module's buttons change their look by themselves. Here they follow the controller, which may refuse a request.
void RecordToolbar::connectRecordButtons()
{
    connect(m_record, &KelRecordButton::sigRecordStateChanged, this, [this](bool isRecording) {
        m_record->setRecording(m_state != State::Idle);
        if (isRecording)
            emit recordRequested();
        else
            emit stopRequested();
    });
    connect(m_pause, &KelRecordPauseButton::sigPauseStateChanged, this, [this] {
        m_pause->setPause(m_state == State::Paused);
        emit pauseRequested();
    });
}

void RecordToolbar::refresh()
{
    m_switches->refresh();
    m_time->updateText();
    m_fps->updateText();
    for (QWidget *extra : qAsConst(m_extras))
        extra->setVisible(gKelMovieConfig.recordRecordToolbarDisplayType != kEssentials);
}

void RecordToolbar::showState(State state)
{
    m_state = state;
    const bool isIdle = state == State::Idle;
    const bool isRecording = state == State::Recording || state == State::Paused;
    m_record->setRecording(!isIdle);
    m_pause->setEnabled(isRecording);
    m_pause->setPause(state == State::Paused);
    m_time->setIsRecording(isRecording);
    m_fps->setEnabled(isIdle);
    m_area->setEnabled(isIdle);
    m_switches->showState(state);
    if (isIdle)
        refresh();
}

void RecordToolbar::showElapsed(qint64 ms)
{
    m_time->setRecordTime(ms);
}

bool RecordToolbar::moveAwayFrom(const QRect &area)
{
    if (!canPlaceWindows())
        return false;
    if (isVisible() && !geometry().intersects(area))
        return true;
    const std::optional<QPoint> place = ToolbarPlacement::beside(area, sizeHint(), availableGeometries());
    if (place)
        move(*place);
    return place.has_value();
}

void RecordToolbar::moveToStart(const QRect &area)
{
    if (area.isEmpty() || !moveAwayFrom(area)) {
        const QRect screen = availableGeometries().constFirst();
        move(screen.center().x() - sizeHint().width() / 2, screen.top() + screen.height() * 4 / 5);
    }
}

void RecordToolbar::closeEvent(QCloseEvent *event)
{
    // The receiver decides what closing does in the current state.
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
    m_dragStart = event->pos();
}

void RecordToolbar::mouseMoveEvent(QMouseEvent *event)
{
    if (event->buttons() & Qt::LeftButton)
        move(event->globalPos() - m_dragStart);
}

void RecordToolbar::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape && m_state == State::CountingDown)
        emit stopRequested();
    else
        QWidget::keyPressEvent(event);
}

void RecordToolbar::resizeEvent(QResizeEvent *)
{
    // A mask rather than transparent corners, which are black without a compositor.
    const double radius = kCornerRadius * scaleFactor(this);
    QPainterPath shape;
    shape.addRoundedRect(rect(), radius, radius);
    setMask(QRegion(shape.toFillPolygon().toPolygon()));
}
