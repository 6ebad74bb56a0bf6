#include "kelmovie/support/OverlayRecording.h"
#include "kelmovie/support/SavingConfigIO.h"

#include "notification/KelToastsMessage.h"
#include "support/TestTable.h"
#include "widget/ChoiceBox.h"
#include "widget/ColorSelectButton.h"
#include "widget/MiniSlider.h"

#include <KelMovie/AudioSettingsPanel.h>
#include <KelMovie/CursorSettingsPanel.h>
#include <KelMovie/EncodeFormatPanel.h>
#include <KelMovie/KeyboardSettingsPanel.h>
#include <KelMovie/ProgressSettingsPanel.h>
#include <KelMovie/SaveQualityPanel.h>

#include <QColorDialog>
#include <QLabel>
#include <QtTest>

#include <climits>
#include <functional>
#include <optional>

using C = KelMovieConfig;
using R = OverlayRecording;
using Factory = std::function<QWidget *()>;
using Reader = std::function<QVariant()>;
using Change = std::function<void(C &)>;
Q_DECLARE_METATYPE(Factory)
Q_DECLARE_METATYPE(Reader)
Q_DECLARE_METATYPE(Change)

namespace
{

constexpr int kNoFrame = -1;

/// Keeps the alpha value, because the color dialog sets color and alpha separately, with a signal each.
QColor chosen(int alpha)
{
    return QColor(1, 200, 3, alpha);
}

template <typename Panel>
QWidget *create()
{
    return new Panel;
}

template <typename T>
Reader readerOf(T C::*field)
{
    return [field] { return QVariant::fromValue(gKelMovieConfig.*field); };
}

/// The control with this tool tip, which its label has, too.
QWidget *control(QWidget &panel, const QString &toolTip)
{
    for (auto *const widget : panel.findChildren<QWidget *>()) {
        if (widget->toolTip() == toolTip && !qobject_cast<QLabel *>(widget) && widget->focusPolicy() != Qt::NoFocus)
            return widget;
    }
    return nullptr;
}

/// Clicks the control or, if there are any, types the keys into it.
void operate(QWidget *control, const QList<Qt::Key> &keys)
{
    if (qobject_cast<ColorSelectButton *>(control)) {
        QTest::mouseClick(control, Qt::LeftButton);
        auto *const dialog = control->findChild<QColorDialog *>();
        dialog->setCurrentColor(chosen(dialog->currentColor().alpha()));
        dialog->accept();
    } else if (keys.isEmpty()) {
        QTest::mouseClick(control, Qt::LeftButton);
    } else {
        control->setFocus();
        for (const Qt::Key key : keys)
            QTest::keyClick(control, key);
    }
}

} // namespace

class SettingsPanelsTest : public QObject
{
    Q_OBJECT

private slots:
    void changes_data();
    void changes();
    void panels_data();
    void everyControlIsNamedAndReachedByTab_data() { panels_data(); }
    void everyControlIsNamedAndReachedByTab();
    void outOfRangeSettingsAreKept_data() { panels_data(); }
    void outOfRangeSettingsAreKept();
    void enablingATrackEnablesItsRows();
    void settingsWithoutEffectAreDisabled();
    void settingsThatCannotBeSaved();
    void font();
    void recordingNote();
    void recordingWithoutSound();
};

