// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DirectoryObserverCoordinator.h"

#include "DirectoryObserverLogging.h"
#include "Libraries/Core/Localized.h"

#include <array>
#include <QDir>
#include <QFileInfo>

namespace Vantrope {

namespace {

using Kind = DirectoryObserverItemMatcher::KindMatching::Kind;

// Watched folders are keyed by URL equality; a trailing slash or a "." must not make a second folder.
QUrl normalized(const QUrl& url)
{
    return url.isLocalFile() ? QUrl::fromLocalFile(QDir::cleanPath(url.toLocalFile())) : url;
}

struct KindWords {
    Kind kind;
    const char* oneKey;
    const char* one;
    const char* manyKey;
    const char* many;
};

constexpr std::array<KindWords, 5> kindWords{{
    {Kind::image, "files.description.image", "1 image", "files.description.images", "%n images"},
    {Kind::video, "files.description.video", "1 video", "files.description.videos", "%n videos"},
    {Kind::audio, "files.description.audio", "1 audio file", "files.description.audios", "%n audio files"},
    {Kind::pdf, "files.description.pdf", "1 PDF", "files.description.pdfs", "%n PDFs"},
    {Kind::folder, "files.description.folder", "1 folder", "files.description.folders", "%n folders"},
}};

std::optional<Kind> kindOf(const QUrl& url)
{
    if (QFileInfo(url.toLocalFile()).isDir()) {
        return Kind::folder;
    }
    const QString extension = DirectoryObserverItem::pathExtension(url).toLower();
    for (const KindWords& words : kindWords) {
        if (DirectoryObserverItemMatcher::KindMatching::extensions(words.kind).contains(extension)) {
            return words.kind;
        }
    }
    return std::nullopt;
}

// "3 images" when the files share a kind, "3 files" otherwise.
QString filesDescription(const QList<QUrl>& files)
{
    const int count = int(files.size());
    std::optional<Kind> common = kindOf(files.first());
    for (const QUrl& file : files) {
        if (kindOf(file) != common) {
            common.reset();
            break;
        }
    }
    for (const KindWords& words : kindWords) {
        if (common == words.kind) {
            return count == 1 ? Localized(words.oneKey, words.one)
                              : Localized(words.manyKey, words.many, count);
        }
    }
    return count == 1 ? Localized("files.description.file", "1 file")
                      : Localized("files.description.files", "%n files", count);
}

QString displayName(const QUrl& folder)
{
    const QString name = QFileInfo(folder.toLocalFile()).fileName();
    return name.isEmpty() ? folder.toLocalFile() : name;
}

} // namespace

DirectoryObserverCoordinator::DirectoryObserverCoordinator(Clock& clock, DirectoryWatcher& watcher)
    : m_clock(clock)
    , m_watcher(watcher)
{}

DirectoryObserverCoordinator::~DirectoryObserverCoordinator() = default;

void DirectoryObserverCoordinator::startObservingAtLaunch(const QList<ObservedDirectory>& items)
{
    for (const ObservedDirectory& item : items) {
        if (item.lifecycle.isStopped) {
            continue;
        }
        DirectoryObserver& folder = observer(item.url);
        folder.setFilters(item.filters);
        folder.setAppendsToExistingShelf(item.options.appendsToInitialShelf);
        folder.setCaseSensitiveItemMatchers(item.options.rulesCaseSensitive);
        folder.setObservesNestedDirectories(item.options.observesNestedDirectories);
        folder.restartIfNeeded();
        // Refusals are logged by startObserving; a restricted folder simply stays stopped.
        (void)startObserving(folder);
    }
}

DirectoryObserver& DirectoryObserverCoordinator::observer(const QUrl& url)
{
    const QUrl key = normalized(url);
    std::unique_ptr<DirectoryObserver>& slot = m_observers[key];
    if (!slot) {
        slot = std::make_unique<DirectoryObserver>(key, QList<DirectoryObserverFilter>{}, false, std::nullopt,
                                                   m_clock, m_watcher);
    }
    return *slot;
}

std::expected<void, ObservedDirectoryStartObservationError>
DirectoryObserverCoordinator::startObserving(DirectoryObserver& observer)
{
    if (m_restrictedDirectories.contains(observer.url())) {
        qCInfo(lcDirectoryObserver).noquote()
            << QStringLiteral("Attempted to start observing but the given directory is restricted (") +
                   observer.url().toString() + QLatin1Char(')');
        return std::unexpected(ObservedDirectoryStartObservationError::restricted);
    }
    if (observer.isRunning()) {
        qCInfo(lcDirectoryObserver) << "Attempted to start observing while observing";
        return std::unexpected(ObservedDirectoryStartObservationError::alreadyObserving);
    }
    // The observers are owned here, so their callbacks never outlive this coordinator.
    observer.setOnChange(
        [this, folder = &observer](const QList<QUrl>& urls) { handleChange(*folder, urls); });
    observer.start();
    return {};
}

void DirectoryObserverCoordinator::stopObserving(DirectoryObserver& observer)
{
    m_observerShelves.remove(observer.url());
    observer.stop();
}

bool DirectoryObserverCoordinator::removeObserver(const QUrl& url)
{
    const auto found = m_observers.find(normalized(url));
    if (found == m_observers.end()) {
        return false;
    }
    std::unique_ptr<DirectoryObserver> removed = std::move(found->second);
    m_observers.erase(found);
    stopObserving(*removed);
    removed->setOnChange({});
    // Later, in case the removal comes from within one of its own reports.
    removed.release()->deleteLater();
    return true;
}

DirectoryObserverCoordinator::ObservationStatus
DirectoryObserverCoordinator::observationStatus(const QUrl& url) const
{
    const QUrl key = normalized(url);
    if (m_restrictedDirectories.contains(key)) {
        return ObservationStatus::restricted;
    }
    const auto found = m_observers.find(key);
    if (found != m_observers.end() && found->second->isRunning()) {
        return ObservationStatus::observing;
    }
    return ObservationStatus::notObserving;
}

void DirectoryObserverCoordinator::restrictDirectory(const QUrl& url)
{
    const QUrl key = normalized(url);
    qCInfo(lcDirectoryObserver).noquote()
        << QStringLiteral("Restricting directory '") + key.toString() + QLatin1Char('\'');
    m_restrictedDirectories.append(key);
    int stopped = 0;
    for (const auto& [folder, observer] : m_observers) {
        if (observer->url() == key) {
            stopObserving(*observer);
            ++stopped;
        }
    }
    qCInfo(lcDirectoryObserver).noquote() << QStringLiteral("Stopped ") + QString::number(stopped) +
                                                 QStringLiteral(" which match the restricted directory...");
}

std::optional<QString> DirectoryObserverCoordinator::shelfIdentifier(const QUrl& url) const
{
    const auto found = m_observerShelves.constFind(normalized(url));
    if (found == m_observerShelves.constEnd()) {
        return std::nullopt;
    }
    return *found;
}

void DirectoryObserverCoordinator::handleChange(DirectoryObserver& observer, const QList<QUrl>& urls)
{
    QList<QUrl> files;
    for (const QUrl& url : urls) {
        // What a file item of a shelf needs: a local file that is still there.
        if (url.isLocalFile() && QFileInfo::exists(url.toLocalFile())) {
            files.append(url);
        }
    }
    if (files.isEmpty()) {
        qCInfo(lcDirectoryObserver) << "Failed to map the new items to draggable files";
        return;
    }

    const QUrl folder = observer.url();
    if (observer.appendsToExistingShelf()) {
        const auto shelf = m_observerShelves.constFind(folder);
        if (shelf != m_observerShelves.constEnd() && m_dataSource &&
            m_dataSource->appendFiles(*shelf, files)) {
            return;
        }
    }
    if (!m_dataSource) {
        qCWarning(lcDirectoryObserver).noquote()
            << QStringLiteral("Observed change in directory ") + folder.toString() +
                   QStringLiteral(" but we don't have any datasource to obtain a drag session coordinator. "
                                  "Ignoring change...");
        return;
    }
    const std::optional<QString> shelf = m_dataSource->createShelf(files);
    if (!shelf) {
        qCWarning(lcDirectoryObserver).noquote()
            << QStringLiteral("No shelf could be opened for the new items in ") + folder.toString();
        return;
    }
    m_observerShelves.insert(folder, *shelf);
    m_dataSource->showMessage(*shelf, Localized("directory-observation.window-message", "%1 from %2")
                                          .arg(filesDescription(files), displayName(folder)));
}

} // namespace Vantrope
