#include "kelmovie/support/RecordingOnDisk.h"
#include "kelmovie/support/SavingConfigIO.h"
#include "kelmovie/support/ScriptedDecoder.h"

#include "notification/KelToastsMessage.h"
#include "playback/PlaybackInternals.h"
#include "support/Controls.h"
#include "support/TestTable.h"
#include "ui/settings/SoundLevelMeter.h"
#include "widget/ChoiceBox.h"
#include "widget/ColorSelectButton.h"

#include <KelMovie/AudioSettingsPanel.h>
#include <KelMovie/CursorSettingsPanel.h>
#include <KelMovie/EncodeFormatPanel.h>
#include <KelMovie/KelPlaybackTrackManager.h>
#include <KelMovie/KeyboardSettingsPanel.h>
#include <KelMovie/ProgressSettingsPanel.h>
#include <KelMovie/SaveQualityPanel.h>

#include <QColorDialog>
#include <QLabel>
#include <QSlider>
#include <QtTest>

#include <climits>
#include <optional>

using C = KelMovieConfig;
using Factory = QWidget *(*)();
Q_DECLARE_METATYPE(Factory)

namespace
{

template <typename Panel>
QWidget *create()
{
    return new Panel;
}

/// Keeps the alpha value, because the color dialog sets color and alpha separately, with a signal each.
QColor chosen(int alpha)
{
    return QColor(1, 200, 3, alpha);
}

/// The control with this tool tip, which its label has, too.
QWidget *control(QWidget &panel, const QString &toolTip)
{
    for (auto *const widget : panel.findChildren<QWidget *>()) {
        if (widget->toolTip() == toolTip && !qobject_cast<QLabel *>(widget) && widget->focusPolicy() != Qt::NoFocus)
            return widget;
    }
    qFatal("no control has the tool tip '%s'", qPrintable(toolTip));
}

/// Chooses the next entry of a list, a certain color, or clicks.
void operate(QWidget *control)
{
    if (qobject_cast<ChoiceBox *>(control))
        return QTest::keyClick(control, Qt::Key_Down);
    QTest::mouseClick(control, Qt::LeftButton);
    if (qobject_cast<ColorSelectButton *>(control)) {
        auto *const dialog = control->findChild<QColorDialog *>();
        dialog->setCurrentColor(chosen(dialog->currentColor().alpha()));
        dialog->accept();
    }
}

QStringList shownTexts(const QWidget &panel, const QString &kind)
{
    QStringList texts;
    for (const auto *const label : panel.findChildren<QLabel *>(kind)) {
        if (label->isVisible())
            texts += label->text();
    }
    return texts;
}

} // namespace

class SettingsPanelsTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_io.emplace();
        // Enables all controls.
        gKelMovieConfig.playbackProgressEnable = true;
        gKelMovieConfig.playbackProgressDisplayMode = gKelMovieConfig.playbackEncodeFormat = 1;
    }

    void cleanup() { m_io.reset(); }

    void changes_data()
    {
        const TestTable<Factory, QString, QString, QVariant> table("factory", "toolTip", "key", "value");
        Factory panel = create<CursorSettingsPanel>;
        const auto row = [&](const char *toolTip, const char *key, const QVariant &value) {
            table(key, panel, toolTip, QString("KelMovie.") + key, value);
        };
        row("Show the recorded pointer and its effects", "playback.mouse.enable", false);
        row("Show left clicks", "playback.mouse.showActionButton", 6);
        row("Show wheel scrolling", "playback.mouse.showWheel", false);
        row("Effect color", "playback.mouse.color", chosen(255));
        row("Record the mouse next time", "record.mouse", false);

        panel = create<KeyboardSettingsPanel>;
        row("A-Z, 0-9", "playback.keyboard.showKeyType", 15);
        row("Bottom center", "playback.keyboard.displayPos", 1);
        row("Text color of the key labels", "playback.keyboard.fontColor", chosen(255));
        row("Background color of the key labels", "playback.keyboard.bgColor", chosen(200));
        row("Record the keyboard next time", "record.keyboard", false);

        panel = create<ProgressSettingsPanel>;
        row("Show the progress over the video", "playback.progress.enable", false);
        row("Elapsed and total time in a box", "playback.progress.displayMode", 0);
        row("Color of the played part of the bar", "playback.progress.fgColor", chosen(200));
        row("Color of the remaining part of the bar", "playback.progress.bgColor", chosen(120));

        panel = create<AudioSettingsPanel>;
        row("Include system audio in playback and exports", "playback.audio.system.enabled", false);
        row("Mute system audio", "playback.audio.system.muted", true);
        row("Include the microphone in playback and exports", "playback.audio.microphone.enabled", false);
        row("Mute the microphone", "playback.audio.microphone.muted", true);
        row("Record system audio next time", "record.recordSystemAudio", false);
        row("Record the microphone next time", "record.recordMicrophone", false);

        panel = create<EncodeFormatPanel>;
        row("Lossless animation in full color, without sound", "playback.encodeFormat", 2);
        row("How many times an animation plays", "encode.gif.playLoop", 1);
        row("Exit recording mode when an export is complete", "encode.exitRecordAfterEncode", true);
    }

    void changes()
    {
        QFETCH(Factory, factory);
        QFETCH(QString, toolTip);
        QFETCH(QString, key);
        QFETCH(QVariant, value);
        const std::unique_ptr<QWidget> panel(factory());
        QSignalSpy updates(panel.get(), SIGNAL(sigConfigUpdated()));
        panel->show();
        auto expected = m_io->values();
        expected[key] = value;
        operate(control(*panel, toolTip));
        QVERIFY2(m_io->values() == expected, "exactly this setting has changed");
        QCOMPARE(m_io->saved, (QMap<QString, QVariant>{{key, value}}));
        QCOMPARE(updates.size(), 1);
    }

    void sliders_data()
    {
        const TestTable<Factory, QString, QString, int, int, int, QString> table("factory", "toolTip", "key", "minimum",
                                                                                 "maximum", "step", "text");
        Factory panel = create<CursorSettingsPanel>;
        const auto row = [&](const char *toolTip, const char *key, int minimum, int maximum, const char *text,
                             int step = 1) {
            table(key, panel, toolTip, QString("KelMovie.playback.") + key, minimum, maximum, step, text);
        };
        row("Effect size", "mouse.size", 5, 60, "60");
        panel = create<KeyboardSettingsPanel>;
        row("Maximum number of consecutive characters in one box", "keyboard.maxContinueChar", 1, 40, "40");
        row("How long a key stays visible after it is pressed", "keyboard.keepTime", 0, 10, "10 s");
        row("Font size of the key labels", "keyboard.fontSizePx", 8, 96, "96 px");
        row("Maximum number of boxes shown at a time", "keyboard.maxHistoryCount", 0, 20, "20");
        row("How much smaller the font of previous keys is", "keyboard.historyFontSize", 0, 40, "40 px");
        panel = create<ProgressSettingsPanel>;
        row("Font size of the time; the height of the bar follows it", "progress.size", 8, 96, "96 px");
        row("Corner radius of the box or bar", "progress.round", 0, 24, "24 px");
        row("Minimum time between updates of the bar", "progress.gapTime", 0, 1000, "1000 ms", 10);
        panel = create<AudioSettingsPanel>;
        row("System audio volume", "audio.system.volume", 0, 100, "100%", 5);
        row("Boost system audio that was recorded too quietly", "audio.system.gain", 0, 500, "500%", 10);
        row("Microphone volume", "audio.microphone.volume", 0, 100, "100%", 5);
        row("Boost a microphone that was recorded too quietly", "audio.microphone.gain", 0, 500, "500%", 10);
    }

    void sliders()
    {
        QFETCH(Factory, factory);
        QFETCH(QString, toolTip);
        QFETCH(QString, key);
        QFETCH(int, minimum);
        QFETCH(int, maximum);
        QFETCH(int, step);
        QFETCH(QString, text);
        const std::unique_ptr<QWidget> panel(factory());
        panel->show();
        auto *const slider = qobject_cast<QSlider *>(control(*panel, toolTip));
        QCOMPARE(QVariant(slider->value()), m_io->values().value(key));
        QCOMPARE(slider->accessibleDescription(), toolTip);
        auto expected = m_io->values();
        const auto press = [&](Qt::Key code, int value) {
            QTest::keyClick(slider, code);
            expected[key] = value;
            return m_io->values() == expected && m_io->saved.value(key, value) == value;
        };
        QVERIFY(press(Qt::Key_Home, minimum));
        QVERIFY(press(Qt::Key_End, maximum));
        QVERIFY(shownTexts(*panel, "Value").contains(text));
        QVERIFY(press(Qt::Key_Left, maximum - step));
        QCOMPARE(m_io->saved.keys(), QStringList{key});
    }

    void settingsWithoutAKey()
    {
        CursorSettingsPanel cursor;
        SaveQualityPanel quality;
        cursor.show();
        quality.show();
        operate(control(cursor, "Animation shown at each click"));
        operate(control(cursor, "End the previous effect at the next click"));
        operate(control(quality, "Highest quality"));
        QCOMPARE(gKelMovieConfig.playbackMouseClickEffect, C().playbackMouseClickEffect + 1);
        QCOMPARE(gKelMovieConfig.playbackMouseReplaceEffects, !C().playbackMouseReplaceEffects);
        QCOMPARE(gKelMovieConfig.saveQuality, 2);
        QVERIFY(m_io->saved.isEmpty());
    }

    void panels_data()
    {
        const TestTable<Factory> row("factory");
        row("audio", create<AudioSettingsPanel>);
        row("cursor", create<CursorSettingsPanel>);
        row("keyboard", create<KeyboardSettingsPanel>);
        row("progress", create<ProgressSettingsPanel>);
        row("format", create<EncodeFormatPanel>);
        row("quality", create<SaveQualityPanel>);
    }

    void controlsAreInPlace_data() { panels_data(); }

    void controlsAreInPlace()
    {
        QFETCH(Factory, factory);
        const std::unique_ptr<QWidget> panel(factory());
        panel->show();
        QCOMPARE(controlFaults(panel.get()).join('\n'), QString());
        for (const auto *const label : panel->findChildren<QLabel *>()) {
            if (const QWidget *const control = label->buddy()) {
                const QPoint place = control->mapTo(panel.get(), QPoint());
                const QRect text(label->mapTo(panel.get(), QPoint()), label->size());
                QVERIFY2(place.x() > text.right(), qPrintable(label->text()));
                QVERIFY2(place.y() <= text.bottom() && place.y() + control->height() > text.top(), "beside each other");
            }
        }
    }

    void outOfRangeSettingsAreKept_data() { panels_data(); }

    void outOfRangeSettingsAreKept()
    {
        QFETCH(Factory, factory);
        for (const int value : {INT_MIN, -1, INT_MAX}) {
            m_io->setAll(value, QColor());
            gKelMovieConfig.playbackMouseClickEffect = gKelMovieConfig.saveQuality = value;
            const auto before = m_io->values();
            const std::unique_ptr<QWidget> panel(factory());
            QSignalSpy updates(panel.get(), SIGNAL(sigConfigUpdated()));
            panel->show();
            QVERIFY(!panel->grab().isNull());
            QVERIFY(m_io->saved.isEmpty() && updates.isEmpty());
            QVERIFY(m_io->values() == before);
        }
    }

    void settingsWithoutEffectAreDisabled()
    {
        AudioSettingsPanel audio;
        audio.show();
        QWidget *const system = control(audio, "System audio volume");
        operate(control(audio, "Include system audio in playback and exports"));
        QVERIFY(!system->isEnabled());
        QVERIFY(control(audio, "Microphone volume")->isEnabled());
        // Changed elsewhere while the panel is hidden.
        audio.hide();
        gKelMovieConfig.playbackAudioSystemEnabled = true;
        audio.show();
        QVERIFY(system->isEnabled());

        EncodeFormatPanel format;
        format.show();
        operate(control(format, "Video with sound; plays almost everywhere"));
        QVERIFY(!control(format, "How many times an animation plays")->isEnabled());
        QVERIFY(control(format, "Exit recording mode when an export is complete")->isEnabled());

        ProgressSettingsPanel progress;
        progress.show();
        operate(control(progress, "Elapsed and total time in a box"));
        QVERIFY(!control(progress, "Minimum time between updates of the bar")->isEnabled());
        QVERIFY(control(progress, "Corner radius of the box or bar")->isEnabled());
    }

    void settingsOfTheNextRecordingCanBeHidden()
    {
        AudioSettingsPanel audio;
        CursorSettingsPanel cursor;
        KeyboardSettingsPanel keyboard;
        const auto hide = [](auto &panel, const char *toolTip) {
            panel.show();
            const QWidget *const next = control(panel, toolTip);
            const bool wasShown = next->isVisible() && shownTexts(panel, "Heading").contains("Recording");
            panel.setRecordingShown(false);
            return wasShown && !next->isVisible() && !shownTexts(panel, "Heading").contains("Recording");
        };
        QVERIFY(hide(audio, "Record the microphone next time"));
        QVERIFY(hide(cursor, "Record the mouse next time"));
        QVERIFY(hide(keyboard, "Record the keyboard next time"));
        QVERIFY(control(keyboard, "A-Z, 0-9")->isVisible());
    }

    void settingsThatCannotBeSaved()
    {
        m_io->refuses = true;
        ProgressSettingsPanel panel;
        QSignalSpy updates(&panel, &ProgressSettingsPanel::sigConfigUpdated);
        panel.show();
        const auto takeToast = [] {
            for (QWidget *const widget : QApplication::topLevelWidgets()) {
                if (auto *const toast = qobject_cast<KelToastsMessage *>(widget)) {
                    const QString text = toast->text();
                    delete toast;
                    return text;
                }
            }
            return QString();
        };
        operate(control(panel, "Elapsed and total time in a box"));
        QVERIFY(takeToast().startsWith("Settings cannot be saved."));
        operate(control(panel, "Show the progress over the video"));
        QCOMPARE(takeToast(), QString()); // shown once
        QCOMPARE(gKelMovieConfig.playbackProgressDisplayMode, 0);
        QVERIFY(!gKelMovieConfig.playbackProgressEnable);
        QCOMPARE(updates.size(), 2);

        m_io.reset(); // no store at all; resets the settings, too
        panel.hide();
        panel.show();
        operate(control(panel, "Show the progress over the video"));
        QVERIFY(gKelMovieConfig.playbackProgressEnable);
        QCOMPARE(updates.size(), 3);
        gKelMovieConfig = C();
    }

    void font()
    {
        KeyboardSettingsPanel panel;
        panel.show();
        auto *const box = qobject_cast<ChoiceBox *>(control(panel, "Font of the key labels"));
        QCOMPARE(box->currentText(), QFontInfo(QApplication::font()).family());
        gKelMovieConfig.playbackKeyboardFont.setBold(true);
        QSignalSpy updates(&panel, &KeyboardSettingsPanel::sigConfigUpdated);
        box->setCurrentIndex(box->currentIndex() == 0 ? 1 : 0);
        QCOMPARE(updates.size(), 1);
        QCOMPARE(gKelMovieConfig.playbackKeyboardFont.family(), box->currentText());
        QVERIFY(gKelMovieConfig.playbackKeyboardFont.bold());
        QVERIFY(m_io->saved.isEmpty()); // saving fonts is up to the host
    }

    void recordingNote()
    {
        AudioSettingsPanel panel;
        panel.show();
        QWidget *const close = control(panel, "Don't show this note again");
        QVERIFY(!close->isVisible());
        panel.setRecording(true);
        QVERIFY(close->isVisible());
        operate(close);
        QVERIFY(!close->isVisible());
        QCOMPARE(m_io->saved, (QMap<QString, QVariant>{{"KelMovie.record.dontShowRecordingWarning", true}}));
        panel.setRecording(false);
        panel.setRecording(true);
        QVERIFY(!close->isVisible());
    }

    void recordingWithoutSound()
    {
        const RecordingOnDisk recording;
        KelPlaybackDependencies dependencies = KelPlaybackDependencies::real();
        dependencies.decoders = scriptedDecoders(std::make_shared<DecoderScript>());
        auto manager = kel::PlaybackInternals::load(recording.path(), dependencies);
        AudioSettingsPanel panel;
        panel.setPlaybackManager(manager.get());
        for (const bool isLoaded : {true, false}) { // the panel outlives the recording
            if (!isLoaded)
                manager.reset();
            panel.hide();
            panel.show();
            const QStringList notes = shownTexts(panel, "Note");
            QVERIFY(notes.contains("This recording has no system audio."));
            QVERIFY(notes.contains("This recording has no microphone audio."));
        }
    }

    void levelMeterFallsSlowlyWithinItsRange()
    {
        kel::SoundLevelMeter meter;
        const auto shown = [&meter](float peak, int nowMs) {
            meter.setPeak(peak, nowMs);
            return meter.value();
        };
        QCOMPARE(shown(0.5F, 0), -6);
        QCOMPARE(shown(4, 100), 0);
        QCOMPARE(shown(0, 1100), -30);
        QCOMPARE(shown(0, 100000), -60);
        QCOMPARE(shown(0.1F, 100001), -20);
    }

private:
    std::optional<SavingConfigIO> m_io;
};

QTEST_MAIN(SettingsPanelsTest)
#include "tst_settings_panels.moc"
