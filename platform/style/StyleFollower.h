#pragma once

#include "style/KelStyleTheme.h"

#include <QObject>

namespace kel
{

/// Keeps one widget styled with a sheet while theme and screen change. A child of that widget.
class StyleFollower : public QObject
{
    Q_OBJECT

public:
    StyleFollower(QWidget *widget, const KelStyleParams &params, KelStyleTheme *theme);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    double scale() const;
    void apply();

    QWidget *const m_widget;
    KelStyleTheme *const m_theme;
    const double m_fixedScale;
    QString m_sheet;
    double m_appliedScale = 0;
};

} // namespace kel
