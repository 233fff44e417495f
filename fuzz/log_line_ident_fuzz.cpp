// SPDX-License-Identifier: MIT
#include "diagnostics/log_line_ident.h"

#include <QByteArray>

#include <cstddef>
#include <cstdint>

namespace {

using havrel::LogLineIdent;
using havrel::LogLineIdentPtr;

void require(bool law)
{
    if (!law)
        __builtin_trap();
}

void checkRoundTrip(const LogLineIdent& line)
{
    const QString text = line.description();
    const LogLineIdentPtr again = LogLineIdent::logLineIdentifierFromString(text);
    require(again && again->isEqual(line));
    require(again->hash() == line.hash());
    require(again->description() == text);
    require(again->depth() == line.depth() && again->application() == line.application());
}

void checkOrder(const LogLineIdent& left, const LogLineIdent& right)
{
    const auto order = left.compare(right);
    require(order == (0 <=> right.compare(left)));
    require(left.isEqual(right) == (order == 0));
    require(order != 0 || left.hash() == right.hash());
    require(left.depth() == right.depth() || (left.depth() < right.depth()) == (order < 0));
    require(!(left.containsIdentifier(right) && right.containsIdentifier(left)) || order == 0);
}

void checkFamily(const LogLineIdentPtr& line)
{
    const LogLineIdentPtr child = line->next();
    require(line->containsIdentifier(*child) && !child->containsIdentifier(*line));
    require(child->parentIdentifierWithDepth(line->depth()) == line);
    require(line->compare(*child) < 0);
    require(line->pinned()->isEqual(*line));
}

} // namespace

// The bytes are two texts with a newline between them.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const LogLineIdentPtr left = LogLineIdent::logLineIdentifierFromString(text.section(u'\n', 0, 0));
    const LogLineIdentPtr right = LogLineIdent::logLineIdentifierFromString(text.section(u'\n', 1));
    for (const LogLineIdentPtr& line : {left, right}) {
        if (!line)
            continue;
        checkRoundTrip(*line);
        checkFamily(line);
    }
    if (left && right)
        checkOrder(*left, *right);
    return 0;
}
