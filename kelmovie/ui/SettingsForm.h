#pragma once

#include "ui/SavedSetting.h"

#include <QVector>
#include <QWidget>

#include <functional>
#include <vector>

class QAbstractButton;
class QGridLayout;
class QLabel;

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
    QAbstractButton *addSwitch(const Text &text, Setting<bool> setting);
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
    void addNumber(const Text &text, Setting<int> setting, const Range &range);
    /// A whole row.
    void addWidget(QWidget *widget);

    /// The rows that follow, up to the next heading, can be used while `master` is checked.
    void enableNextBy(QAbstractButton *master) { m_master = master; }

    /// Shows the settings as they are.
    void reload();

signals:
    /// A setting has changed, and was saved.
    void sigChanged();

protected:
    bool event(QEvent *event) override;

private:
    QLabel *addRow(const Text &text, QWidget *control);
    void place(const Text &text, QLabel *label, QWidget *control);
    void follow(QWidget *widget);
    void updateMetrics();
    template <typename T>
    void save(Setting<T> setting, const T &value);
    void tellUnsaved();

    QGridLayout *const m_grid;
    std::vector<std::function<void()>> m_loaders;
    QAbstractButton *m_master = nullptr;
    bool m_isLoading = false;
    bool m_isUnsavedTold = false;
};
