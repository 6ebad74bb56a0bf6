#pragma once

#include "ui/controls/SavedSetting.h"

#include <QVector>
#include <QWidget>

#include <functional>
#include <vector>

class QGridLayout;
class QLabel;

namespace kel
{

/// The content of a settings panel: rows of a text and a control, each bound to one setting. Shows the settings as they
/// are whenever it appears; what the user changes is saved at once. GUI thread.
///
/// A text may have a mnemonic, which leads to its control; the tool tip is also what assistive programs read out.
class SettingsForm : public QWidget
{
    Q_OBJECT

public:
    struct Text {
        QString label;
        QString toolTip;
    };
    struct Choice {
        QString name;
        int value;
        QString toolTip;
    };
    struct Range {
        int minimum;
        int maximum;
        std::function<QString(int)> text; ///< of a value
        int step = 1;
    };

    /// Becomes the only content of `panel`.
    explicit SettingsForm(QWidget *panel);

    void addHeading(const QString &text);
    /// Above the last rows, which are about the next recording.
    void addRecordingHeading(const QString &text);
    /// Whether these rows are there, as they are at first.
    void setRecordingShown(bool shown);
    void addSwitch(const Text &text, Setting<bool> setting);
    void addSlider(const Text &text, Setting<int> setting, const Range &range);
    void addColor(const Text &text, Setting<QColor> setting);
    /// Changed in the record alone: the module saves no fonts.
    void addFont(const Text &text, QFont KelMovieConfig::*field);
    /// One of a few, side by side.
    void addChips(const Text &text, Setting<int> setting, const QVector<Choice> &choices);
    /// Any of a few; the values are bits. `columns` side by side.
    void addBits(const Text &text, Setting<int> setting, const QVector<Choice> &choices, int columns);
    /// One of many, in a list that opens.
    void addList(const Text &text, Setting<int> setting, const QVector<Choice> &choices);
    /// A whole row.
    void addWidget(QWidget *widget);

    /// The rows that follow, up to the next heading, can be used while the settings are so.
    void enableNextWhile(const std::function<bool()> &condition) { m_condition = condition; }

    /// Changes and saves a setting that a widget of the panel's own shows.
    template <typename T>
    void change(Setting<T> setting, const T &value);

    /// Shows the settings as they are.
    void reload();

signals:
    /// A setting has changed, and was saved.
    void sigChanged();

protected:
    bool event(QEvent *event) override;

private:
    QLabel *addRow(const Text &text, QWidget *control);
    void follow(QWidget *widget);
    void updateEnabled();
    void updateMetrics();
    void tellUnsaved();

    QGridLayout *const m_grid;
    std::vector<std::function<void()>> m_loaders;
    struct Follower {
        QWidget *widget;
        std::function<bool()> condition;
    };
    std::vector<Follower> m_followers;
    std::function<bool()> m_condition;
    int m_recordingRow = -1;
    bool m_isLoading = false;
    bool m_isUnsavedTold = false;
};

template <typename T>
void SettingsForm::change(Setting<T> setting, const T &value)
{
    if (m_isLoading || setting.value() == value)
        return;
    T &field = gKelMovieConfig.*setting.field;
    if (!setting.key)
        field = value;
    else if (!saveSetting(QString::fromLatin1(setting.key), &field, value))
        tellUnsaved();
    updateEnabled();
    emit sigChanged();
}

} // namespace kel
