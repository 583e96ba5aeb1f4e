// SPDX-License-Identifier: MIT
#include "Translations.h"

#include "QtVersions.h"

#include <QCoreApplication>
#include <QLocale>
#include <QTranslator>

namespace
{

void install(const QString& name, const QString& directory)
{
    auto* translator = new QTranslator(QCoreApplication::instance());
    if (translator->load(QLocale(), name, QStringLiteral("_"), directory))
        QCoreApplication::installTranslator(translator);
    else
        delete translator;
}

} // namespace

void installTranslations()
{
    install(QStringLiteral("qtbase"), qtversions::translationsPath());
    // Relative to the program, as it is installed and as it is built.
    for (const char* place :
         {"/../share/" SCREENCAPTURE_NAME "/translations", "/../translations"}) {
        const QString directory = QCoreApplication::applicationDirPath() + QLatin1String(place);
        install(QStringLiteral("screencapture"), directory);
        install(QStringLiteral("capture-host"), directory);
    }
}
