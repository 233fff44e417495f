// SPDX-License-Identifier: MIT
#include "cli/items.h"

#include "cli/command.h"
#include "cli/report.h"
#include "foundation/error.h"
#include "platform/input_records.h"

namespace havrel::cli {

ItemPath pathOfItem(const QByteArray& item)
{
    ItemPath result = item.startsWith("file:") ? pathOfFileURI(item) : ItemPath{item, {}};
    if (result.fault.isNull() && result.path.isEmpty())
        return {{}, QStringLiteral("an empty name names no item")};
    result.path = withoutTrailingSlashes(result.path);
    return result;
}

void Items::define(Command& command, const char* placeholder, const char* help)
{
    command.operands(placeholder, m_operands, help);
    command.value("--items-from", "FILE", m_from, "Further items, separated by NUL, from FILE; - is standard input");
}

QByteArray Items::takeFirst(const char* what)
{
    if (m_operands.isEmpty())
        throw WrongUsage(QByteArray("no ") + what + " given");
    return m_operands.takeFirst();
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
