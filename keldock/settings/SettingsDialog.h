#pragma once

#include <QDialog>
#include <QPair>
#include <QVector>

class AudioSettingsPanel;
class DockConfigIO;
class QFormLayout;
class QLabel;
struct DockSettings;

/// The settings of the recorder. Changes take effect and are saved immediately. GUI thread.
class SettingsDialog : public QDialog
{
    Q_OBJECT

public:
    /// Both must outlive the dialog.
    SettingsDialog(const DockSettings &settings, DockConfigIO &io, QWidget *parent = nullptr);

    /// While recording, the settings of the sound apply to the next recording only, which the dialog says.
    void setRecording(bool recording);
    /// Shortcuts that do not work, one per line; empty if all work.
    void showShortcutProblems(const QString &problems);

    bool eventFilter(QObject *watched, QEvent *event) override;

signals:
    /// A setting has changed, other than the folder or a shortcut.
    void changed();
    void folderChanged();
    /// The user edits a shortcut: until the edit ends, the shortcuts must not trigger.
    void shortcutEditBegun();
    void shortcutEditEnded();

private:
    struct Texts {
        QString label; ///< with a mnemonic
        QString toolTip;
    };

    QWidget *createRecordingPage();
    QWidget *createSoundPage();
    QWidget *createGeneralPage();
    QWidget *createShortcutsPage();
    QWidget *createFolderRow();
    void chooseFolder();
    void useFolder(const QString &folder);
    static QFormLayout *createForm(QWidget *page);
    static void addRow(QFormLayout *form, const Texts &texts, QWidget *control);
    void addSwitch(QFormLayout *form, const Texts &texts, const QString &key, bool value);
    void addNumberChoice(QFormLayout *form, const Texts &texts, const QString &key,
                         const QVector<QPair<QString, int>> &choices, int value);
    void addShortcut(QFormLayout *form, const QString &label, const QString &key, const QString &value);

    const DockSettings &m_settings;
    DockConfigIO &m_io;
    AudioSettingsPanel *m_sound = nullptr;
    QLabel *m_folder = nullptr;
    QLabel *m_shortcutProblems = nullptr;
};
