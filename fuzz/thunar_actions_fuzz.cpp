// SPDX-License-Identifier: MIT
#include "integrations/thunar_actions.h"

#include "integrations/thunar_actions_layout.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

using namespace havrel::integrations;

void require(bool holds)
{
    if (!holds)
        std::abort();
}

QByteArrayList foreignActions(const QByteArray& file)
{
    const ThunarActionsLayout layout = layoutOfThunarActions(file);
    require(layout.fault.isNull());
    QByteArrayList actions;
    for (const ThunarActionsLayout::Action& each : layout.actions)
        if (!each.id.startsWith(QLatin1String("com.havrel.Service.")))
            actions.append(layout.text.mid(each.from, each.to - each.from).toUtf8());
    return actions;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray file(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const ThunarActionsText with = withHavrelActions(file);
    const ThunarActionsText without = withoutHavrelActions(file);
    require(with.fault == without.fault);
    if (!with.fault.isNull())
        return 0;
    require(countOfHavrelActions(with.bytes) == thunarActions().size());
    require(countOfHavrelActions(without.bytes) == 0);
    require(foreignActions(with.bytes) == foreignActions(file));
    require(foreignActions(without.bytes) == foreignActions(file));
    require(withHavrelActions(with.bytes).bytes == with.bytes);
    require(withoutHavrelActions(without.bytes).bytes == without.bytes);
    if (countOfHavrelActions(file) == 0 && !layoutOfThunarActions(file).isRootEmptyElement())
        require(withoutHavrelActions(with.bytes).bytes == file);
    return 0;
}
