#include "settings/DockConfigIO.h"

#include <QColor>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QFont>
#include <QStandardPaths>

namespace
{

QString textOf(const QFont &value)
{
    return value.toString();
}

QString textOf(const QString &value)
{
    return value;
}

QString textOf(const QColor &value)
{
    return value.name(QColor::HexArgb);
}

QString textOf(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

QString textOf(int value)
{
    return QString::number(value);
}

} // namespace

DockConfigIO::DockConfigIO(const QString &path)
    : m_store(path, QSettings::IniFormat)
{
    m_store.setFallbacksEnabled(false);
    m_store.allKeys(); // forces the whole file to be parsed, which QSettings otherwise puts off
    if (m_store.status() == QSettings::FormatError)
        backUpDamagedFile();
    else if (m_store.status() == QSettings::AccessError || (QFile::exists(path) && !QFileInfo(path).isReadable()))
        report(
            tr("The settings cannot be read from \"%1\". The defaults are used.").arg(QDir::toNativeSeparators(path)));
}

QString DockConfigIO::defaultPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QLatin1String("/KelMovie/keldock.ini");
}

/// The next save replaces the file, which the user may have edited.
void DockConfigIO::backUpDamagedFile()
{
    const QString path = m_store.fileName();
    const QString copy = path + QLatin1String(".damaged");
    QFile::remove(copy);
    const bool isKept = QFile::copy(path, copy);
    report(
        isKept
            ? tr("The settings file is damaged. Defaults are used for settings that cannot be read. The damaged file "
                 "was saved as \"%1\".")
                  .arg(QDir::toNativeSeparators(copy))
            : tr("The settings file \"%1\" is damaged. Defaults are used for settings that cannot be read.")
                  .arg(QDir::toNativeSeparators(path)));
}

void DockConfigIO::report(const QString &problem)
{
    qWarning("[DockConfigIO] %s", qUtf8Printable(problem));
    if (!m_problem.isEmpty())
        return;
    m_problem = problem;
    emit problemFound(problem);
}

template <typename T, typename Parse>
void DockConfigIO::bind(const QString &key, T *field, QHash<QString, T *> *fields, Parse parse)
{
    fields->insert(key, field);
    if (m_store.contains(key)) {
        bool isValid = true;
        const T value = parse(m_store.value(key).toString(), &isValid);
        if (isValid)
            *field = value;
        else
            report(tr("The setting \"%1\" is invalid. The default is used.").arg(key));
    }
    m_saved.insert(key, textOf(*field));
}

template <typename T>
void DockConfigIO::save(const QString &key, const T &value, const QHash<QString, T *> &fields)
{
    if (T *const field = fields.value(key))
        *field = value;
    m_saved.insert(key, textOf(value));
    m_store.setValue(key, textOf(value));
    m_store.sync();
    if (m_store.status() == QSettings::AccessError)
        report(tr("The settings cannot be saved to \"%1\". Changes are lost when the program ends.")
                   .arg(QDir::toNativeSeparators(m_store.fileName())));
}

template <typename T>
void DockConfigIO::saveChanges(const QHash<QString, T *> &fields)
{
    for (auto field = fields.cbegin(); field != fields.cend(); ++field) {
        if (textOf(*field.value()) != m_saved.value(field.key()))
            save(field.key(), *field.value(), fields);
    }
}

void DockConfigIO::saveChanges()
{
    saveChanges(m_fonts);
    saveChanges(m_bools);
    saveChanges(m_ints);
}

void DockConfigIO::bindFont(const QString &key, QFont *field)
{
    bind(key, field, &m_fonts, [](const QString &text, bool *isValid) {
        QFont font;
        *isValid = font.fromString(text);
        return font;
    });
}

void DockConfigIO::bindString(const QString &key, QString *field)
{
    bind(key, field, &m_strings, [](const QString &text, bool *) { return text; });
}

void DockConfigIO::bindColor(const QString &key, QColor *field)
{
    bind(key, field, &m_colors, [](const QString &text, bool *isValid) {
        const QColor color(text);
        *isValid = color.isValid();
        return color;
    });
}

void DockConfigIO::bindBool(const QString &key, bool *field)
{
    bind(key, field, &m_bools, [](const QString &text, bool *isValid) {
        *isValid = text == QLatin1String("true") || text == QLatin1String("false");
        return text == QLatin1String("true");
    });
}

void DockConfigIO::bindInt(const QString &key, int *field)
{
    bind(key, field, &m_ints, [](const QString &text, bool *isValid) { return text.toInt(isValid); });
}

void DockConfigIO::saveFont(const QString &key, const QFont &value)
{
    save(key, value, m_fonts);
}

void DockConfigIO::saveString(const QString &key, const QString &value)
{
    save(key, value, m_strings);
}

void DockConfigIO::saveColor(const QString &key, const QColor &value)
{
    save(key, value, m_colors);
}

void DockConfigIO::saveBool(const QString &key, bool value)
{
    save(key, value, m_bools);
}

void DockConfigIO::saveInt(const QString &key, int value)
{
    save(key, value, m_ints);
}
