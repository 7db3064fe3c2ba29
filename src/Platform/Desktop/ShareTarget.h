#pragma once

#include <expected>
#include <functional>
#include <QList>
#include <QString>
#include <QUrl>

namespace Vantrope {

// A place the desktop can send files to: a mail program, a paired phone, a Bluetooth device.
struct ShareTarget {
    // Hands the files over, answering the reason when it could not.
    using Send = std::function<std::expected<void, QString>(const QList<QUrl>& urls)>;

    // The target's own id: "email", "kdeconnect_<device id>", "bluetooth".
    QString identifier;
    QString title;
    QString iconName;
    Send send;
};

} // namespace Vantrope
