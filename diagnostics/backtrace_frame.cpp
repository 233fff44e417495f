// SPDX-License-Identifier: MIT
#include "diagnostics/backtrace_frame.h"

namespace havrel {
namespace {

/// An address in eighteen columns.
QString addressText(std::uintptr_t address)
{
    return (QStringLiteral("0x") + QString::number(address, 16)).rightJustified(18);
}

} // namespace

QString backtraceFrameText(std::uintptr_t address, const std::optional<platform::SymbolLocation>& location)
{
    if (!location)
        return addressText(address) + QStringLiteral(": (unknown image)");
    const QString name = location->symbolName.isEmpty() ? QStringLiteral("unknown") : location->symbolName;
    return addressText(address) + QStringLiteral(": ") + addressText(location->symbolAddress) + u' ' + name +
           QStringLiteral(" (") + location->imagePath + u'@' + addressText(location->imageBase) + u')';
}

} // namespace havrel
