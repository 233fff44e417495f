// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/observing.h"
#include "tests/foundation/observation_journal.h"
#include "tests/foundation/observed_book.h"

#include <gtest/gtest.h>

namespace havrel {

/// A book to observe, somebody else to observe it for, and a journal of what the blocks were told, which outlives both.
class ObservationFixture : public ::testing::Test
{
protected:
    static constexpr auto kLater = ObservationOptions::NoInitialCall;

    ObservationJournal m_journal;
    ObservedBook m_owner;
    ObservedBook m_book;
};

} // namespace havrel
