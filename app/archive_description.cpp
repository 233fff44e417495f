// SPDX-License-Identifier: MIT
#include "app/archive_description.h"

#include "foundation/dictionary_additions.h"
#include "platform/file_names.h"

namespace havrel::archive_description {

/// A program that speaks to the bus by hand may well send a text.
QByteArray pathOf(const QVariantMap& description)
{
    const QVariant path = objectOrNilForKey(description, QStringLiteral("path"));
    if (path.typeId() == QMetaType::QString)
        return platform::bytesOfFileName(path.toString());
    return path.typeId() == QMetaType::QByteArray ? path.toByteArray() : QByteArray();
}

std::optional<QDateTime> lastCaptureTimeOf(const QVariantMap& description)
{
    return dateFromIntervalForKey(description, QStringLiteral("lastCaptureTime"));
}

} // namespace havrel::archive_description
