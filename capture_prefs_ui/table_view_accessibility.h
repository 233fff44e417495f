// SPDX-License-Identifier: MIT
#pragma once

namespace havrel {

class TableView;

// How assistive technology sees tables: as a list, whose rows are list items in their order, with their fields.
//
// Threads: the main thread only.

/// Makes the interfaces of tables and rows known to the toolkit; once for the process, however often it is called.
void installTableViewAccessibility();
/// Says at which row the keyboard is.
void tellCurrentRow(TableView& table);
/// Says that other rows are selected.
void tellSelection(TableView& table);

} // namespace havrel
