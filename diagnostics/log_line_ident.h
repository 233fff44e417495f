// SPDX-License-Identifier: MIT
#pragma once

#include "diagnostics/log_classification.h"

#include <QMetaType>
#include <QString>

#include <atomic>
#include <compare>
#include <cstdint>
#include <memory>

namespace havrel {

class Decoder;
class Encoder;
class LogLineIdent;
using LogLineIdentPtr = std::shared_ptr<LogLineIdent>;

/// The identity of a log line: a chain of sequence numbers, written "6.73946250.4312.17.2" (application, day stamp,
/// process id, line, line below it). Every logging call answers the identity of the line it wrote, and further lines
/// are nested under it. Always held by a shared pointer.
///
/// Threads: any thread.
class LogLineIdent : public std::enable_shared_from_this<LogLineIdent>
{
public:
    /// \selector initExtending:withID:
    LogLineIdent(LogLineIdentPtr parent, std::uint64_t sequence);
    virtual ~LogLineIdent();
    LogLineIdent(const LogLineIdent&) = delete;
    LogLineIdent& operator=(const LogLineIdent&) = delete;
    LogLineIdent(LogLineIdent&&) = delete;
    LogLineIdent& operator=(LogLineIdent&&) = delete;

    /// The chain that \p text stands for; null for the empty text. Takes any character as a digit: its code minus that
    /// of "0", wrapping at 64 bits. An empty component is 0; a trailing "." adds none.
    /// \selector logLineIdentifierFromString:
    [[nodiscard]] static LogLineIdentPtr logLineIdentifierFromString(const QString& text);

    [[nodiscard]] std::uint64_t depth() const noexcept { return m_depth; } ///< number of ancestors. \selector depth
    [[nodiscard]] const LogLineIdentPtr& parent() const noexcept { return m_parent; } ///< \selector parent
    [[nodiscard]] std::uint64_t application() const; ///< the top's sequence. \selector application
    [[nodiscard]] std::uint64_t sequence() const noexcept { return m_sequence; } ///< \selector sequence
    /// Children issued so far. \selector count
    [[nodiscard]] std::uint64_t count() const noexcept { return m_subsequence.load(std::memory_order_relaxed); }
    /// Bit c is set when a line of classification c was logged directly under this one.
    [[nodiscard]] std::uint32_t classifications() const noexcept
    {
        return m_classifications.load(std::memory_order_relaxed);
    }
    /// Sets the bit of a classification that is not negative.
    void noteClassification(LogClassification classification) noexcept;

    /// A new child; the first is 1. \selector next
    [[nodiscard]] virtual LogLineIdentPtr next();
    /// A pin: an identity whose next() is itself. \selector pinned
    [[nodiscard]] virtual LogLineIdentPtr pinned();
    /// The ancestor at \p depth, the receiver if it is not deeper. \selector parentIdentifierWithDepth:
    [[nodiscard]] LogLineIdentPtr parentIdentifierWithDepth(std::uint64_t depth);
    void appendIdentifierToString(QString& text) const; ///< \selector appendIdentifierToString:
    /// Whether \p other is the receiver or one of its descendants. \selector containsIdentifier:
    [[nodiscard]] bool containsIdentifier(const LogLineIdent& other) const;
    /// Whether both chains have the same sequence numbers; pins count like any other. \selector isEqual:
    [[nodiscard]] bool isEqual(const LogLineIdent& other) const;
    /// Parents first; a missing parent orders before a present one, so that every shallower identity orders before
    /// every deeper one. \selector compare:
    [[nodiscard]] std::strong_ordering compare(const LogLineIdent& other) const;
    [[nodiscard]] std::uint64_t hash() const;  ///< \selector hash
    [[nodiscard]] QString description() const; ///< \selector description

    /// Keyed: "parent", "classmap", "seq", "subseq"; unkeyed: the parent, then classifications, sequence and
    /// subsequence as 32-bit numbers. \selector encodeWithCoder:
    void encodeWithCoder(Encoder& encoder) const;
    /// \selector initWithCoder:
    [[nodiscard]] static LogLineIdentPtr withCoder(Decoder& decoder);

protected:
    /// What an archive holds of an identity.
    struct Fields
    {
        LogLineIdentPtr parent;
        std::uint32_t classifications = 0;
        std::uint64_t sequence = 0;
        std::uint64_t subsequence = 0;
    };

    [[nodiscard]] static Fields fieldsFrom(Decoder& decoder);
    /// Continues counting where the archived identity stood.
    void restore(const Fields& fields) noexcept;

private:
    LogLineIdentPtr m_parent; // never changes but when the receiver dies
    const std::uint64_t m_sequence;
    const std::uint64_t m_depth;
    std::atomic<std::uint64_t> m_subsequence = 0;
    std::atomic<std::uint32_t> m_classifications = 0;
};

} // namespace havrel

Q_DECLARE_METATYPE(havrel::LogLineIdentPtr)
