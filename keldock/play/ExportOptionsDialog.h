#pragma once

#include <QDialog>

class Player;
class QComboBox;
class QLabel;
class SaveQualityPanel;

/// Asks how to export a recording: format, quality, frames a second; and tells what of it is exported.
class ExportOptionsDialog : public QDialog
{
    Q_OBJECT

public:
    explicit ExportOptionsDialog(const Player &player, QWidget *parent = nullptr);

    /// Frames a second of the file.
    int fps() const;

public slots:
    void accept() override;

private:
    void fillRates();

    const Player &m_player;
    QComboBox *m_rates = nullptr;
};
