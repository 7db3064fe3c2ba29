// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Localized.h"

#include "Logging.h"

#include <QCoreApplication>
#include <QLocale>
#include <QStandardPaths>
#include <QTranslator>

namespace Vantrope {

QString Localized(const char* key, const char* english)
{
    const QString translated = qtTrId(key);
    if (translated.isEmpty() || translated == QLatin1String(key)) {
        return QString::fromUtf8(english);
    }
    return translated;
}

QString Localized(const char* key, const char* english, int count)
{
    QString translated = qtTrId(key, count);
    if (translated.isEmpty() || translated == QLatin1String(key)) {
        translated = QString::fromUtf8(english);
    }
    return translated.replace(QStringLiteral("%n"), QLocale().toString(count));
}

void installTranslations()
{
    auto* app = QCoreApplication::instance();
    if (!app) {
        return;
    }
    auto* translator = new QTranslator(app);
    const QStringList folders =
        QStandardPaths::locateAll(QStandardPaths::GenericDataLocation,
                                  QStringLiteral("vantrope/translations"), QStandardPaths::LocateDirectory);
    for (const QString& folder : folders) {
        if (translator->load(QLocale(), QStringLiteral("vantrope"), QStringLiteral("_"), folder)) {
            QCoreApplication::installTranslator(translator);
            qCInfo(lcCore) << "Loaded translations from" << folder;
            return;
        }
    }
    delete translator;
}

} // namespace Vantrope
