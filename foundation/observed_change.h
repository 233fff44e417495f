// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/index_set.h"

#include <QVariant>

namespace havrel {

/// What happened to an observed property. The numbers are the platform's.
enum class ChangeKind { Setting = 1, Insertion = 2, Removal = 3, Replacement = 4 };

/// One change of one property, as its observers are told of it.
struct ObservedChange
{
    ChangeKind kind = ChangeKind::Setting;
    QVariant oldValue{};  ///< Setting: the whole value before; Removal, Replacement: the elements that went, ascending
    QVariant newValue{};  ///< Setting: the whole value now; Insertion, Replacement: the elements that came, ascending
    IndexSet indexes{};   ///< Insertion: where the elements are now; Removal: where they were; Setting: empty
    bool isPrior = false; ///< announces a change that has not happened yet
};

} // namespace havrel
