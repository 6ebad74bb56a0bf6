#pragma once

#include "ui/controls/Setting.h"

#include <QVector>
#include <QWidget>

#include <functional>
#include <vector>

class QGridLayout;
class QLabel;

namespace kel
{

/// The content of a settings panel: rows of a label and a control, each bound to one setting. Reads the settings
/// whenever it is shown and saves each change at once. GUI thread.
///
/// A label may have a mnemonic, which focuses its control. The tool tip is also the accessible description.
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
        std::function<QString(int)> text; ///< formats a value
        int step = 1;
    };

    /// Becomes the only content of `panel`.
    explicit SettingsForm(QWidget *panel);

    void addHeading(const QString &text);
    /// Starts the last section, which is about the next recording.
    void addRecordingHeading(const QString &text);
    /// Shows or hides that section. Shown initially.
    void setRecordingShown(bool shown);
    void addSwitch(const Text &text, Setting<bool> setting);
    void addSlider(const Text &text, Setting<int> setting, const Range &range);
    void addColor(const Text &text, Setting<QColor> setting);
    /// Changed in gKelMovieConfig only: the module saves no fonts.
    void addFont(const Text &text, QFont KelMovieConfig::*field);
    /// One of a few choices, side by side.
    void addChips(const Text &text, Setting<int> setting, const QVector<Choice> &choices);
    /// Any of a few choices, whose values are bits, in `columns` columns.
    void addBits(const Text &text, Setting<int> setting, const QVector<Choice> &choices, int columns);
    /// One of many choices, in a drop-down list.
    void addList(const Text &text, Setting<int> setting, const QVector<Choice> &choices);
    /// Adds a row that spans all columns; takes ownership.
    void addWidget(QWidget *widget);

    /// Rows added from now on, up to the next heading, are enabled only while `condition` holds; null: always.
    void enableNextWhile(const std::function<bool()> &condition) { m_condition = condition; }

    /// Changes and saves a setting on behalf of a widget of the panel.
    template <typename T>
    void change(Setting<T> setting, const T &value);

    /// Updates all controls from the settings.
    void reload();

signals:
    /// The user changed a setting, which is saved already.
    void sigChanged();

protected:
    bool event(QEvent *event) override;

private:
    QLabel *addRow(const Text &text, QWidget *control);
    void applyCondition(QWidget *widget);
    void updateEnabled();
    void updateMetrics();
    void warnUnsaved();

    QGridLayout *const m_grid;
    std::vector<std::function<void()>> m_loaders;
    struct ConditionalWidget {
        QWidget *widget;
        std::function<bool()> condition;
    };
    std::vector<ConditionalWidget> m_conditionalWidgets;
    std::function<bool()> m_condition;
    int m_recordingRow = -1;
    bool m_isLoading = false;
    bool m_hasWarnedUnsaved = false;
};

template <typename T>
void SettingsForm::change(Setting<T> setting, const T &value)
{
    if (m_isLoading || setting.value() == value)
        return;
    if (!setting.setValue(value))
        warnUnsaved();
    updateEnabled();
    emit sigChanged();
}

} // namespace kel
