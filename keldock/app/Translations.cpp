#include "app/Translations.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

namespace
{

void install(const QLocale &locale, const QString &name, const QString &folder)
{
    auto *const translator = new QTranslator(qApp);
    if (translator->load(locale, name, QStringLiteral("_"), folder))
        QCoreApplication::installTranslator(translator);
    else
        delete translator;
}

} // namespace

void Translations::install(const QString &language)
{
    const QLocale locale = language.isEmpty() ? QLocale::system() : QLocale(language);
    QLocale::setDefault(locale);
    // Of a program that is installed alone the texts of Qt are its own, else they are the system's.
    ::install(locale, QStringLiteral("qtbase"), QLibraryInfo::location(QLibraryInfo::TranslationsPath));
    for (const char *part : {"qtbase", "kelmovie", "keldock"})
        ::install(locale, QLatin1String(part), QStringLiteral(":/i18n"));
}
