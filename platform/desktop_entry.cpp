// SPDX-License-Identifier: MIT
#include "platform/desktop_entry.h"

#include <iterator>

namespace havrel::platform {
namespace {

constexpr QByteArrayView kGroup = "[Desktop Entry]";

char unescaped(char letter)
{
    switch (letter) {
    case 's':
        return ' ';
    case 'n':
        return '\n';
    case 't':
        return '\t';
    case 'r':
        return '\r';
    case '\\':
        return '\\';
    default:
        return 0;
    }
}

/// The value of a key, its escapes resolved; a backslash before another character stays.
QByteArray valueOf(QByteArrayView raw)
{
    QByteArray value;
    for (qsizetype at = 0; at < raw.size(); ++at) {
        const char escaped = raw[at] == '\\' && at + 1 < raw.size() ? unescaped(raw[at + 1]) : char(0);
        value += escaped != 0 ? escaped : raw[at];
        at += escaped != 0 ? 1 : 0;
    }
    return value;
}

struct TextKey
{
    QByteArrayView key;
    QByteArray DesktopEntry::*field;
};

const TextKey kTextKeys[] = {
    {"Name", &DesktopEntry::name},
    {"Icon", &DesktopEntry::icon},
    {"Exec", &DesktopEntry::exec},
    {"TryExec", &DesktopEntry::tryExec},
    {"Path", &DesktopEntry::workingPath},
};

struct FlagKey
{
    QByteArrayView key;
    QByteArrayView set;
    bool DesktopEntry::*field;
};

const FlagKey kFlagKeys[] = {
    {"Hidden", "true", &DesktopEntry::hidden},
    {"DBusActivatable", "true", &DesktopEntry::busActivatable},
    {"Type", "Application", &DesktopEntry::isApplication},
};

void take(DesktopEntry& entry, QByteArrayView key, const QByteArray& value)
{
    for (const TextKey& each : kTextKeys)
        if (each.key == key)
            entry.*each.field = value;
    for (const FlagKey& each : kFlagKeys)
        if (each.key == key)
            entry.*each.field = value == each.set;
}

void takeLine(DesktopEntry& entry, QByteArrayView line)
{
    const qsizetype equals = line.indexOf('=');
    if (equals > 0 && !line.startsWith('#'))
        take(entry, line.first(equals).trimmed(), valueOf(line.sliced(equals + 1).trimmed()));
}

} // namespace

std::optional<DesktopEntry> parseDesktopEntry(QByteArrayView contents)
{
    DesktopEntry entry;
    bool found = false;
    bool inGroup = false;
    while (!contents.isEmpty()) {
        const qsizetype newline = contents.indexOf('\n');
        const QByteArrayView line = contents.first(newline < 0 ? contents.size() : newline).trimmed();
        contents = contents.sliced(newline < 0 ? contents.size() : newline + 1);
        if (line.startsWith('[')) {
            inGroup = line == kGroup;
            found = found || inGroup;
        } else if (inGroup) {
            takeLine(entry, line);
        }
    }
    return found ? std::optional(entry) : std::nullopt;
}

} // namespace havrel::platform
