#pragma once

#include <QProgressBar>

namespace kel
{

/// How loud it is, in decibels below full scale. Falls slowly, and marks the loudest moment of the last seconds.
class SoundLevelMeter : public QProgressBar
{
    Q_OBJECT

public:
    static constexpr int kLowestDb = -60;

    explicit SoundLevelMeter(QWidget *parent = nullptr);

    /// The loudest moment since the last call, at `nowMs`; 1.0 is full scale.
    void setPeak(float peak, qint64 nowMs);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    double m_db = kLowestDb;
    double m_heldDb = kLowestDb;
    qint64 m_heldAtMs = 0;
    qint64 m_shownAtMs = 0;
};

} // namespace kel
