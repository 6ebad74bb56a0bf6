#pragma once

#include <QDialog>
#include <QSize>
#include <QVector>

class ChoiceBox;
class Player;
class QLayout;
class SaveQualityPanel;

/// Asks for format, quality, frame rate and size of an export, and shows which part of the recording is exported. GUI
/// thread.
class ExportOptionsDialog : public QDialog
{
    Q_OBJECT

public:
    /// `player` must outlive the dialog.
    explicit ExportOptionsDialog(const Player &player, QWidget *parent = nullptr);

    /// Frame rate of the exported file.
    int fps() const;
    /// Frame size of the exported file in pixels.
    QSize frameSize() const;

public slots:
    void accept() override;

private:
    QLayout *createChoices();
    QLayout *createButtons();
    QString summary() const;
    void updateEstimate();
    QVector<int> sizePercents() const;
    int logicalPercent() const;
    QSize frameSize(int percent) const;

    const Player &m_player;
    SaveQualityPanel *m_quality = nullptr;
    ChoiceBox *m_frameRate = nullptr;
    ChoiceBox *m_frameSize = nullptr;
};
