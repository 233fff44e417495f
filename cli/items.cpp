// SPDX-License-Identifier: MIT
#include "cli/items.h"

#include "cli/command.h"
#include "cli/report.h"
#include "foundation/error.h"
#include "platform/input_records.h"

#include <cerrno>

namespace havrel::cli {
namespace {

constexpr QByteArrayView kScheme = "file:";

ItemPath fault(const char* text)
{
    return {{}, QString::fromLatin1(text)};
}

bool isHexadecimalDigit(char byte)
{
    return (byte >= '0' && byte <= '9') || (byte >= 'a' && byte <= 'f') || (byte >= 'A' && byte <= 'F');
}

/// Whether two digits follow each "%".
bool isWellEncoded(const QByteArray& text)
{
    for (qsizetype at = text.indexOf('%'); at >= 0; at = text.indexOf('%', at + 1))
        if (at + 2 >= text.size() || !isHexadecimalDigit(text[at + 1]) || !isHexadecimalDigit(text[at + 2]))
            return false;
    return true;
}

ItemPath pathOfURI(const QByteArray& uri)
{
    QByteArray path = uri.mid(kScheme.size());
    if (path.startsWith("//")) {
        const qsizetype root = path.indexOf('/', 2);
        const QByteArray host = path.mid(2, root < 0 ? -1 : root - 2);
        if (!host.isEmpty() && host.compare("localhost", Qt::CaseInsensitive) != 0)
            return fault("this URI names an item on another computer");
        path = root < 0 ? QByteArray() : path.mid(root);
    }
    if (!path.startsWith('/'))
        return fault("this URI has no absolute path (a path that begins with \"file:\" is written ./file:...)");
    if (path.contains('?') || path.contains('#'))
        return fault("this URI has a query or a fragment (in a name, ? is written %3F and # is written %23)");
    if (!isWellEncoded(path))
        return fault("this URI has a % without two hexadecimal digits");
    const QByteArray decoded = QByteArray::fromPercentEncoding(path);
    if (decoded.contains('\0'))
        return fault("this URI holds a NUL, which no path can");
    return {decoded, {}};
}

} // namespace

QByteArray withoutTrailingSlashes(QByteArray path)
{
    while (path.size() > 1 && (path.endsWith('/') || path.endsWith("/.")))
        path.chop(1);
    return path;
}

ItemPath pathOfItem(const QByteArray& item)
{
    ItemPath result = item.startsWith(kScheme) ? pathOfURI(item) : ItemPath{item, {}};
    if (result.fault.isNull() && result.path.isEmpty())
        return fault("an empty name names no item");
    result.path = withoutTrailingSlashes(result.path);
    return result;
}

void Items::define(Command& command, const char* placeholder, const char* help)
{
    command.operands(placeholder, m_operands, help);
    command.value("--items-from", "FILE", m_from, "Further items, separated by NUL, from FILE; - is standard input");
}

void Items::forEach(Report& report, const std::function<void(const QByteArray& path)>& act) const
{
    if (m_operands.isEmpty() && !m_from)
        throw WrongUsage("no item given");
    const auto actOn = [&](const QByteArray& item) {
        if (const ItemPath found = pathOfItem(item); found.fault.isNull())
            act(found.path);
        else
            report.failure(item, found.fault);
    };
    for (const QByteArray& operand : m_operands)
        actOn(operand);
    if (!m_from)
        return;
    platform::InputRecords records(*m_from, '\0');
    while (const std::optional<QByteArray> item = records.next())
        actOn(*item);
    if (records.error() != 0)
        report.failure(*m_from, systemErrorText(records.error()));
}

} // namespace havrel::cli
