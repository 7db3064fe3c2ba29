// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "AwsError.h"

#include "Libraries/Core/Localized.h"

#include <QXmlStreamReader>

namespace Vantrope::AWS {

namespace {

Error::Kind kindOf(const QString& code, int status)
{
    if (code == QLatin1String("AccessDenied") || code == QLatin1String("AllAccessDisabled") ||
        code == QLatin1String("AccessControlListNotSupported")) {
        return Error::Kind::accessDenied;
    }
    if (code == QLatin1String("InvalidAccessKeyId") || code == QLatin1String("SignatureDoesNotMatch") ||
        code == QLatin1String("InvalidToken") || code == QLatin1String("AuthorizationHeaderMalformed")) {
        return Error::Kind::invalidCredentials;
    }
    if (code == QLatin1String("NoSuchBucket")) {
        return Error::Kind::noSuchBucket;
    }
    if (code == QLatin1String("RequestTimeTooSkewed")) {
        return Error::Kind::clockSkew;
    }
    if (code == QLatin1String("RequestTimeout")) {
        return Error::Kind::timeout;
    }
    if (code.isEmpty()) {
        if (status == 403) {
            return Error::Kind::accessDenied;
        }
        return Error::Kind::invalidReply;
    }
    return Error::Kind::server;
}

} // namespace

bool Error::isErrorDocument(const QByteArray& body)
{
    QXmlStreamReader xml(body);
    while (!xml.atEnd()) {
        if (xml.readNext() == QXmlStreamReader::StartElement) {
            return xml.name() == QLatin1String("Error");
        }
    }
    return false;
}

Error Error::fromResponse(int httpStatus, const QByteArray& body)
{
    Error error;
    error.httpStatus = httpStatus;
    QXmlStreamReader xml(body);
    bool inError = false;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement) {
            continue;
        }
        if (xml.name() == QLatin1String("Error")) {
            inError = true;
        } else if (inError && xml.name() == QLatin1String("Code")) {
            error.code = xml.readElementText().trimmed();
        } else if (inError && xml.name() == QLatin1String("Message")) {
            error.serverMessage = xml.readElementText().trimmed();
        }
    }
    error.kind = kindOf(error.code, httpStatus);
    if (error.kind == Kind::invalidReply && httpStatus >= 500) {
        error.kind = Kind::server;
    }
    return error;
}

QString Error::description() const
{
    QString text;
    switch (kind) {
    case Kind::accessDenied:
        text =
            Localized("aws.error.access-denied",
                      "The access key is not allowed to do this. Check the key's permissions on the bucket "
                      "and whether the bucket accepts the chosen access control.");
        break;
    case Kind::invalidCredentials:
        text = code == QLatin1String("SignatureDoesNotMatch")
                   ? Localized("aws.error.signature",
                               "The secret does not match the access key. Check the secret.")
                   : Localized("aws.error.credentials",
                               "The server does not know this access key. Check the key.");
        break;
    case Kind::noSuchBucket:
        text = Localized("aws.error.no-bucket", "The bucket does not exist. Check its name and region.");
        break;
    case Kind::clockSkew:
        text = Localized("aws.error.clock", "This computer's clock is too far off from the server's. Set the "
                                            "date and time automatically, then try again.");
        break;
    case Kind::unreachable:
        text =
            Localized("aws.error.unreachable", "The server could not be reached. Check the network and the "
                                               "endpoint address.");
        break;
    case Kind::timeout:
        text = Localized("aws.error.timeout", "The server stopped answering. Try again later.");
        break;
    case Kind::invalidReply:
        text =
            Localized("aws.error.invalid-reply", "The server sent an answer that is not from an S3 service.");
        break;
    case Kind::fileUnreadable:
        text = Localized("aws.error.file", "The file to upload could not be read.");
        break;
    case Kind::cancelled:
        return Localized("aws.error.cancelled", "The upload was cancelled.");
    case Kind::server:
        text = Localized("aws.error.server", "The server refused the request.");
        break;
    }
    QStringList said;
    if (!code.isEmpty()) {
        said << code;
    }
    if (!serverMessage.isEmpty()) {
        said << serverMessage;
    }
    if (httpStatus != 0 && code.isEmpty()) {
        said << QStringLiteral("HTTP %1").arg(httpStatus);
    }
    if (!detail.isEmpty()) {
        said << detail;
    }
    if (!said.isEmpty()) {
        text += QStringLiteral(" (") + said.join(QStringLiteral(": ")) + QLatin1Char(')');
    }
    return text;
}

} // namespace Vantrope::AWS
