#pragma once

#include <QKeySequence>
#include <QObject>

#include <memory>

namespace kel
{

class GlobalShortcutGrabber;

/// A key combination that works whichever program has the focus. GUI thread; needs a QGuiApplication.
class GlobalShortcut : public QObject
{
    Q_OBJECT

public:
    explicit GlobalShortcut(QObject *parent = nullptr);
    ~GlobalShortcut() override;

    /// Takes the first combination of `keys` in place of the one before; none when it is empty. False, with
    /// errorString(), when that cannot be had, because another program has it for instance: there is none then.
    bool setKeys(const QKeySequence &keys);
    QKeySequence keys() const { return m_keys; }
    QString errorString() const { return m_error; }

signals:
    /// Pressed; once for each press, however long it is held.
    void activated();

private:
    void drop();

    std::shared_ptr<GlobalShortcutGrabber> m_grabber; // one for all shortcuts of the process, while there are any
    QKeySequence m_keys;
    QString m_error;
};

} // namespace kel
