// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace havrel {

class Error;

/// The bytes of a binary property list with the numbers of its trailer, and reading in them that never leaves them.
///
/// The first fault is kept; whoever notes one goes on with empty values until the reading ends.
///
/// Threads: one thread at a time.
class BinaryPropertyListBytes
{
public:
    /// What stands behind an object's marker: where, and how many units.
    struct Body
    {
        quint64 start = 0;
        quint64 count = 0;
    };

    /// Reads the trailer; a damaged one is a fault.
    explicit BinaryPropertyListBytes(const QByteArray& bytes);

    [[nodiscard]] quint64 count() const noexcept { return m_count; } ///< of objects
    [[nodiscard]] quint64 top() const noexcept { return m_top; }     ///< index of the outermost object
    [[nodiscard]] quint64 referenceSize() const noexcept { return m_referenceSize; }

    /// Where the object of that index, which must be less than count(), begins; nothing, and a fault, when that is not
    /// among the objects.
    [[nodiscard]] std::optional<quint64> startOf(quint64 index);
    /// The content behind the marker at \p start; a fault when it reaches beyond the objects.
    [[nodiscard]] Body bodyAt(quint64 start, quint64 unitSize);
    /// Whether so many bytes lie there before the objects end; a fault when not.
    [[nodiscard]] bool holds(quint64 start, quint64 length);

    /// Unchecked: the caller has asked holds() or bodyAt().
    [[nodiscard]] quint64 unsignedAt(quint64 start, quint64 width) const
    {
        quint64 number = 0;
        for (quint64 i = 0; i < width; ++i)
            number = number << 8 | byteAt(start + i);
        return number;
    }
    [[nodiscard]] quint8 byteAt(quint64 at) const { return static_cast<quint8>(m_bytes[static_cast<qsizetype>(at)]); }
    [[nodiscard]] const char* pointerTo(quint64 at) const { return m_bytes.constData() + at; }

    void fail(const QString& fault);
    [[nodiscard]] bool failed() const noexcept { return !m_fault.isNull(); }
    /// The first fault as an error; none yet is no error.
    [[nodiscard]] std::optional<Error> error() const;

private:
    void readTrailer();
    [[nodiscard]] bool trailerHolds(quint64 size) const;

    const QByteArray m_bytes;
    quint64 m_offsetSize = 0;
    quint64 m_referenceSize = 0;
    quint64 m_count = 0;
    quint64 m_top = 0;
    quint64 m_end = 0; // of the objects: where the offset table begins
    QString m_fault;
    qint64 m_faultCode = 0;
};

} // namespace havrel
