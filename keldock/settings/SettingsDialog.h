#pragma once

#include <QDialog>

class DockConfigIO;
class QFormLayout;
class QLabel;
struct DockSettings;

/// The settings of the recorder. Each change is in force and saved at once. GUI thread.
class SettingsDialog : public QDialog
{
    Q_OBJECT

public:
    SettingsDialog(const DockSettings &settings, DockConfigIO &io, QWidget *parent = nullptr);

    /// Empty when all combinations work.
    void showShortcutProblems(const QString &problems);

    bool eventFilter(QObject *watched, QEvent *event) override;

signals:
    void changed();
    void folderChanged();
    void shortcutEditBegun();
    void shortcutEditEnded();

private:
    struct Texts {
        QString label; ///< with its mnemonic
        QString toolTip;
    };

    QWidget *createRecordingPage();
    QWidget *createSoundPage();
    QWidget *createProgramPage();
    QWidget *createShortcutsPage();
    QWidget *createFolderRow();
    void chooseFolder();
    void useFolder(const QString &folder);
    static QFormLayout *createForm(QWidget *page);
    static void addRow(QFormLayout *form, const Texts &texts, QWidget *control);
    void addSwitch(QFormLayout *form, const Texts &texts, const QString &key, bool value, bool isInverted = false);
    void addNumberChoice(QFormLayout *form, const Texts &texts, const QString &key,
                         const QVector<QPair<QString, int>> &choices, int value);
    void addShortcut(QFormLayout *form, const QString &label, const QString &key, const QString &value);

    const DockSettings &m_settings;
    DockConfigIO &m_io;
    QLabel *m_folder = nullptr;
    QLabel *m_shortcutProblems = nullptr;
};
