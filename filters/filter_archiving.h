// SPDX-License-Identifier: MIT
#pragma once

namespace havrel {

/// Adds the filter definitions to the table of archivable classes, under their own names; in archives they travel as
/// std::shared_ptr<FilterDefinition>. Happens by itself before main in every program that has them; once is enough.
/// \return true.
///
/// Threads: any thread.
bool registerFilterDefinitions();

} // namespace havrel
