#pragma once

#include <QApplication>
#include <QTimer>

#include <functional>

/// Answers a modal dialog: as soon as the active one is a Dialog that satisfies `isDue`, runs `action` on it once,
/// inside its event loop.
template <typename Dialog>
void whenModal(
    const std::function<void(Dialog *)> &action,
    const std::function<bool(Dialog *)> &isDue = [](Dialog *) { return true; })
{
    auto *const timer = new QTimer(qApp);
    QObject::connect(timer, &QTimer::timeout, timer, [=] {
        auto *const dialog = qobject_cast<Dialog *>(QApplication::activeModalWidget());
        if (!dialog || !isDue(dialog))
            return;
        timer->deleteLater();
        timer->stop();
        action(dialog);
    });
    timer->start(5);
}
