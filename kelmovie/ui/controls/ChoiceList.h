#pragma once

#include <QListWidget>

namespace kel
{

/// A short list of choices for a floating panel, always large enough to show all rows. A click on a row, or Enter or
/// Space on the selected one, chooses it.
class ChoiceList : public QListWidget
{
    Q_OBJECT

public:
    explicit ChoiceList(QWidget *parent = nullptr);

    /// Appends a row; `value` is kept as its Qt::UserRole data.
    void addChoice(const QString &text, const QVariant &value);
    /// Selects the row with this value, or none if there is no such row.
    void setCurrentValue(const QVariant &value);
    /// Restyles the list for a screen of this scale factor and resizes it to its rows.
    void fit(double scale);

signals:
    void sigChosen(const QVariant &value);

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    void choose(const QListWidgetItem *item);
};

} // namespace kel