void SettingsPanelsTest::changes_data()
{
    QTest::addColumn<Factory>("factory");
    QTest::addColumn<QString>("toolTip");
    QTest::addColumn<QList<Qt::Key>>("keys");
    QTest::addColumn<QString>("key");
    QTest::addColumn<Reader>("field");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<int>("frame"); // that looks different after the change
    QTest::addColumn<Change>("before");

    Factory panel;
    Change before;
    const auto row = [&](const char *toolTip, const QList<Qt::Key> &keys, const char *key, const Reader &field,
                         const QVariant &value, int frame = kNoFrame) {
        QTest::newRow(*key ? key : toolTip)
            << panel << toolTip << keys << QString(*key ? QString("KelMovie.") + key : QString()) << field << value
            << frame << before;
    };
    const QList<Qt::Key> click;
    const QList<Qt::Key> right{Qt::Key_Right};
    const QList<Qt::Key> first{Qt::Key_Home};
    const QList<Qt::Key> last{Qt::Key_End};
    before = [](C &) {};

    panel = create<CursorSettingsPanel>;
    row("Show the recorded pointer and its effects", click, "playback.mouse.enable", readerOf(&C::playbackMouseEnable),
        false, R::PlainFrame);
    row("Show left clicks", click, "playback.mouse.showActionButton", readerOf(&C::playbackMouseShowActionButton), 6,
        R::ClickFrame);
    row("Animation shown at each click", {Qt::Key_Down}, "", readerOf(&C::playbackMouseClickEffect), 2, R::ClickFrame);
    row("End the previous effect at the next click", click, "", readerOf(&C::playbackMouseReplaceEffects), false);
    row("Show wheel scrolling", click, "playback.mouse.showWheel", readerOf(&C::playbackMouseShowWheel), false,
        R::WheelFrame);
    row("Effect color", click, "playback.mouse.color", readerOf(&C::playbackMouseColor), chosen(255), R::ClickFrame);
    row("Effect size", right, "playback.mouse.size", readerOf(&C::playbackMouseSize), 16, R::ClickFrame);
    row("Record the mouse next time", click, "record.mouse", readerOf(&C::recordMouse), false);

    panel = create<KeyboardSettingsPanel>;
    row("A-Z, 0-9", click, "playback.keyboard.showKeyType", readerOf(&C::playbackKeyboardShowKeyType), 15,
        R::LetterFrame);
    row("How long a key stays visible after it is pressed", first, "playback.keyboard.keepTime",
        readerOf(&C::playbackKeyboardKeepTime), 0, R::ShortcutFrame + 20);
    row("Bottom center", click, "playback.keyboard.displayPos", readerOf(&C::playbackKeyboardDisplayPos), 1,
        R::ShortcutFrame);
    row("Font size of the key labels", right, "playback.keyboard.fontSizePx", readerOf(&C::playbackKeyboardFontSizePx),
        23, R::ShortcutFrame);
    row("Text color of the key labels", click, "playback.keyboard.fontColor", readerOf(&C::playbackKeyboardFontColor),
        chosen(255), R::ShortcutFrame);
    row("Background color of the key labels", click, "playback.keyboard.bgColor", readerOf(&C::playbackKeyboardBgColor),
        chosen(200), R::ShortcutFrame);
    row("How much smaller the font of previous keys is", last, "playback.keyboard.historyFontSize",
        readerOf(&C::playbackKeyboardHistoryFontSize), 40, R::ShortcutFrame);
    row("Maximum number of boxes shown at a time", first, "playback.keyboard.maxHistoryCount",
        readerOf(&C::playbackKeyboardMaxHistoryCount), 0, R::ShortcutFrame);
    row("Record the keyboard next time", click, "record.keyboard", readerOf(&C::recordKeyboard), false);
    before = [](C &c) { c.playbackKeyboardShowKeyType = 15; };
    row("Maximum number of consecutive characters in one box", first, "playback.keyboard.maxContinueChar",
        readerOf(&C::playbackKeyboardMaxContinueChar), 1, R::LetterFrame);

    panel = create<ProgressSettingsPanel>;
    before = [](C &) {};
    row("Show the progress over the video", click, "playback.progress.enable", readerOf(&C::playbackProgressEnable),
        true, R::PlainFrame);
    before = [](C &c) { c.playbackProgressEnable = true; };
    row("Bar along the bottom edge", click, "playback.progress.displayMode", readerOf(&C::playbackProgressDisplayMode),
        1, R::PlainFrame);
    row("Font size of the time; the height of the bar follows it", right, "playback.progress.size",
        readerOf(&C::playbackProgressSize), 17, R::PlainFrame);
    before = [](C &c) {
        c.playbackProgressEnable = true;
        c.playbackProgressDisplayMode = 1;
    };
    row("Color of the played part of the bar", click, "playback.progress.fgColor",
        readerOf(&C::playbackProgressFgColor), chosen(200), R::PlainFrame);
    row("Color of the remaining part of the bar", click, "playback.progress.bgColor",
        readerOf(&C::playbackProgressBgColor), chosen(120), R::PlainFrame);
    row("Corner radius of the box or bar", last, "playback.progress.round", readerOf(&C::playbackProgressRound), 24,
        R::PlainFrame);
    row("Minimum time between updates of the bar", last, "playback.progress.gapTime",
        readerOf(&C::playbackProgressGapTime), 1000, R::PlainFrame);

    panel = create<AudioSettingsPanel>;
    before = [](C &c) { c.playbackAudioSystemVolume = c.playbackAudioMicrophoneVolume = 40; };
    row("Include system audio in playback and exports", click, "playback.audio.system.enabled",
        readerOf(&C::playbackAudioSystemEnabled), false);
    row("Mute system audio", click, "playback.audio.system.muted", readerOf(&C::playbackAudioSystemMuted), true);
    row("System audio volume", right, "playback.audio.system.volume", readerOf(&C::playbackAudioSystemVolume), 45);
    row("Boost system audio that was recorded too quietly", right, "playback.audio.system.gain",
        readerOf(&C::playbackAudioSystemGain), 110);
    row("Include the microphone in playback and exports", click, "playback.audio.microphone.enabled",
        readerOf(&C::playbackAudioMicrophoneEnabled), false);
    row("Mute the microphone", click, "playback.audio.microphone.muted", readerOf(&C::playbackAudioMicrophoneMuted),
        true);
    row("Microphone volume", right, "playback.audio.microphone.volume", readerOf(&C::playbackAudioMicrophoneVolume),
        45);
    row("Boost a microphone that was recorded too quietly", right, "playback.audio.microphone.gain",
        readerOf(&C::playbackAudioMicrophoneGain), 110);
    row("Record system audio next time", click, "record.recordSystemAudio", readerOf(&C::recordRecordSystemAudio),
        false);
    row("Record the microphone next time", click, "record.recordMicrophone", readerOf(&C::recordRecordMicrophone),
        false);

    panel = create<EncodeFormatPanel>;
    before = [](C &c) { c.playbackEncodeFormat = 1; };
    row("Lossless animation in full color, without sound", click, "playback.encodeFormat",
        readerOf(&C::playbackEncodeFormat), 2);
    row("How many times an animation plays", {Qt::Key_Down}, "encode.gif.playLoop", readerOf(&C::encodeGifPlayLoop), 1);
    row("Exit recording mode when an export is complete", click, "encode.exitRecordAfterEncode",
        readerOf(&C::encodeExitRecordAfterEncode), true);

    panel = create<SaveQualityPanel>;
    row("Highest quality", click, "", readerOf(&C::saveQuality), 2);
}

