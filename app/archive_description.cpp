// SPDX-License-Identifier: MIT
#include "app/archive_description.h"

#include "foundation/dictionary_additions.h"
#include "platform/file_names.h"

namespace havrel::archive_description {

namespace {

/// A program that speaks to the bus by hand may well send a text.
QByteArray bytesOf(const QVariant& path)
{
    if (path.typeId() == QMetaType::QString)
        return platform::bytesOfFileName(path.toString());
    return path.typeId() == QMetaType::QByteArray ? path.toByteArray() : QByteArray();
}

} // namespace

QByteArray pathOf(const QVariantMap& description)
{
    QByteArray path = bytesOf(objectOrNilForKey(description, QStringLiteral("path")));
    const bool canBe = path.startsWith('/') && !path.contains('\0');
    return canBe ? path : QByteArray();
}

std::optional<QDateTime> lastCaptureTimeOf(const QVariantMap& description)
{
    return dateFromIntervalForKey(description, QStringLiteral("lastCaptureTime"));
}

} // namespace havrel::archive_description
