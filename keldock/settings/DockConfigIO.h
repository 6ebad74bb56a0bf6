#pragma once

#include <KelMovie/KelConfigIO.h>

#include <QHash>
#include <QObject>
#include <QSettings>

/// Stores the settings of module and host in one file. Missing and invalid values keep their defaults. If the file
/// cannot be read or written, this is reported once, and the settings are kept in memory. GUI thread.
class DockConfigIO : public QObject, public KelConfigIO
{
    Q_OBJECT

public:
    explicit DockConfigIO(const QString &path = defaultPath());

    static QString defaultPath();

    /// The first problem since the start, for the user; empty if there was none.
    QString problem() const { return m_problem; }

    /// Saves bound fields that were changed without saving, as the module does with fonts and with fields that have no
    /// key of its own.
    void saveChanges();

    void bindFont(const QString &key, QFont *field) override;
    void bindString(const QString &key, QString *field) override;
    void bindColor(const QString &key, QColor *field) override;
    void bindBool(const QString &key, bool *field) override;
    void bindInt(const QString &key, int *field) override;
    void saveFont(const QString &key, const QFont &value) override;
    void saveString(const QString &key, const QString &value) override;
    void saveColor(const QString &key, const QColor &value) override;
    void saveBool(const QString &key, bool value) override;
    void saveInt(const QString &key, int value) override;

signals:
    /// Emitted for the first problem only.
    void problemFound(const QString &problem);

private:
    template <typename T, typename Parse>
    void bind(const QString &key, T *field, QHash<QString, T *> *fields, Parse parse);
    template <typename T>
    void save(const QString &key, const T &value, const QHash<QString, T *> &fields);
    template <typename T>
    void saveChanges(const QHash<QString, T *> &fields);
    void backUpDamagedFile();
    void report(const QString &problem);

    QSettings m_store;
    QString m_problem;
    QHash<QString, QString> m_saved; // what the file has, or would have if it had the key
    QHash<QString, QFont *> m_fonts;
    QHash<QString, QString *> m_strings;
    QHash<QString, QColor *> m_colors;
    QHash<QString, bool *> m_bools;
    QHash<QString, int *> m_ints;
};
