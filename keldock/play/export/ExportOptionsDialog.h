#pragma once

#include <QDialog>

class ChoiceBox;
class Player;
class QLayout;
class SaveQualityPanel;

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
    void updateEstimate();

    const Player &m_player;
    SaveQualityPanel *m_quality = nullptr;
    ChoiceBox *m_rates = nullptr;
    ChoiceBox *m_sizes = nullptr;
};