void SettingsPanelsTest::changes()
{
    QFETCH(Factory, factory);
    QFETCH(QString, toolTip);
    QFETCH(QList<Qt::Key>, keys);
    QFETCH(QString, key);
    QFETCH(Reader, field);
    QFETCH(QVariant, value);
    QFETCH(int, frame);
    QFETCH(Change, before);

    SavingConfigIO io;
    before(gKelMovieConfig);
    const OverlayRecording recording;
    const auto manager = recording.load();
    const QImage earlier = frame == kNoFrame ? QImage() : recording.imageAt(*manager, frame);

    const std::unique_ptr<QWidget> panel(factory());
    QSignalSpy updates(panel.get(), SIGNAL(sigConfigUpdated()));
    connect(panel.get(), SIGNAL(sigConfigUpdated()), manager.get(), SLOT(updateSettings()));
    panel->show();
    QVERIFY(io.saved.isEmpty());
    QWidget *const widget = control(*panel, toolTip);
    QVERIFY(widget);
    QVERIFY(widget->isEnabled());
    operate(widget, keys);
    QCOMPARE(field(), value);
    QCOMPARE(io.saved, key.isEmpty() ? (QMap<QString, QVariant>{}) : (QMap<QString, QVariant>{{key, value}}));
    QCOMPARE(updates.size(), 1);
    if (frame != kNoFrame)
        QVERIFY(recording.imageAt(*manager, frame) != earlier);
}

void SettingsPanelsTest::panels_data()
{
    const TestTable<Factory> row("factory");
    row("audio", Factory(create<AudioSettingsPanel>));
    row("cursor", Factory(create<CursorSettingsPanel>));
    row("keyboard", Factory(create<KeyboardSettingsPanel>));
    row("progress", Factory(create<ProgressSettingsPanel>));
    row("format", Factory(create<EncodeFormatPanel>));
    row("quality", Factory(create<SaveQualityPanel>));
}

