// SPDX-License-Identifier: MIT
#include "platform/mount_table.h"

#include "platform/file_contents.h"
#include "platform/item_calls.h"
#include "platform/owned_descriptor.h"

#include <QHash>
#include <QMultiHash>

#include <array>
#include <cerrno>
#include <optional>
#include <utility>

#include <fcntl.h>

namespace havrel::platform {
namespace {

constexpr const char* kMountTable = "/proc/self/mountinfo";
constexpr const char* kUserMountTable = "/run/mount/utab";
constexpr qsizetype kLongestUserMountTable = qsizetype{16} * 1024 * 1024;
constexpr qsizetype kChunk = qsizetype{64} * 1024; // bytes asked for at a time: most tables come in one
constexpr std::array<const char*, 2> kHidingOptions{"x-gvfs-hide", "x-gdu.hide"};
constexpr qsizetype kEscapeLength = 4; // "\040"

bool isOctal(char character)
{
    return character >= '0' && character <= '7';
}

/// The byte that an escape stands for.
std::optional<char> escapedByte(QByteArrayView escape)
{
    if (escape.size() < kEscapeLength || escape[0] != '\\' || !isOctal(escape[1]) || !isOctal(escape[2]) ||
        !isOctal(escape[3]))
        return std::nullopt;
    const int value = (escape[1] - '0') * 64 + (escape[2] - '0') * 8 + (escape[3] - '0');
    return value < 256 ? std::optional(static_cast<char>(value)) : std::nullopt;
}

/// Takes the fields of a line one after the other. A field may be empty.
class Fields
{
public:
    explicit Fields(QByteArrayView line)
        : m_rest(line)
    {
    }

    /// The next field; null when there is none.
    QByteArrayView next()
    {
        if (m_atEnd)
            return {};
        const qsizetype end = m_rest.indexOf(' ');
        m_atEnd = end < 0;
        const QByteArrayView field = m_rest.first(m_atEnd ? m_rest.size() : end);
        m_rest = m_atEnd ? QByteArrayView() : m_rest.sliced(end + 1);
        return field;
    }
    QByteArray nextText() { return unescapedMountText(next()); }
    [[nodiscard]] bool atEnd() const { return m_atEnd; }

private:
    QByteArrayView m_rest;
    bool m_atEnd = false;
};

bool readDevice(QByteArrayView text, MountEntry& entry)
{
    const qsizetype colon = text.indexOf(':');
    if (colon < 0)
        return false;
    bool majorKnown = false;
    bool minorKnown = false;
    entry.major = text.first(colon).toUInt(&majorKnown);
    entry.minor = text.sliced(colon + 1).toUInt(&minorKnown);
    return majorKnown && minorKnown;
}

std::optional<MountEntry> parseEntry(QByteArrayView line)
{
    Fields fields(line);
    MountEntry entry;
    bool idKnown = false;
    bool parentKnown = false;
    entry.id = fields.next().toULongLong(&idKnown);
    entry.parent = fields.next().toULongLong(&parentKnown);
    if (!readDevice(fields.next(), entry) || !idKnown || !parentKnown)
        return std::nullopt;
    entry.root = fields.nextText();
    entry.mountPoint = fields.nextText();
    entry.options = fields.next().toByteArray();
    while (!fields.atEnd() && fields.next() != "-") {
    }
    if (fields.atEnd() || entry.mountPoint.isEmpty())
        return std::nullopt;
    entry.type = fields.nextText();
    entry.source = fields.nextText();
    entry.superOptions = fields.next().toByteArray();
    return entry;
}

template<class Take>
void forEachLine(QByteArrayView text, Take take)
{
    while (!text.isEmpty()) {
        const qsizetype end = text.indexOf('\n');
        take(text.first(end < 0 ? text.size() : end));
        text = end < 0 ? QByteArrayView() : text.sliced(end + 1);
    }
}

/// Finds which mounts cover others. The way to a mount goes from the outermost one through all that carry it, and
/// leaves each at the place of the next: whatever else is mounted on a carrier, there or above, is on the way. What is
/// mounted further inside of a carrier is not: the way has left it by then.
class Coverage
{
public:
    explicit Coverage(const std::vector<MountEntry>& table)
        : m_table(table)
    {
        for (std::size_t row = 0; row < table.size(); ++row) {
            m_byId.insert(table[row].id, row);
            m_byPlace.insert({table[row].parent, table[row].mountPoint}, row);
        }
    }

