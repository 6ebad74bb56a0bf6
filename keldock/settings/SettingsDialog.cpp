#include "settings/SettingsDialog.h"

#include "library/RecordingsFolder.h"
#include "settings/DockConfigIO.h"
#include "settings/DockSettings.h"
#include "style/KelStyleTheme.h"
#include "widget/ChoiceBox.h"
#include "widget/ToggleSwitch.h"
#include "widgets/DockStyle.h"
#include "widgets/ScrollPage.h"

#include <KelMovie/AudioSettingsPanel.h>
#include <KelMovie/KelMovieConfig.h>
#include <KelMovie/KelMovieConfigKeys.h>

#include <QDir>
#include <QEvent>
#include <QFileDialog>
#include <QFormLayout>
#include <QGuiApplication>
#include <QKeySequenceEdit>
#include <QLabel>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>

SettingsDialog::SettingsDialog(const DockSettings &settings, DockConfigIO &io, QWidget *parent)
    : QDialog(parent)
    , m_settings(settings)
    , m_io(io)
{
    setObjectName(QStringLiteral("SettingsDialog"));
    setWindowTitle(tr("Settings"));
    applyDockStyle(this, QStringLiteral("Window"));
    auto *const tabs = new QTabWidget(this);
    tabs->addTab(new ScrollPage(createRecordingPage()), tr("Recording"));
    tabs->addTab(new ScrollPage(createSoundPage()), tr("Sound"));
    tabs->addTab(new ScrollPage(createShortcutsPage()), tr("Shortcuts"));
    tabs->addTab(new ScrollPage(createGeneralPage()), tr("General"));
    auto *const close = new QPushButton(tr("&Close"), this);
    close->setToolTip(tr("Changes are saved automatically (Esc)"));
    connect(close, &QPushButton::clicked, this, &QDialog::close);
    auto *const layout = new QVBoxLayout(this);
    layout->addWidget(tabs);
    layout->addWidget(close, 0, Qt::AlignRight);
}

QWidget *SettingsDialog::createRecordingPage()
{
    auto *const page = new QWidget;
    QFormLayout *const form = createForm(page);
    form->addRow(tr("Save recordings in"), createFolderRow());
    QVector<QPair<QString, int>> rates;
    for (const int fps : {5, 16, 24, 30, 60})
        rates.append({tr("%1 fps").arg(fps), fps});
    addNumberChoice(form, {tr("&Frame rate"), tr("A higher frame rate shows motion better and takes more disk space")},
                    KelMovieConfigKeys::kRecordFps, rates, gKelMovieConfig.recordFps);
    QVector<QPair<QString, int>> delays{{tr("Immediately"), 0}};
    for (const int seconds : {1, 2, 3, 5, 10})
        delays.append({tr("After %n second(s)", nullptr, seconds), seconds});
    addNumberChoice(form, {tr("&Start"), tr("Delay after you press the record button")},
                    KelMovieConfigKeys::kRecordDelay, delays, gKelMovieConfig.recordDelay);
    addSwitch(form, {tr("Record the &mouse"), tr("Pointer, clicks and wheel; you can hide them later")},
              KelMovieConfigKeys::kRecordMouse, gKelMovieConfig.recordMouse);
    addSwitch(form, {tr("Record &keystrokes"), tr("In every program, including passwords")},
              KelMovieConfigKeys::kRecordKeyboard, gKelMovieConfig.recordKeyboard);
    addSwitch(form, {tr("&Ask before recording keystrokes"), tr("At the start of each recording")},
              DockSettings::kAsksBeforeRecordingKeysKey, m_settings.asksBeforeRecordingKeys);
    if (QGuiApplication::platformName().startsWith(QLatin1String("wayland")))
        addSwitch(form,
                  {tr("&Read clicks and keys from the devices"),
                   tr("Wayland shows them to no program. Your user must be in the group \"input\".")},
                  DockSettings::kReadsInputDevicesKey, m_settings.readsInputDevices);
    return page;
}

/// The level meters show before a recording whether sound arrives.
QWidget *SettingsDialog::createSoundPage()
{
    m_sound = new AudioSettingsPanel;
    connect(m_sound, &AudioSettingsPanel::sigConfigUpdated, this, &SettingsDialog::changed);
    return m_sound;
}

QWidget *SettingsDialog::createFolderRow()
{
    auto *const row = new QWidget;
    auto *const layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    m_folder = new QLabel(row);
    m_folder->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto *const choose = new QPushButton(tr("C&hange..."), row);
    choose->setToolTip(tr("Choose another folder for recordings"));
    auto *const reset = new QPushButton(tr("&Default"), row);
    reset->setToolTip(tr("Save recordings in your videos folder"));
    layout->addWidget(m_folder, 1);
    layout->addWidget(choose);
    layout->addWidget(reset);
    connect(choose, &QPushButton::clicked, this, &SettingsDialog::chooseFolder);
    connect(reset, &QPushButton::clicked, this, [this] { useFolder(QString()); });
    m_folder->setText(QDir::toNativeSeparators(RecordingsFolder(m_settings.recordingsFolder).root()));
    return row;
}

void SettingsDialog::chooseFolder()
{
    const QString folder = QFileDialog::getExistingDirectory(this, tr("Choose Folder for Recordings"),
                                                             RecordingsFolder(m_settings.recordingsFolder).root());
    if (!folder.isEmpty())
        useFolder(folder);
}

void SettingsDialog::useFolder(const QString &folder)
{
    m_io.saveString(DockSettings::kRecordingsFolderKey, folder);
    m_folder->setText(QDir::toNativeSeparators(RecordingsFolder(m_settings.recordingsFolder).root()));
    emit folderChanged();
}

