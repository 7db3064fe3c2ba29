// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "ImageMetadata.h"

#include "FileOperationsLogging.h"
#include "Libraries/Core/Localized.h"

#include <cmath>
#include <exiv2/exiv2.hpp>
#include <exiv2/webpimage.hpp>
#include <mutex>
#include <optional>
#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QStringList>

namespace Vantrope {

namespace {

void logExiv2(int level, const char* message)
{
    const QString text = QString::fromUtf8(message).trimmed();
    if (level >= Exiv2::LogMsg::error)
        qCWarning(lcFileOperations) << "exiv2:" << text;
    else
        qCDebug(lcFileOperations) << "exiv2:" << text;
}

// exiv2's XMP toolkit must be set up once before threads use it.
void startExiv2()
{
    static std::once_flag once;
    std::call_once(once, [] {
        Exiv2::XmpParser::initialize();
        Exiv2::LogMsg::setLevel(Exiv2::LogMsg::warn);
        Exiv2::LogMsg::setHandler(logExiv2);
    });
}

std::string nativePath(const QString& path)
{
    const QByteArray name = QFile::encodeName(path);
    return std::string(name.constData(), size_t(name.size()));
}

QString text(const std::string& value)
{
    return QString::fromStdString(value).trimmed();
}

bool isLocationKey(const std::string& key)
{
    static const char* const keys[] = {
        "Iptc.Application2.City",        "Iptc.Application2.SubLocation", "Iptc.Application2.ProvinceState",
        "Iptc.Application2.CountryName", "Iptc.Application2.CountryCode", "Xmp.photoshop.City",
        "Xmp.photoshop.State",           "Xmp.photoshop.Country",         "Xmp.iptc.Location",
        "Xmp.iptc.CountryCode",
    };
    if (key.rfind("Exif.GPSInfo.", 0) == 0 || key.rfind("Xmp.exif.GPS", 0) == 0 ||
        key.rfind("Xmp.iptcExt.LocationShown", 0) == 0 || key.rfind("Xmp.iptcExt.LocationCreated", 0) == 0)
        return true;
    for (const char* candidate : keys)
        if (key == candidate)
            return true;
    return false;
}

template<typename Data> void eraseLocation(Data& data)
{
    for (auto it = data.begin(); it != data.end();) {
        if (isLocationKey(it->key()))
            it = data.erase(it);
        else
            ++it;
    }
}

std::optional<double> coordinate(const Exiv2::ExifData& exif, const char* valueKey, const char* referenceKey)
{
    const auto value = exif.findKey(Exiv2::ExifKey(valueKey));
    if (value == exif.end() || value->count() < 3)
        return std::nullopt;
    double degrees = 0;
    for (long part = 0; part < 3; ++part) {
        const Exiv2::Rational rational = value->toRational(part);
        if (rational.second == 0)
            return std::nullopt;
        degrees += double(rational.first) / rational.second / std::pow(60.0, double(part));
    }
    const auto reference = exif.findKey(Exiv2::ExifKey(referenceKey));
    if (reference != exif.end()) {
        const std::string direction = reference->toString();
        if (direction == "S" || direction == "W")
            degrees = -degrees;
    }
    return degrees;
}

} // namespace

bool ImageMetadata::canStrip(const QString& path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    static const QStringList suffixes = {QStringLiteral("jpg"), QStringLiteral("jpeg"), QStringLiteral("jpe"),
                                         QStringLiteral("png"), QStringLiteral("webp")};
    return suffixes.contains(suffix);
}

std::expected<void, QString> ImageMetadata::strip(const QString& path, Removal removal)
{
    startExiv2();
    try {
        auto image = Exiv2::ImageFactory::open(nativePath(path));
        if (!image.get())
            return std::unexpected(Localized("image-metadata.unreadable", "The image could not be read."));
        const int type = image->imageType();
        if (type != Exiv2::ImageType::jpeg && type != Exiv2::ImageType::png && type != Exiv2::ImageType::webp)
            return std::unexpected(Localized("image-metadata.unsupported",
                                             "Metadata can only be removed from JPEG, PNG and WebP images."));
        image->readMetadata();
        if (removal == Removal::location) {
            eraseLocation(image->exifData());
            eraseLocation(image->iptcData());
            eraseLocation(image->xmpData());
        } else {
            // The orientation stays: without it a photo taken upright would show on its side.
            Exiv2::ExifData kept;
            const auto orientation = image->exifData().findKey(Exiv2::ExifKey("Exif.Image.Orientation"));
            if (orientation != image->exifData().end())
                kept.add(*orientation);
            image->setExifData(kept);
            image->clearIptcData();
            image->clearXmpData();
            image->clearXmpPacket();
            image->clearComment();
        }
        image->writeMetadata();
        return {};
    } catch (const std::exception& error) {
        qCWarning(lcFileOperations) << "exiv2 failed on" << path << ":" << error.what();
        return std::unexpected(Localized("image-metadata.failed",
                                         "The metadata could not be removed; the image may be damaged."));
    }
}

QList<std::pair<QString, QString>> ImageMetadata::describe(const QString& path)
{
    startExiv2();
    QList<std::pair<QString, QString>> rows;
    try {
        auto image = Exiv2::ImageFactory::open(nativePath(path));
        if (!image.get())
            return rows;
        image->readMetadata();
        const Exiv2::ExifData& exif = image->exifData();
        auto value = [&exif](const char* key) -> QString {
            const auto found = exif.findKey(Exiv2::ExifKey(key));
            return found == exif.end() ? QString() : text(found->print(&exif));
        };
        if (image->pixelWidth() > 0 && image->pixelHeight() > 0) {
            // Shown as it is seen: a photo taken upright is stored on its side.
            const auto orientation = exif.findKey(Exiv2::ExifKey("Exif.Image.Orientation"));
            const bool turned =
                orientation != exif.end() && orientation->toLong() >= 5 && orientation->toLong() <= 8;
            rows.append({Localized("image-metadata.dimensions", "Dimensions"),
                         Localized("image-metadata.dimensions.value", "%1 × %2 pixels")
                             .arg(turned ? image->pixelHeight() : image->pixelWidth())
                             .arg(turned ? image->pixelWidth() : image->pixelHeight())});
        }
        const QString make = value("Exif.Image.Make");
        QString model = value("Exif.Image.Model");
        if (!make.isEmpty() && !model.startsWith(make, Qt::CaseInsensitive))
            model = QString(make + QLatin1Char(' ') + model).trimmed();
        if (!model.isEmpty())
            rows.append({Localized("image-metadata.camera", "Camera"), model});
        const QString lens = value("Exif.Photo.LensModel");
        if (!lens.isEmpty())
            rows.append({Localized("image-metadata.lens", "Lens"), lens});
        const QString taken = value("Exif.Photo.DateTimeOriginal");
        if (!taken.isEmpty()) {
            const QDateTime date = QDateTime::fromString(taken, QStringLiteral("yyyy:MM:dd HH:mm:ss"));
            rows.append({Localized("image-metadata.date-taken", "Date taken"),
                         date.isValid() ? QLocale().toString(date, QLocale::LongFormat) : taken});
        }
        QStringList exposure;
        for (const char* key : {"Exif.Photo.ExposureTime", "Exif.Photo.FNumber", "Exif.Photo.FocalLength"}) {
            const QString part = value(key);
            if (!part.isEmpty())
                exposure << part;
        }
        const QString iso = value("Exif.Photo.ISOSpeedRatings");
        if (!iso.isEmpty())
            exposure << QStringLiteral("ISO ") + iso;
        if (!exposure.isEmpty())
            rows.append(
                {Localized("image-metadata.exposure", "Exposure"), exposure.join(QStringLiteral(", "))});
        bool hasLocation = false;
        for (const auto& datum : exif)
            hasLocation = hasLocation || datum.groupName() == "GPSInfo";
        for (const auto& datum : image->xmpData())
            hasLocation = hasLocation || isLocationKey(datum.key());
        QString location = Localized("image-metadata.location.none", "None");
        if (hasLocation) {
            location = Localized("image-metadata.location.present", "Present");
            const auto latitude = coordinate(exif, "Exif.GPSInfo.GPSLatitude", "Exif.GPSInfo.GPSLatitudeRef");
            const auto longitude =
                coordinate(exif, "Exif.GPSInfo.GPSLongitude", "Exif.GPSInfo.GPSLongitudeRef");
            if (latitude && longitude)
                location = Localized("image-metadata.location.coordinates", "Present (%1, %2)")
                               .arg(*latitude, 0, 'f', 5)
                               .arg(*longitude, 0, 'f', 5);
        }
        rows.append({Localized("image-metadata.location", "Location"), location});
    } catch (const std::exception& error) {
        qCInfo(lcFileOperations) << "No metadata read from" << path << ":" << error.what();
    }
    return rows;
}

} // namespace Vantrope