void SettingsPanelsTest::everyControlIsNamedAndReachedByTab()
{
    QFETCH(Factory, factory);
    const SavingConfigIO io;
    gKelMovieConfig.playbackProgressEnable = true; // enables all controls
    gKelMovieConfig.playbackProgressDisplayMode = gKelMovieConfig.playbackEncodeFormat = 1;
    const std::unique_ptr<QWidget> panel(factory());
    panel->show();
    QVERIFY(QTest::qWaitForWindowActive(panel.get()));
    QSet<QWidget *> missed;
    for (auto *const widget : panel->findChildren<QWidget *>()) {
        if (!(widget->focusPolicy() & Qt::TabFocus) || !widget->isVisible())
            continue;
        QVERIFY2(!widget->toolTip().isEmpty() && !widget->accessibleName().isEmpty(),
                 widget->metaObject()->className());
        const auto *const button = qobject_cast<QAbstractButton *>(widget);
        if (!button || !button->autoExclusive() || button->isChecked()) // arrow keys reach the others
            missed << widget;
    }
    QVERIFY(!missed.isEmpty());
    for (int i = missed.size(); i > 0; --i) {
        QTest::keyClick(QApplication::focusWidget() ? QApplication::focusWidget() : panel.get(), Qt::Key_Tab);
        missed.remove(QApplication::focusWidget());
    }
    QVERIFY(missed.isEmpty());
}

void SettingsPanelsTest::outOfRangeSettingsAreKept()
{
    QFETCH(Factory, factory);
    for (const int value : {INT_MIN, -1, INT_MAX}) {
        const SavingConfigIO io;
        C &config = gKelMovieConfig;
        for (int C::*const field :
             {&C::playbackMouseShowActionButton, &C::playbackMouseSize, &C::playbackMouseClickEffect,
              &C::playbackKeyboardShowKeyType, &C::playbackKeyboardMaxContinueChar, &C::playbackKeyboardKeepTime,
              &C::playbackKeyboardDisplayPos, &C::playbackKeyboardFontSizePx, &C::playbackKeyboardHistoryFontSize,
              &C::playbackKeyboardMaxHistoryCount, &C::playbackProgressDisplayMode, &C::playbackProgressSize,
              &C::playbackProgressRound, &C::playbackProgressGapTime, &C::playbackAudioSystemVolume,
              &C::playbackAudioMicrophoneGain, &C::playbackEncodeFormat, &C::encodeGifPlayLoop, &C::saveQuality})
            config.*field = value;
        config.playbackMouseColor = config.playbackKeyboardBgColor = config.playbackProgressFgColor = QColor();
        const std::unique_ptr<QWidget> panel(factory());
        QSignalSpy updates(panel.get(), SIGNAL(sigConfigUpdated()));
        panel->show();
        QVERIFY(!panel->grab().isNull());
        QVERIFY(io.saved.isEmpty());
        QVERIFY(updates.isEmpty());
        QCOMPARE(config.playbackEncodeFormat, value);
    }
}

void SettingsPanelsTest::enablingATrackEnablesItsRows()
{
    const SavingConfigIO io;
    AudioSettingsPanel panel;
    panel.show();
    QWidget *const system = control(panel, "System audio volume");
    QWidget *const microphone = control(panel, "Microphone volume");
    operate(control(panel, "Include system audio in playback and exports"), {Qt::Key_Space});
    QVERIFY(!system->isEnabled());
    QVERIFY(microphone->isEnabled());
    // Changed elsewhere while the panel is hidden.
    panel.hide();
    gKelMovieConfig.playbackAudioSystemEnabled = true;
    panel.show();
    QVERIFY(system->isEnabled());
}

