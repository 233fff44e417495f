// SPDX-License-Identifier: MIT
#include "foundation/binary_property_list_bytes.h"

#include "foundation/binary_property_list.h"
#include "foundation/property_list_kind.h"

namespace havrel {

namespace format = binary_property_list;

BinaryPropertyListBytes::BinaryPropertyListBytes(const QByteArray& bytes)
    : m_bytes(bytes)
    , m_faultCode(property_list_error::kReadCorrupt)
{
    if (m_bytes.startsWith(QByteArrayView(format::kHead.data(), format::kHead.size()))) {
        readTrailer();
    } else {
        m_faultCode = property_list_error::kReadUnknownVersion;
        fail(QStringLiteral("its binary version is unknown"));
    }
}

void BinaryPropertyListBytes::readTrailer()
{
    const auto size = static_cast<quint64>(m_bytes.size());
    if (size < format::kHead.size() + format::kTrailerSize + 2) // an object and its offset
        return fail(QStringLiteral("it is too short"));
    const quint64 trailer = size - format::kTrailerSize;
    m_offsetSize = byteAt(trailer + 6);
    m_referenceSize = byteAt(trailer + 7);
    m_count = unsignedAt(trailer + 8, 8);
    m_top = unsignedAt(trailer + 16, 8);
    m_end = unsignedAt(trailer + 24, 8);
    if (!trailerHolds(size))
        fail(QStringLiteral("its trailer is damaged"));
    else if (m_count > kMostPropertyListObjects)
        fail(property_list_fault::tooManyValues());
}

bool BinaryPropertyListBytes::trailerHolds(quint64 size) const
{
    if (m_offsetSize < 1 || m_offsetSize > 8 || m_referenceSize < 1 || m_referenceSize > 8)
        return false;
    if (m_end <= format::kHead.size() || m_end > size - format::kTrailerSize)
        return false;
    const quint64 tableSize = size - format::kTrailerSize - m_end;
    return m_top < m_count && m_count <= tableSize / m_offsetSize;
}

std::optional<quint64> BinaryPropertyListBytes::startOf(quint64 index)
{
    const quint64 start = unsignedAt(m_end + index * m_offsetSize, m_offsetSize);
    if (start >= format::kHead.size() && start < m_end)
        return start;
    fail(QStringLiteral("an object lies outside the objects"));
    return std::nullopt;
}

BinaryPropertyListBytes::Body BinaryPropertyListBytes::bodyAt(quint64 start, quint64 unitSize)
{
    Body body{start + 1, static_cast<quint64>(byteAt(start) & 0x0F)};
    if (body.count == format::kCountFollows) {
        const quint8 marker = holds(start + 1, 1) ? byteAt(start + 1) : 0;
        const quint64 width = quint64(1) << (marker & 0x0F);
        if ((marker & 0xF0) != format::Integer || width > 8 || !holds(start + 2, width)) {
            fail(QStringLiteral("a count is damaged"));
            return {};
        }
        body = {start + 2 + width, unsignedAt(start + 2, width)};
    }
    if (body.count > m_end / unitSize)
        fail(QStringLiteral("an object reaches beyond the objects"));
    return failed() || !holds(body.start, body.count * unitSize) ? Body{} : body;
}

bool BinaryPropertyListBytes::holds(quint64 start, quint64 length)
{
    if (start <= m_end && length <= m_end - start)
        return true;
    fail(QStringLiteral("an object reaches beyond the objects"));
    return false;
}

void BinaryPropertyListBytes::fail(const QString& fault)
{
    if (!failed())
        m_fault = fault;
}

std::optional<Error> BinaryPropertyListBytes::error() const
{
    return failed() ? std::optional(propertyListReadError(m_fault, m_faultCode)) : std::nullopt;
}

} // namespace havrel
