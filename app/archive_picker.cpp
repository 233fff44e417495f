// SPDX-License-Identifier: MIT
#include "app/archive_picker.h"

namespace havrel {

ArchivePicker::~ArchivePicker() = default;

} // namespace havrel
