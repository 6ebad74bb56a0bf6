#pragma once

#include <QObject>
#include <QString>

#include <memory>

namespace kel
{

/// What a shortcut does, for desktops that ask or remember the user.
struct ShortcutPurpose {
    QString id;          ///< the same in every run
    QString description; ///< for the user

    bool operator==(const ShortcutPurpose &other) const { return id == other.id && description == other.description; }
};

/// Key combinations that reach this process regardless of which program has the focus; one implementation per kind of
/// desktop. A combination is encoded as in QKeySequence: a Qt::Key and its modifiers in one number. GUI thread.
class GlobalShortcutGrabber : public QObject
{
    Q_OBJECT

public:
    /// The implementation for this desktop. Never null.
    static std::unique_ptr<GlobalShortcutGrabber> create();

    /// Why this desktop offers no shortcuts, translated; empty if it does. May wait two seconds for its answer.
    virtual QString problem() = 0;

    /// Returns an empty string on success, otherwise a translated text that says why the combination is not available.
    virtual QString grab(int combination, const ShortcutPurpose &purpose) = 0;
    virtual void release(int combination) = 0;

    /// What the user has to press, as text: the desktop may choose another combination. Empty while there is nothing.
    virtual QString trigger(int combination) const;

signals:
    void pressed(int combination);

    /// What trigger() returns has changed. `error` is translated; empty if all combinations that were grabbed work.
    void triggersChanged(const QString &error);
};

} // namespace kel
