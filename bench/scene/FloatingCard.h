#pragma once

#include <QImage>
#include <QPainter>
#include <QPoint>
#include <QRect>
#include <QSize>

/// A small window that drifts over the others, with a clock, a progress bar and a chart.
class FloatingCard
{
public:
    FloatingCard(const QSize &sceneSize, const QSize &size);

    /// The area it covers at that frame, including its shadow.
    QRect extent(int frame) const;

    void paint(QPainter &painter, int frame) const;

private:
    QPoint position(int frame) const;
    void paintChart(QPainter &painter, const QRect &area, int frame) const;
    void paintProgress(QPainter &painter, const QRect &area, int frame) const;

    const QSize m_sceneSize;
    const QSize m_size;
    const QImage m_shadow;
};
