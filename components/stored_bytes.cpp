// SPDX-License-Identifier: MIT
#include "components/stored_bytes.h"

#include "platform/file_names.h"

#include <algorithm>

namespace havrel {
namespace {

/// \source Extensible Markup Language 1.0, production 2 (Char), without white space, which readers may change
bool isPlain(QChar unit)
{
    constexpr char16_t kFirstNoncharacter = 0xFFFE;
    return unit >= u' ' && unit.unicode() < kFirstNoncharacter;
}

} // namespace

QVariant storedBytes(const QByteArray& bytes)
{
    const QString text = platform::textOfFileName(bytes);
    if (text.isValidUtf16() && std::all_of(text.begin(), text.end(), isPlain))
        return text;
    return bytes;
}

std::optional<QByteArray> bytesOfStored(const QVariant& stored)
{
    if (stored.metaType() == QMetaType::fromType<QString>())
        return platform::bytesOfFileName(stored.toString());
    if (stored.metaType() == QMetaType::fromType<QByteArray>())
        return stored.toByteArray();
    return std::nullopt;
}

} // namespace havrel