void SettingsPanelsTest::settingsWithoutEffectAreDisabled()
{
    const SavingConfigIO io;
    EncodeFormatPanel format;
    format.show();
    QWidget *const plays = control(format, "How many times an animation plays");
    QVERIFY(!plays->isEnabled()); // not for MP4
    operate(control(format, "Compact animation in full color, without sound"), {});
    QVERIFY(plays->isEnabled());
    ProgressSettingsPanel progress;
    progress.show();
    QWidget *const interval = control(progress, "Minimum time between updates of the bar");
    operate(control(progress, "Show the progress over the video"), {});
    QVERIFY(!interval->isEnabled()); // not for the time
    operate(control(progress, "Bar along the bottom edge"), {});
    QVERIFY(interval->isEnabled());
}

void SettingsPanelsTest::settingsThatCannotBeSaved()
{
    std::optional<SavingConfigIO> io(std::in_place);
    io->refuses = true;
    ProgressSettingsPanel panel;
    QSignalSpy updates(&panel, &ProgressSettingsPanel::sigConfigUpdated);
    panel.show();
    const auto toasts = [] {
        int count = 0;
        for (QWidget *const widget : QApplication::topLevelWidgets())
            count += qobject_cast<KelToastsMessage *>(widget) && widget->isVisible() ? 1 : 0;
        return count;
    };
    operate(control(panel, "Show the progress over the video"), {});
    QCOMPARE(toasts(), 1);
    for (QWidget *const widget : QApplication::topLevelWidgets()) {
        if (qobject_cast<KelToastsMessage *>(widget))
            delete widget;
    }
    operate(control(panel, "Bar along the bottom edge"), {});
    QCOMPARE(toasts(), 0); // shown once
    QVERIFY(gKelMovieConfig.playbackProgressEnable);
    QCOMPARE(gKelMovieConfig.playbackProgressDisplayMode, 1);
    QCOMPARE(updates.size(), 2);

    io.reset(); // no store at all; resets the settings, too
    panel.hide();
    panel.show();
    operate(control(panel, "Show the progress over the video"), {});
    QCOMPARE(updates.size(), 3);
    gKelMovieConfig = C();
}

void SettingsPanelsTest::font()
{
    const SavingConfigIO io;
    KeyboardSettingsPanel panel;
    panel.show();
    auto *const box = qobject_cast<ChoiceBox *>(control(panel, "Font of the key labels"));
    QVERIFY(box);
    QVERIFY(!box->currentText().isEmpty());
    gKelMovieConfig.playbackKeyboardFont.setBold(true);
    QSignalSpy updates(&panel, &KeyboardSettingsPanel::sigConfigUpdated);
    box->setCurrentIndex(box->currentIndex() == 0 ? 1 : 0);
    QCOMPARE(updates.size(), 1);
    QCOMPARE(gKelMovieConfig.playbackKeyboardFont.family(), box->currentText());
    QVERIFY(gKelMovieConfig.playbackKeyboardFont.bold());
    QVERIFY(io.saved.isEmpty()); // saving fonts is up to the host
}

void SettingsPanelsTest::recordingNote()
{
    const SavingConfigIO io;
    AudioSettingsPanel panel;
    panel.show();
    QWidget *const close = control(panel, "Don't show this note again");
    QVERIFY(!close->isVisible());
    panel.setRecording(true);
    QVERIFY(close->isVisible());
    operate(close, {});
    QVERIFY(!close->isVisible());
    QCOMPARE(io.saved, (QMap<QString, QVariant>{{"KelMovie.record.dontShowRecordingWarning", true}}));
    panel.setRecording(false);
    panel.setRecording(true);
    QVERIFY(!close->isVisible());
}

void SettingsPanelsTest::recordingWithoutSound()
{
    const SavingConfigIO io;
    const OverlayRecording recording; // has no sound
    auto manager = recording.load();
    AudioSettingsPanel panel;
    panel.setPlaybackManager(manager.get());
    panel.show();
    QStringList notes;
    const auto readNotes = [&] {
        notes.clear();
        for (const auto *const label : panel.findChildren<QLabel *>("Note"))
            notes << label->text();
        return notes;
    };
    QTRY_VERIFY(readNotes().contains("This recording has no system audio."));
    QVERIFY(notes.contains("This recording has no microphone audio."));
    manager.reset(); // the panel outlives it
    QTest::qWait(0);
    QVERIFY(panel.isVisible());
}

QTEST_MAIN(SettingsPanelsTest)
#include "tst_settings_panels.moc"
