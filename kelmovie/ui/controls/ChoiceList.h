#pragma once

#include <QListWidget>

namespace kel
{

/// A short list in a floating panel: one click, or Enter on a row, chooses. As large as its rows.
class ChoiceList : public QListWidget
{
    Q_OBJECT

public:
    explicit ChoiceList(QWidget *parent = nullptr);

    void addChoice(const QString &text, const QVariant &value);
    /// Makes the row with this value the current one; none when there is no such row.
    void setCurrentValue(const QVariant &value);
    /// Restyles for the screen, where sca(1) is `scale`, and takes the size that the rows need.
    void fit(double scale);

signals:
    void sigChosen(const QVariant &value);

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    void choose(const QListWidgetItem *item);
};

} // namespace kel