    [[nodiscard]] bool isCovered(std::size_t row) const
    {
        if (isHidden(row, m_table[row].mountPoint, {}))
            return true;
        for (std::size_t steps = 0; steps < m_table.size(); ++steps) { // a circle would be a broken table
            const auto carrier = m_byId.find(m_table[row].parent);
            if (carrier == m_byId.end())
                return false;
            if (isHidden(*carrier, m_table[row].mountPoint, row))
                return true;
            row = *carrier;
        }
        return false;
    }

private:
    /// Whether something on \p carrier hides \p place, which \p next is mounted on if anything is: of two on one place
    /// the later one is seen.
    [[nodiscard]] bool isHidden(std::size_t carrier, QByteArray place, std::optional<std::size_t> next) const
    {
        for (bool isAbove = false;; isAbove = true) {
            const auto [begin, end] = m_byPlace.equal_range({m_table[carrier].id, place});
            for (auto at = begin; at != end; ++at)
                if (*at != carrier && (!next || *at > *next || (isAbove && *at != *next)))
                    return true;
            const qsizetype slash = place.lastIndexOf('/');
            if (place.size() < 2 || slash < 0)
                return false;
            place.truncate(slash == 0 ? 1 : slash);
        }
    }

    const std::vector<MountEntry>& m_table;
    QHash<std::uint64_t, std::size_t> m_byId;
    QMultiHash<std::pair<std::uint64_t, QByteArray>, std::size_t> m_byPlace;
};

/// Reads on to the end, so that the kernel writes as much as it can at once. Answers 0 or an errno value.
int readToEnd(int descriptor, QByteArray& text)
{
    for (;;) {
        const qsizetype size = text.size();
        text.resize(size + kChunk);
        const ssize_t count = itemCalls().pread(descriptor, text.data() + size, kChunk, size);
        const int error = errno;
        text.resize(size + (count > 0 ? count : 0));
        if (count == 0)
            return 0;
        if (count < 0 && error != EINTR)
            return error;
    }
}

} // namespace

QByteArray unescapedMountText(QByteArrayView text)
{
    QByteArray bytes;
    bytes.reserve(text.size());
    for (qsizetype at = 0; at < text.size();) {
        const auto byte = escapedByte(text.sliced(at));
        bytes += byte.value_or(text[at]);
        at += byte ? kEscapeLength : 1;
    }
    return bytes;
}

std::vector<MountEntry> parseMountTable(QByteArrayView text)
{
    std::vector<MountEntry> entries;
    forEachLine(text, [&](QByteArrayView line) {
        if (auto entry = parseEntry(line))
            entries.push_back(*std::move(entry));
    });
    return entries;
}

std::vector<MountEntry> uncoveredMounts(const std::vector<MountEntry>& table)
{
    const Coverage coverage(table);
    std::vector<MountEntry> uncovered;
    for (std::size_t row = 0; row < table.size(); ++row)
        if (!coverage.isCovered(row))
            uncovered.push_back(table[row]);
    return uncovered;
}

bool hasMountOption(QByteArrayView options, QByteArrayView name)
{
    for (;;) {
        const qsizetype end = options.indexOf(',');
        if (options.first(end < 0 ? options.size() : end) == name)
            return true;
        if (end < 0)
            return false;
        options = options.sliced(end + 1);
    }
}

QByteArrayList hiddenMountPoints(QByteArrayView text)
{
    QByteArrayList hidden;
    forEachLine(text, [&](QByteArrayView line) {
        QByteArray target;
        bool hides = false;
        for (Fields fields(line); !fields.atEnd();) {
            const QByteArrayView field = fields.next();
            if (field.startsWith("TARGET="))
                target = unescapedMountText(field.sliced(qsizetype(sizeof("TARGET=")) - 1));
            else if (field.startsWith("OPTS="))
                for (const char* option : kHidingOptions)
                    hides = hides || hasMountOption(field.sliced(qsizetype(sizeof("OPTS=")) - 1), option);
        }
        if (hides && !target.isEmpty())
            hidden << target;
    });
    return hidden;
}

MountTable readMountTable()
{
    MountTable table;
    const OwnedDescriptor file(itemCalls().openat(AT_FDCWD, kMountTable, O_RDONLY, 0));
    if (!file.isOpen()) {
        table.openError = errno;
        return table;
    }
    QByteArray text;
    table.readError = readToEnd(file.get(), text);
    if (table.readError == 0)
        table.entries = parseMountTable(text);
    return table;
}

QByteArrayList readHiddenMountPoints()
{
    return hiddenMountPoints(readFile(kUserMountTable, kLongestUserMountTable).bytes);
}

} // namespace havrel::platform
