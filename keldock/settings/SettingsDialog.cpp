#include "settings/SettingsDialog.h"

#include "library/RecordingsFolder.h"
#include "settings/DockConfigIO.h"
#include "settings/DockSettings.h"
#include "style/KelStyleTheme.h"
#include "widget/ChoiceBox.h"
#include "widget/ToggleSwitch.h"
#include "widgets/DockStyle.h"

#include <KelMovie/AudioSettingsPanel.h>
#include <KelMovie/KelMovieConfig.h>
#include <KelMovie/KelMovieConfigKeys.h>

#include <QDir>
#include <QEvent>
#include <QFileDialog>
#include <QFormLayout>
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
    tabs->addTab(createRecordingPage(), tr("Recording"));
    tabs->addTab(createSoundPage(), tr("Sound"));
    tabs->addTab(createShortcutsPage(), tr("Shortcuts"));
    tabs->addTab(createProgramPage(), tr("Program"));
    auto *const close = new QPushButton(tr("&Close"), this);
    close->setToolTip(tr("Everything is saved already (Esc)"));
    connect(close, &QPushButton::clicked, this, &QDialog::close);
    auto *const layout = new QVBoxLayout(this);
    layout->addWidget(tabs);
    layout->addWidget(close, 0, Qt::AlignRight);
}

QWidget *SettingsDialog::createRecordingPage()
{
    auto *const page = new QWidget;
    QFormLayout *const form = createForm(page);
    form->addRow(tr("Recordings are kept in"), createFolderRow());
    QVector<QPair<QString, int>> rates;
    for (const int fps : {5, 16, 24, 60})
        rates.append({tr("%1 frames a second").arg(fps), fps});
    addNumberChoice(form, {tr("&Frame rate"), tr("More frames show motion better and need more room")},
                    KelMovieConfigKeys::kRecordFps, rates, gKelMovieConfig.recordFps);
    QVector<QPair<QString, int>> delays{{tr("At once"), 0}};
    for (const int seconds : {1, 2, 3, 5, 10})
        delays.append({tr("After %1 s").arg(seconds), seconds});
    addNumberChoice(form, {tr("&Start"), tr("Time to get ready after the record button")},
                    KelMovieConfigKeys::kRecordDelay, delays, gKelMovieConfig.recordDelay);
    addSwitch(form, {tr("Record the &mouse"), tr("Pointer, clicks and wheel, which can be hidden again later")},
              KelMovieConfigKeys::kRecordMouse, gKelMovieConfig.recordMouse);
    addSwitch(form, {tr("Record the &keys that are typed"), tr("In whichever program; passwords, too")},
              KelMovieConfigKeys::kRecordKeyboard, gKelMovieConfig.recordKeyboard);
    addSwitch(form, {tr("&Ask before keys are recorded"), tr("At the start of each recording with keys")},
              KelMovieConfigKeys::kRecordDontShowRecordingWarning, !gKelMovieConfig.recordDontShowRecordingWarning,
              true);
    return page;
}

/// Its meters show before a recording whether anything will be heard.
QWidget *SettingsDialog::createSoundPage()
{
    auto *const page = new QWidget;
    auto *const panel = new AudioSettingsPanel(page);
    auto *const layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(panel);
    layout->addStretch();
    connect(panel, &AudioSettingsPanel::sigConfigUpdated, this, &SettingsDialog::changed);
    return page;
}

QWidget *SettingsDialog::createFolderRow()
{
    auto *const row = new QWidget;
    auto *const layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    m_folder = new QLabel(row);
    m_folder->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto *const choose = new QPushButton(tr("C&hange..."), row);
    choose->setToolTip(tr("Chooses another folder for recordings"));
    auto *const reset = new QPushButton(tr("&Default"), row);
    reset->setToolTip(tr("Keeps recordings among your videos"));
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
    const QString folder = QFileDialog::getExistingDirectory(this, tr("Folder for recordings"),
                                                             RecordingsFolder(m_settings.recordingsFolder).root());
    if (!folder.isEmpty())
        useFolder(folder);
}

void SettingsDialog::useFolder(const QString &folder)
{
    m_io.saveString(DockSettings::RecordingsFolderKey, folder);
    m_folder->setText(QDir::toNativeSeparators(RecordingsFolder(m_settings.recordingsFolder).root()));
    emit folderChanged();
}

QWidget *SettingsDialog::createShortcutsPage()
{
    auto *const page = new QWidget;
    QFormLayout *const form = createForm(page);
    auto *const note = new QLabel(tr("They work whichever program is in use."), page);
    form->addRow(note);
    addShortcut(form, tr("Record"), DockSettings::RecordKeysKey, m_settings.recordKeys);
    addShortcut(form, tr("Pause and resume"), DockSettings::PauseKeysKey, m_settings.pauseKeys);
    addShortcut(form, tr("Stop"), DockSettings::StopKeysKey, m_settings.stopKeys);
    m_shortcutProblems = new QLabel(page);
    m_shortcutProblems->setWordWrap(true);
    form->addRow(m_shortcutProblems);
    return page;
}

QWidget *SettingsDialog::createProgramPage()
{
    auto *const page = new QWidget;
    QFormLayout *const form = createForm(page);
    addNumberChoice(form, {tr("&Theme"), tr("Colors of the windows")}, DockSettings::ThemeKey,
                    {{tr("As the desktop"), 0}, {tr("Light"), 1}, {tr("Dark"), 2}}, m_settings.theme);
    addNumberChoice(form, {tr("T&oolbar"), tr("Buttons that the toolbar shows")},
                    KelMovieConfigKeys::kRecordRecordToolbarDisplayType,
                    {{tr("All buttons"), 0}, {tr("The most important buttons"), 1}},
                    gKelMovieConfig.recordRecordToolbarDisplayType);
    auto *const language = new ChoiceBox(page);
    language->setToolTip(tr("Language of this program"));
    language->addItem(tr("As the desktop"), QString());
    language->addItem(QStringLiteral("English"), QStringLiteral("en"));
    language->addItem(QString::fromUtf8("简体中文"), QStringLiteral("zh_CN"));
    language->setCurrentIndex(qMax(0, language->findData(m_settings.language)));
    form->addRow(tr("&Language"), language);
    auto *const restart = new QLabel(tr("Another language is used from the next start on."), page);
    restart->hide();
    form->addRow(QString(), restart);
    connect(language, QOverload<int>::of(&QComboBox::activated), this, [this, language, restart] {
        m_io.saveString(DockSettings::LanguageKey, language->currentData().toString());
        restart->show();
    });
    addSwitch(
        form,
        {tr("Play with the &graphics card"), tr("Recordings are decoded by the graphics card where it is able to")},
        KelMovieConfigKeys::kRecordEnableHardwareAcceleration, gKelMovieConfig.recordEnableHardwareAcceleration);
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

void SettingsDialog::addSwitch(QFormLayout *form, const Texts &texts, const QString &key, bool value, bool isInverted)
{
    auto *const box = new ToggleSwitch;
    box->setChecked(value);
    addRow(form, texts, box);
    connect(box, &QCheckBox::toggled, this, [this, key, isInverted](bool isOn) {
        m_io.saveBool(key, isOn != isInverted);
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
        box->addItem(QString::number(value), value); // set by hand in the file
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
    edit->setToolTip(tr("Press the keys that shall do it"));
    edit->installEventFilter(this);
    auto *const clear = new QPushButton(tr("None"));
    clear->setAccessibleName(tr("%1: no shortcut").arg(label));
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
