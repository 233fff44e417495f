// SPDX-License-Identifier: MIT
#pragma once

#include <QList>

#include <memory>

namespace havrel {

class PatternFilterDef;

using PatternFilterDefPtr = std::shared_ptr<PatternFilterDef>;
using PatternFilterDefs = QList<PatternFilterDefPtr>; ///< none of them null

} // namespace havrel
