#pragma once

#include <KelMovie/KelConfigIO.h>

#include <QHash>
#include <QObject>
#include <QSettings>

/// Keeps the settings of module and host in one file. What the file does not have or what makes no sense there keeps
/// its default; a file that cannot be read or written is told once, and the program goes on with what it has in memory.
/// GUI thread.
class DockConfigIO : public QObject, public KelConfigIO
{
    Q_OBJECT

public:
    explicit DockConfigIO(const QString &path = defaultPath());

    static QString defaultPath();

    /// What was wrong so far, for a person to read; empty when nothing was.
    QString problem() const { return m_problem; }

    /// Stores the bound fonts as they are now: the module changes them in its record alone.
    void saveFonts();

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
    /// The first problem since the start.
    void problemFound(const QString &problem);

private:
    template <typename T, typename Parse>
    void bind(const QString &key, T *field, QHash<QString, T *> *fields, Parse parse);
    template <typename T>
    void save(const QString &key, const T &value, const QString &text, const QHash<QString, T *> &fields);
    void keepUnreadableFile();
    void tell(const QString &problem);

    QSettings m_store;
    QString m_problem;
    QHash<QString, QFont *> m_fonts;
    QHash<QString, QString> m_savedFonts;
    QHash<QString, QString *> m_strings;
    QHash<QString, QColor *> m_colors;
    QHash<QString, bool *> m_bools;
    QHash<QString, int *> m_ints;
};
