#include "widgets/ScrollPage.h"

#include <QEvent>
#include <QScrollBar>

ScrollPage::ScrollPage(QWidget *content, QWidget *parent)
    : QScrollArea(parent)
{
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setFocusPolicy(Qt::NoFocus);
    setWidget(content); // QScrollArea filters the events of its content from now on
    // The window's background is seen.
    content->setAutoFillBackground(false);
    viewport()->setAutoFillBackground(false);
}

int ScrollPage::scrollBarWidth() const
{
    return verticalScrollBar()->sizeHint().width();
}

QSize ScrollPage::sizeHint() const
{
    return widget()->sizeHint() + QSize(scrollBarWidth(), 0);
}

QSize ScrollPage::minimumSizeHint() const
{
    return {widget()->minimumSizeHint().width() + scrollBarWidth(), QScrollArea::minimumSizeHint().height()};
}

bool ScrollPage::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == widget() && event->type() == QEvent::LayoutRequest)
        updateGeometry();
    return QScrollArea::eventFilter(watched, event);
}
