// SPDX-License-Identifier: MIT
#pragma once

#include "platform/journal.h"

#include <utility>

namespace havrel::tests {

/// Puts something else in the place of the system journal until the object goes.
class ReplacedJournal
{
public:
    explicit ReplacedJournal(platform::JournalSend send) { platform::journalSend() = std::move(send); }
    ~ReplacedJournal() { platform::journalSend() = platform::systemJournalSend(); }
    ReplacedJournal(const ReplacedJournal&) = delete;
    ReplacedJournal& operator=(const ReplacedJournal&) = delete;
    ReplacedJournal(ReplacedJournal&&) = delete;
    ReplacedJournal& operator=(ReplacedJournal&&) = delete;
};

} // namespace havrel::tests
