#pragma once

#include <cstdint>
#include <expected>
#include <functional>
#include <memory>
#include <QString>

namespace Vantrope {

// One inotify instance for the whole process, read on a thread of its own. Several watchers may follow
// the same file: the kernel gives one watch per inode, which this class shares out.
class InotifyWatcher final {
public:
    // The events a watch can ask for; the same bits as inotify's.
    enum Event : std::uint32_t {
        attributes = 0x00000004,  // IN_ATTRIB: also a change of link count, i.e. an unlink
        closeWrite = 0x00000008,  // IN_CLOSE_WRITE
        movedFrom = 0x00000040,   // IN_MOVED_FROM
        movedTo = 0x00000080,     // IN_MOVED_TO
        created = 0x00000100,     // IN_CREATE
        deleted = 0x00000200,     // IN_DELETE
        deletedSelf = 0x00000400, // IN_DELETE_SELF
        movedSelf = 0x00000800,   // IN_MOVE_SELF
        overflow = 0x00004000,    // IN_Q_OVERFLOW: events were lost
        ignored = 0x00008000,     // IN_IGNORED: the watch is gone (file deleted, file system unmounted)
    };

    // `mask` holds the events that happened; `name` is the entry's name for events inside a directory.
    using Callback = std::function<void(std::uint32_t mask, const QString& name)>;

    // Ends a watch when destroyed. Destroying it on the watcher's own thread, inside a callback, is safe.
    class Watch {
    public:
        virtual ~Watch() = default;
    };

    struct Error {
        QString path;
        QString reason;
        // The system's watch limit is used up: the file itself may be perfectly fine.
        bool limitReached = false;
        QString description() const;
    };

    static InotifyWatcher& shared();

    // The callback runs on the watcher's thread; it must not block.
    std::expected<std::unique_ptr<Watch>, Error> watch(const QString& path, std::uint32_t events,
                                                       Callback callback);

    ~InotifyWatcher();

    struct Private;

private:
    InotifyWatcher();
    std::unique_ptr<Private> d;
};

} // namespace Vantrope
