#pragma once

#include <QKeySequence>
#include <QObject>

#include <memory>

namespace kel
{

class GlobalShortcutGrabber;

/// A key combination that works regardless of which program has the focus. GUI thread; needs a QGuiApplication.
class GlobalShortcut : public QObject
{
    Q_OBJECT

public:
    explicit GlobalShortcut(QObject *parent = nullptr);
    ~GlobalShortcut() override;

    /// Replaces the combination by the first one of `keys`; an empty sequence removes it. False, with errorString(),
    /// when the combination is not available, for example because another program uses it; no combination is set then.
    bool setKeys(const QKeySequence &keys);
    QKeySequence keys() const { return m_keys; }
    QString errorString() const { return m_error; }

signals:
    /// The combination was pressed. Emitted once per press, however long the keys are held.
    void activated();

private:
    void release();

    std::shared_ptr<GlobalShortcutGrabber> m_grabber; // shared by all shortcuts of the process
    QKeySequence m_keys;
    QString m_error;
};

} // namespace kel
