#pragma once

#include "keymouse/GlobalShortcutGrabber.h"

#include <QAbstractNativeEventFilter>
#include <QHash>

namespace kel
{

/// Registers hot keys, whose messages are posted to the GUI thread.
class WindowsShortcutGrabber final : public GlobalShortcutGrabber, public QAbstractNativeEventFilter
{
    Q_OBJECT

public:
    WindowsShortcutGrabber();
    ~WindowsShortcutGrabber() override;

    QString problem() override { return {}; }
    QString grab(int combination, const ShortcutPurpose &purpose) override;
    void release(int combination) override;

    bool nativeEventFilter(const QByteArray &type, void *message, long *result) override;

private:
    QHash<int, int> m_combinations; // by hot key identifier
    int m_lastId = 0;
};

} // namespace kel
