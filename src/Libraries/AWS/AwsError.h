// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QByteArray>
#include <QString>

namespace Vantrope::AWS {

// Why a request to S3 failed, with what the server said, in words a user can act on.
struct Error {
    enum class Kind {
        accessDenied,       // the key may not do this, or the ACL is refused
        invalidCredentials, // no such access key, or a wrong secret
        noSuchBucket,
        clockSkew,   // this computer's clock is too far from the server's
        unreachable, // no connection: a wrong endpoint, no network, a refused port
        timeout,     // the server stopped answering mid-way
        invalidReply,
        fileUnreadable,
        cancelled,
        server, // anything else the server refused
    };

    Kind kind = Kind::server;
    int httpStatus = 0;
    QString code;          // S3's error code, such as "NoSuchBucket"
    QString serverMessage; // S3's own message
    QString detail;        // the network layer's or the file system's words

    QString description() const;
    bool isCancelled() const { return kind == Kind::cancelled; }

    // Reads S3's XML error document; a body that is none gives `invalidReply` unless the status alone
    // tells what happened.
    static Error fromResponse(int httpStatus, const QByteArray& body);
    // An S3 XML document with an <Error> root, which S3 may send even with status 200.
    static bool isErrorDocument(const QByteArray& body);
};

} // namespace Vantrope::AWS
