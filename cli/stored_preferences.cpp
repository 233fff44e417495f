// SPDX-License-Identifier: MIT
#include "cli/stored_preferences.h"

#include "cli/attribute_failure.h"
#include "filters/capture_preferences_attribute.h"
#include "platform/extended_attributes.h"

#include <cerrno>

namespace havrel::cli {
namespace {

namespace attribute = capture_preferences_attribute;

} // namespace

QString storePreferences(const QByteArray& path, const QByteArray& bytes, bool force)
{
    if (bytes.size() > attribute::kMostBytesRead && !force) {
        return QStringLiteral(
                   "its preferences would take %1 bytes, and readers take %2; --force writes them all the same")
            .arg(bytes.size())
            .arg(attribute::kMostBytesRead);
    }
    // Writing what is there already would change the item's status time, and make the next capture look at it again.
    const platform::AttributeValue present = platform::readAttribute(path, attribute::kNameOnDisk);
    if (present.error == 0 && present.bytes == bytes)
        return {};
    const int error = platform::writeAttribute(path, attribute::kNameOnDisk, bytes);
    return error == 0 ? QString() : attributeFailureText(error, path, AttributeAccess::Write);
}

QString removePreferences(const QByteArray& path)
{
    // Asks first: removing what is not there would fail on items that cannot carry preferences at all.
    int error = platform::sizeOfAttribute(path, attribute::kNameOnDisk).error;
    if (error == 0 || error == EACCES) // an item may be writable that is not readable
        error = platform::removeAttribute(path, attribute::kNameOnDisk);
    const bool isGone = error == 0 || error == ENODATA || error == ENOTSUP;
    return isGone ? QString() : attributeFailureText(error, path, AttributeAccess::Write);
}

} // namespace havrel::cli
