#include "widget/ScaleFactor.h"

#include <QWidget>

double scaleFactor(const QWidget *widget)
{
    return widget->logicalDpiX() / 96.0;
}