QWidget *SettingsDialog::createShortcutsPage()
{
    auto *const page = new QWidget;
    QFormLayout *const form = createForm(page);
    auto *const note = new QLabel(tr("These shortcuts work in every program."), page);
    form->addRow(note);
    addShortcut(form, tr("Record"), DockSettings::kRecordKeysKey, m_settings.recordKeys);
    addShortcut(form, tr("Pause and resume"), DockSettings::kPauseKeysKey, m_settings.pauseKeys);
    addShortcut(form, tr("Stop"), DockSettings::kStopKeysKey, m_settings.stopKeys);
    m_shortcutProblems = new QLabel(page);
    m_shortcutProblems->setWordWrap(true);
    form->addRow(m_shortcutProblems);
    return page;
}

QWidget *SettingsDialog::createGeneralPage()
{
    auto *const page = new QWidget;
    QFormLayout *const form = createForm(page);
    addNumberChoice(form, {tr("&Theme"), tr("Colors of the windows")}, DockSettings::kThemeKey,
                    {{tr("Same as desktop"), 0}, {tr("Light"), 1}, {tr("Dark"), 2}}, m_settings.theme);
    addNumberChoice(
        form, {tr("T&oolbar"), tr("Buttons on the toolbar")}, KelMovieConfigKeys::kRecordRecordToolbarDisplayType,
        {{tr("All buttons"), 0}, {tr("Essential buttons only"), 1}}, gKelMovieConfig.recordRecordToolbarDisplayType);
    auto *const language = new ChoiceBox(page);
    language->setToolTip(tr("Language of the user interface"));
    language->addItem(tr("Same as desktop"), QString());
    language->addItem(QStringLiteral("English"), QStringLiteral("en"));
    language->addItem(QStringLiteral("简体中文"), QStringLiteral("zh_CN"));
    language->setCurrentIndex(qMax(0, language->findData(m_settings.language)));
    form->addRow(tr("&Language"), language);
    auto *const restart = new QLabel(tr("Restart the program to change the language."), page);
    restart->hide();
    form->addRow(QString(), restart);
    connect(language, QOverload<int>::of(&QComboBox::activated), this, [this, language, restart] {
        m_io.saveString(DockSettings::kLanguageKey, language->currentData().toString());
        restart->show();
    });
    return page;
}

QFormLayout *SettingsDialog::createForm(QWidget *page)
{
    auto *const form = new QFormLayout(page);
    form->setContentsMargins(16, 16, 16, 16);
    form->setHorizontalSpacing(24);
    form->setVerticalSpacing(10);
    form->setFieldGrowthPolicy(QFormLayout::FieldsStayAtSizeHint);
    form->setFormAlignment(Qt::AlignLeft | Qt::AlignTop);
    return form;
}

void SettingsDialog::addRow(QFormLayout *form, const Texts &texts, QWidget *control)
{
    control->setToolTip(texts.toolTip);
    form->addRow(texts.label, control);
}

void SettingsDialog::addSwitch(QFormLayout *form, const Texts &texts, const QString &key, bool value)
{
    auto *const box = new ToggleSwitch;
    box->setChecked(value);
    addRow(form, texts, box);
    connect(box, &QCheckBox::toggled, this, [this, key](bool isOn) {
        m_io.saveBool(key, isOn);
        emit changed();
    });
}

void SettingsDialog::addNumberChoice(QFormLayout *form, const Texts &texts, const QString &key,
                                     const QVector<QPair<QString, int>> &choices, int value)
{
    auto *const box = new ChoiceBox;
    for (const auto &choice : choices)
        box->addItem(choice.first, choice.second);
    if (box->findData(value) < 0)
        box->addItem(QString::number(value), value); // edited in the settings file
    box->setCurrentIndex(box->findData(value));
    addRow(form, texts, box);
    connect(box, QOverload<int>::of(&QComboBox::activated), this, [this, key, box] {
        m_io.saveInt(key, box->currentData().toInt());
        emit changed();
    });
}

void SettingsDialog::addShortcut(QFormLayout *form, const QString &label, const QString &key, const QString &value)
{
    auto *const edit = new QKeySequenceEdit(QKeySequence(value, QKeySequence::PortableText));
    edit->setAccessibleName(label);
    edit->setToolTip(tr("Press the new shortcut"));
    edit->installEventFilter(this);
    auto *const clear = new QPushButton(tr("None"));
    clear->setAccessibleName(tr("Remove shortcut: %1").arg(label));
    clear->setToolTip(clear->accessibleName());
    auto *const row = new QHBoxLayout;
    row->addWidget(edit, 1);
    row->addWidget(clear);
    form->addRow(label, row);
    connect(edit, &QKeySequenceEdit::editingFinished, this, [this, edit, key] {
        const QKeySequence first = edit->keySequence().isEmpty() ? QKeySequence() : edit->keySequence()[0];
        edit->setKeySequence(first);
        m_io.saveString(key, first.toString(QKeySequence::PortableText));
        emit shortcutEditEnded();
    });
    connect(clear, &QPushButton::clicked, this, [this, edit, key] {
        edit->clear();
        m_io.saveString(key, QString());
        emit shortcutEditEnded();
    });
}

void SettingsDialog::setRecording(bool recording)
{
    m_sound->setRecording(recording);
}

void SettingsDialog::showShortcutProblems(const QString &problems)
{
    m_shortcutProblems->setStyleSheet(
        QStringLiteral("color: %1").arg(KelStyleTheme::instance()->color(QStringLiteral("ColorDanger")).name()));
    m_shortcutProblems->setText(problems);
}

bool SettingsDialog::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::FocusIn)
        emit shortcutEditBegun();
    else if (event->type() == QEvent::FocusOut)
        emit shortcutEditEnded();
    return QDialog::eventFilter(watched, event);
}
