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
    const QString ownFolder = QStringLiteral(":/i18n");
    // The English plural forms. They come first because the latest translator has precedence.
    ::install(QLocale(QLocale::English), QStringLiteral("keldock"), ownFolder);
    // Qt's own texts come with the system, or with the program where it is installed without a system-wide Qt.
    ::install(locale, QStringLiteral("qtbase"), QLibraryInfo::location(QLibraryInfo::TranslationsPath));
    for (const char *part : {"qtbase", "kelmovie", "keldock"})
        ::install(locale, QLatin1String(part), ownFolder);
}
