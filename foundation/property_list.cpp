// SPDX-License-Identifier: MIT
#include "foundation/property_list.h"

#include "foundation/binary_property_list.h"
#include "foundation/property_list_kind.h"
#include "foundation/xml_property_list.h"

#include <array>

namespace havrel {
namespace {

bool looksLikeXML(const QByteArray& bytes)
{
    static constexpr std::array kByteOrderMarks{"\xEF\xBB\xBF", "\xFE\xFF", "\xFF\xFE"};
    for (const char* mark : kByteOrderMarks) {
        if (bytes.startsWith(mark))
            return true;
    }
    const auto isBlank = [](char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; };
    qsizetype start = 0;
    while (start < bytes.size() && isBlank(bytes[start]))
        ++start;
    return start < bytes.size() && bytes[start] == '<';
}

} // namespace

PropertyListReading parsePropertyList(const QByteArray& bytes)
{
    if (bytes.startsWith("bplist"))
        return readBinaryPropertyList(bytes);
    if (looksLikeXML(bytes))
        return readXMLPropertyList(bytes);
    PropertyListReading reading;
    reading.error = propertyListReadError(QStringLiteral("the data is neither a binary nor an XML property list"));
    return reading;
}

Error propertyListReadError(const QString& fault, qint64 code)
{
    return Error(
        error_domain::kCocoa,
        code,
        {{error_key::kLocalizedDescription, QStringLiteral("The property list cannot be read: %1.").arg(fault)}});
}

Error propertyListWriteError(const QString& fault)
{
    return Error(error_domain::kCocoa,
                 property_list_error::kWriteInvalid,
                 {{error_key::kLocalizedDescription,
                   QStringLiteral("The value cannot be written as a property list: %1.").arg(fault)}});
}

} // namespace havrel
