#include "settings/SettingsDialog.h"

#include "library/RecordingsFolder.h"
#include "settings/DockConfigIO.h"
#include "settings/DockSettings.h"
#include "style/KelStyleTheme.h"

#include <KelMovie/KelMovieConfig.h>

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
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
    setWindowTitle(tr("Settings"));
    auto *const tabs = new QTabWidget(this);
    tabs->addTab(createRecordingPage(), tr("Recording"));
    tabs->addTab(createShortcutsPage(), tr("Shortcuts"));
    tabs->addTab(createProgramPage(), tr("Program"));
    auto *const buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::close);
    auto *const layout = new QVBoxLayout(this);
    layout->addWidget(tabs);
    layout->addWidget(buttons);
}

QWidget *SettingsDialog::createRecordingPage()
{
    auto *const page = new QWidget;
    auto *const form = new QFormLayout(page);
    form->addRow(tr("Recordings are kept in"), createFolderRow());
    QVector<QPair<QString, int>> rates;
    for (const int fps : {5, 16, 24, 60})
        rates.append({tr("%1 frames a second").arg(fps), fps});
    addNumberChoice(form, tr("Frame rate"), QStringLiteral("KelMovie.record.fps"), rates, gKelMovieConfig.recordFps);
    QVector<QPair<QString, int>> delays{{tr("At once"), 0}};
    for (const int seconds : {1, 2, 3, 5, 10})
        delays.append({tr("After %1 s").arg(seconds), seconds});
    addNumberChoice(form, tr("Start"), QStringLiteral("KelMovie.record.delay"), delays, gKelMovieConfig.recordDelay);
    addSwitch(form, tr("Record the mouse"), QStringLiteral("KelMovie.record.mouse"), gKelMovieConfig.recordMouse);
    addSwitch(form, tr("Record the keys that are typed"), QStringLiteral("KelMovie.record.keyboard"),
              gKelMovieConfig.recordKeyboard);
    addSwitch(form, tr("Ask before keys are recorded"), QStringLiteral("KelMovie.record.dontShowRecordingWarning"),
              !gKelMovieConfig.recordDontShowRecordingWarning, true);
    addSwitch(form, tr("Record what the computer plays"), QStringLiteral("KelMovie.record.recordSystemAudio"),
              gKelMovieConfig.recordRecordSystemAudio);
    addSwitch(form, tr("Record the microphone"), QStringLiteral("KelMovie.record.recordMicrophone"),
              gKelMovieConfig.recordRecordMicrophone);
    return page;
}

QWidget *SettingsDialog::createFolderRow()
{
    auto *const row = new QWidget;
    auto *const layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    m_folder = new QLabel(row);
    m_folder->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto *const choose = new QPushButton(tr("Change…"), row);
    auto *const reset = new QPushButton(tr("Default"), row);
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
    auto *const form = new QFormLayout(page);
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
    auto *const form = new QFormLayout(page);
    addNumberChoice(form, tr("Colours"), DockSettings::ThemeKey,
                    {{tr("As the desktop"), 0}, {tr("Light"), 1}, {tr("Dark"), 2}}, m_settings.theme);
    addNumberChoice(form, tr("Toolbar"), QStringLiteral("KelMovie.record.recordToolbarDisplayType"),
                    {{tr("All buttons"), 0}, {tr("The most important buttons"), 1}},
                    gKelMovieConfig.recordRecordToolbarDisplayType);
    auto *const language = new QComboBox(page);
    language->addItem(tr("As the desktop"), QString());
    language->addItem(QStringLiteral("English"), QStringLiteral("en"));
    language->addItem(QString::fromUtf8("简体中文"), QStringLiteral("zh_CN"));
    language->setCurrentIndex(qMax(0, language->findData(m_settings.language)));
    form->addRow(tr("Language"), language);
    auto *const restart = new QLabel(tr("Another language is used from the next start on."), page);
    restart->hide();
    form->addRow(QString(), restart);
    connect(language, QOverload<int>::of(&QComboBox::activated), this, [this, language, restart] {
        m_io.saveString(DockSettings::LanguageKey, language->currentData().toString());
        restart->show();
    });
    addSwitch(form, tr("Play recordings with the help of the graphics card"),
              QStringLiteral("KelMovie.record.enableHardwareAcceleration"),
              gKelMovieConfig.recordEnableHardwareAcceleration);
    return page;
}

void SettingsDialog::addSwitch(QFormLayout *form, const QString &text, const QString &key, bool value, bool isInverted)
{
    auto *const box = new QCheckBox(text);
    box->setChecked(value);
    form->addRow(QString(), box);
    connect(box, &QCheckBox::toggled, this, [this, key, isInverted](bool isOn) {
        m_io.saveBool(key, isOn != isInverted);
        emit changed();
    });
}

QComboBox *SettingsDialog::addNumberChoice(QFormLayout *form, const QString &label, const QString &key,
                                           const QVector<QPair<QString, int>> &choices, int value)
{
    auto *const box = new QComboBox;
    for (const auto &choice : choices)
        box->addItem(choice.first, choice.second);
    if (box->findData(value) < 0)
        box->addItem(QString::number(value), value); // set by hand in the file
    box->setCurrentIndex(box->findData(value));
    form->addRow(label, box);
    connect(box, QOverload<int>::of(&QComboBox::activated), this, [this, key, box] {
        m_io.saveInt(key, box->currentData().toInt());
        emit changed();
    });
    return box;
}

void SettingsDialog::addShortcut(QFormLayout *form, const QString &label, const QString &key, const QString &value)
{
    auto *const edit = new QKeySequenceEdit(QKeySequence(value, QKeySequence::PortableText));
    edit->setAccessibleName(label);
    edit->installEventFilter(this);
    auto *const clear = new QPushButton(tr("None"));
    clear->setAccessibleName(tr("%1: no shortcut").arg(label));
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
