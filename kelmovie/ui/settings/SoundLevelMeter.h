#pragma once

#include <QProgressBar>

namespace kel
{

/// A peak meter in decibels below full scale. Decays slowly and marks the highest recent peak.
class SoundLevelMeter : public QProgressBar
{
    Q_OBJECT

public:
    static constexpr int kLowestDb = -60;

    explicit SoundLevelMeter(QWidget *parent = nullptr);

    /// The peak since the last call, 1.0 being full scale, at the time `nowMs` of a monotonic clock.
    void setPeak(float peak, qint64 nowMs);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    double m_db = kLowestDb;
    double m_heldDb = kLowestDb;
    qint64 m_heldAtMs = 0;
    qint64 m_updatedAtMs = 0;
};

} // namespace kel
