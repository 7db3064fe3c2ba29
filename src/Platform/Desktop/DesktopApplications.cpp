// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DesktopApplications.h"

#include "DesktopLogging.h"

#include <algorithm>
#include <gio/gdesktopappinfo.h>
#include <gio/gio.h>
#include <QFileInfo>
#include <QMimeDatabase>

namespace Vantrope {

namespace {

QString fromUtf8(const char* text)
{
    return text ? QString::fromUtf8(text) : QString();
}

DesktopApplication describe(GAppInfo* info)
{
    DesktopApplication application;
    application.id = fromUtf8(g_app_info_get_id(info));
    application.name = fromUtf8(g_app_info_get_name(info));
    if (GIcon* icon = g_app_info_get_icon(info)) {
        gchar* text = g_icon_to_string(icon);
        application.iconName = fromUtf8(text);
        g_free(text);
    }
    return application;
}

QList<DesktopApplication> applicationsFor(const QString& mimeType)
{
    QList<DesktopApplication> applications;
    const QByteArray type = mimeType.toUtf8();
    GList* infos = g_app_info_get_all_for_type(type.constData());
    for (GList* node = infos; node; node = node->next) {
        auto* info = static_cast<GAppInfo*>(node->data);
        if (g_app_info_should_show(info)) {
            applications.append(describe(info));
        }
    }
    g_list_free_full(infos, g_object_unref);
    // GIO lists the applications in its own order, the user's default not necessarily first.
    if (GAppInfo* preferred = g_app_info_get_default_for_type(type.constData(), FALSE)) {
        const QString id = fromUtf8(g_app_info_get_id(preferred));
        g_object_unref(preferred);
        const auto found =
            std::find_if(applications.begin(), applications.end(),
                         [&id](const DesktopApplication& application) { return application.id == id; });
        if (found != applications.end()) {
            std::rotate(applications.begin(), found, found + 1);
        }
    }
    return applications;
}

QString errorText(GError* error)
{
    const QString text = error ? QString::fromUtf8(error->message) : QStringLiteral("unknown error");
    if (error) {
        g_error_free(error);
    }
    return text;
}

} // namespace

QString DesktopApplications::mimeTypeOf(const QUrl& url)
{
    static const QMimeDatabase database;
    if (url.isLocalFile()) {
        const QFileInfo file(url.toLocalFile());
        if (file.isDir()) {
            return QStringLiteral("inode/directory");
        }
        return database.mimeTypeForFile(file).name();
    }
    return database.mimeTypeForUrl(url).name();
}

std::optional<DesktopApplication> DesktopApplications::defaultFor(const QUrl& url)
{
    const QByteArray type = mimeTypeOf(url).toUtf8();
    GAppInfo* info = g_app_info_get_default_for_type(type.constData(), FALSE);
    if (!info) {
        return std::nullopt;
    }
    DesktopApplication application = describe(info);
    g_object_unref(info);
    return application;
}

QList<DesktopApplication> DesktopApplications::commonTo(const QList<QUrl>& urls)
{
    if (urls.isEmpty()) {
        return {};
    }
    // Each MIME type is asked once, however many files share it.
    QStringList types;
    for (const QUrl& url : urls) {
        const QString type = mimeTypeOf(url);
        if (!types.contains(type)) {
            types.append(type);
        }
    }
    QList<DesktopApplication> common = applicationsFor(types.first());
    for (qsizetype index = 1; index < types.size() && !common.isEmpty(); ++index) {
        QStringList ids;
        for (const DesktopApplication& application : applicationsFor(types[index])) {
            ids.append(application.id);
        }
        common.removeIf(
            [&ids](const DesktopApplication& application) { return !ids.contains(application.id); });
    }
    return common;
}

std::expected<void, DesktopApplications::Error> DesktopApplications::launchDefault(const QUrl& url)
{
    const QByteArray uri = url.toEncoded();
    GError* error = nullptr;
    if (!g_app_info_launch_default_for_uri(uri.constData(), nullptr, &error)) {
        const QString reason = errorText(error);
        qCWarning(lcDesktop).noquote() << QStringLiteral("Failed to open ") + url.toString() +
                                              QStringLiteral(" with its default application: ") + reason;
        return std::unexpected(Error{reason});
    }
    return {};
}

std::expected<void, DesktopApplications::Error> DesktopApplications::launch(const QString& desktopId,
                                                                            const QList<QUrl>& urls)
{
    const QByteArray id = desktopId.toUtf8();
    GDesktopAppInfo* info = g_desktop_app_info_new(id.constData());
    if (!info) {
        return std::unexpected(Error{QStringLiteral("no application ") + desktopId});
    }
    QList<QByteArray> uris;
    for (const QUrl& url : urls) {
        uris.append(url.toEncoded());
    }
    GList* list = nullptr;
    for (const QByteArray& uri : uris) {
        list = g_list_append(list, const_cast<char*>(uri.constData()));
    }
    GError* error = nullptr;
    const bool launched = g_app_info_launch_uris(G_APP_INFO(info), list, nullptr, &error);
    g_list_free(list);
    g_object_unref(info);
    if (!launched) {
        return std::unexpected(Error{errorText(error)});
    }
    return {};
}

} // namespace Vantrope
