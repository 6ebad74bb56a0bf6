#pragma once

class QColor;
class QFont;
class QString;

/// The host's settings store. The module binds its fields once and saves through it; GUI thread only.
///
/// A bind operation loads the stored value into the field when the store has the key, leaves the field alone
/// otherwise, and remembers the field. A save operation stores the value and writes it into the bound field as well.
class KelConfigIO
{
public:
    virtual ~KelConfigIO() = default;

    virtual void bindFont(const QString &key, QFont *field) = 0;
    virtual void bindString(const QString &key, QString *field) = 0; ///< never called by the module
    virtual void bindColor(const QString &key, QColor *field) = 0;
    virtual void bindBool(const QString &key, bool *field) = 0;
    virtual void bindInt(const QString &key, int *field) = 0;
    virtual void saveFont(const QString &key, const QFont &value) = 0;     ///< never called by the module
    virtual void saveString(const QString &key, const QString &value) = 0; ///< never called by the module
    virtual void saveColor(const QString &key, const QColor &value) = 0;
    virtual void saveBool(const QString &key, bool value) = 0;
    virtual void saveInt(const QString &key, int value) = 0;
};
