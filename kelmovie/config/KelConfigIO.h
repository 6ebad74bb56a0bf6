#pragma once

class QColor;
class QFont;
class QString;

/// The host's settings store, which the host implements. The module binds its fields once and saves through it; GUI
/// thread only.
///
/// A bind function loads the stored value into the field if the store has the key, leaves the field unchanged
/// otherwise, and remembers the field, which lives as long as the program. A save function stores the value and also
/// writes it into the bound field. A value that cannot be stored must not reach the field: the module recognizes the
/// failure by that.
class KelConfigIO
{
public:
    virtual ~KelConfigIO() = default;

    virtual void bindFont(const QString &key, QFont *field) = 0;           ///< binds a font
    virtual void bindString(const QString &key, QString *field) = 0;       ///< never called by the module
    virtual void bindColor(const QString &key, QColor *field) = 0;         ///< binds a color
    virtual void bindBool(const QString &key, bool *field) = 0;            ///< binds a switch
    virtual void bindInt(const QString &key, int *field) = 0;              ///< binds a number
    virtual void saveFont(const QString &key, const QFont &value) = 0;     ///< never called by the module
    virtual void saveString(const QString &key, const QString &value) = 0; ///< never called by the module
    virtual void saveColor(const QString &key, const QColor &value) = 0;   ///< saves a color
    virtual void saveBool(const QString &key, bool value) = 0;             ///< saves a switch
    virtual void saveInt(const QString &key, int value) = 0;               ///< saves a number
};
