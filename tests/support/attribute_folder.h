// SPDX-License-Identifier: MIT
#pragma once

#include "platform/extended_attributes.h"
#include "tests/support/temporary_tree.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace havrel::tests {

/// A test with a temporary folder on a file system that keeps attributes of users; skipped where there is none.
class WithAttributes : public ::testing::Test
{
protected:
    void SetUp() override
    {
        const QByteArray root = QByteArray::fromStdString(m_tree.root());
        if (platform::writeAttribute(root, "user.havrel.probe", "") == ENOTSUP)
            GTEST_SKIP() << "the file system of $TMPDIR keeps no attributes of users";
        ASSERT_EQ(platform::removeAttribute(root, "user.havrel.probe"), 0);
    }

    const TemporaryTree m_tree{"file", "folder/"};
};

} // namespace havrel::tests
