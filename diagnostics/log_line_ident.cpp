// SPDX-License-Identifier: MIT
#include "diagnostics/log_line_ident.h"

#include "diagnostics/log_line_pin.h"
#include "foundation/pooled_allocator.h"

#include <QStringList>

#include <utility>

namespace havrel {
namespace {

const bool kTextRegistered = QMetaType::registerConverter<LogLineIdentPtr, QString>(
    [](const LogLineIdentPtr& line) { return line ? line->description() : QStringLiteral("(null)"); });

// The hash mixes each sequence number in at one of sixteen places, three bits apart, from the top down.
constexpr unsigned kTopShift = 48;
constexpr unsigned kShiftStep = 3;

std::uint64_t numberIn(QStringView digits)
{
    std::uint64_t number = 0;
    for (const QChar digit : digits)
        number = number * 10 + (static_cast<std::uint64_t>(digit.unicode()) - u'0');
    return number;
}

/// Lets go of an ancestor. Chains read from text can be millions long, so one that dies from its end upwards must not
/// nest a destructor in a destructor: the inner ones leave their parent to the outermost.
void release(LogLineIdentPtr doomed)
{
    thread_local LogLineIdentPtr* t_next = nullptr;
    if (t_next) {
        *t_next = std::move(doomed);
        return;
    }
    LogLineIdentPtr next;
    t_next = &next;
    while (doomed) {
        doomed.reset();
        doomed = std::exchange(next, nullptr);
    }
    t_next = nullptr;
}

} // namespace

LogLineIdent::LogLineIdent(LogLineIdentPtr parent, std::uint64_t sequence)
    : m_parent(std::move(parent))
    , m_sequence(sequence)
    , m_depth(m_parent ? m_parent->m_depth + 1 : 0)
{
}

LogLineIdent::~LogLineIdent()
{
    release(std::move(m_parent));
}

LogLineIdentPtr LogLineIdent::logLineIdentifierFromString(const QString& text)
{
    LogLineIdentPtr line;
    for (qsizetype start = 0; start < text.size();) {
        qsizetype end = text.indexOf(u'.', start);
        if (end < 0)
            end = text.size();
        line = std::make_shared<LogLineIdent>(std::move(line), numberIn(QStringView(text).sliced(start, end - start)));
        start = end + 1;
    }
    return line;
}

std::uint64_t LogLineIdent::application() const
{
    const LogLineIdent* line = this;
    while (line->m_parent)
        line = line->m_parent.get();
    return line->m_sequence;
}

void LogLineIdent::noteClassification(LogClassification classification) noexcept
{
    if (classification < LogClassification::Plain)
        return;
    const std::uint32_t bit = std::uint32_t{1} << (static_cast<unsigned>(classification) % 32);
    if ((classifications() & bit) == 0) // most of the time it is set, and looking is cheaper
        m_classifications.fetch_or(bit, std::memory_order_relaxed);
}

LogLineIdentPtr LogLineIdent::next()
{
    const std::uint64_t sequence = m_subsequence.fetch_add(1, std::memory_order_relaxed) + 1;
    return std::allocate_shared<LogLineIdent>(PooledAllocator<LogLineIdent>(), shared_from_this(), sequence);
}

LogLineIdentPtr LogLineIdent::pinned()
{
    return std::make_shared<LogLinePin>(*this);
}

LogLineIdentPtr LogLineIdent::parentIdentifierWithDepth(std::uint64_t depth)
{
    LogLineIdentPtr line = shared_from_this();
    while (line->m_depth > depth)
        line = line->m_parent;
    return line;
}

void LogLineIdent::appendIdentifierToString(QString& text) const
{
    QStringList components;
    for (const LogLineIdent* line = this; line; line = line->m_parent.get())
        components.prepend(QString::number(line->m_sequence));
    text += components.join(u'.');
}

bool LogLineIdent::containsIdentifier(const LogLineIdent& other) const
{
    const LogLineIdent* line = &other;
    while (line->m_depth > m_depth)
        line = line->m_parent.get();
    return isEqual(*line);
}

bool LogLineIdent::isEqual(const LogLineIdent& other) const
{
    return compare(other) == std::strong_ordering::equal;
}

std::strong_ordering LogLineIdent::compare(const LogLineIdent& other) const
{
    if (m_depth != other.m_depth)
        return m_depth <=> other.m_depth;
    auto order = std::strong_ordering::equal;
    const LogLineIdent* left = this;
    const LogLineIdent* right = &other;
    // Bottom up; a difference further up counts more. Above a common ancestor there is none.
    while (left != right) {
        if (left->m_sequence != right->m_sequence)
            order = left->m_sequence <=> right->m_sequence;
        left = left->m_parent.get();
        right = right->m_parent.get();
    }
    return order;
}

std::uint64_t LogLineIdent::hash() const
{
    std::uint64_t mixed = m_sequence * 4;
    unsigned shift = kTopShift;
    for (const LogLineIdent* line = this; line; line = line->m_parent.get()) {
        mixed ^= line->m_sequence << shift;
        shift = shift > kShiftStep ? shift - kShiftStep : kTopShift;
    }
    return mixed;
}

QString LogLineIdent::description() const
{
    QString text;
    appendIdentifierToString(text);
    return text;
}

} // namespace havrel
