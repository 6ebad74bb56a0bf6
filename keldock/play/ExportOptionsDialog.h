#pragma once

#include <QDialog>

class Player;
class QComboBox;
class QLayout;

/// Asks how to export a recording: format, quality, frames a second; and tells what of it is exported.
class ExportOptionsDialog : public QDialog
{
    Q_OBJECT

public:
    explicit ExportOptionsDialog(const Player &player, QWidget *parent = nullptr);

    /// Frames a second of the file.
    int fps() const;
    /// Pixels of the file; empty for as many as were recorded.
    QSize pictureSize() const;

public slots:
    void accept() override;

private:
    QLayout *createChoices();
    QLayout *createButtons();
    QString summary() const;

    const Player &m_player;
    QComboBox *m_rates = nullptr;
    QComboBox *m_sizes = nullptr;
};
