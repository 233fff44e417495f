// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/attribute_folder.h"
#include "tests/support/outside_program.h"
#include "tests/support/program_run.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace havrel::tests {

/// A folder with items, in which the program is run.
class Captureprefs : public WithAttributes
{
protected:
    static constexpr const char* kName = "user.com.havrel.prefs";

    void set(const QByteArrayList& options, const QByteArray& item) const
    {
        const RunResult result =
            run(QByteArrayList{"captureprefs", "set"} + options + QByteArrayList{"--", item}, m_here);
        ASSERT_EQ(result.status, 0) << result.errors.constData();
        ASSERT_EQ(result.errors, "");
        ASSERT_EQ(result.output, "");
    }
    void clear(const QByteArray& item) const
    {
        ASSERT_EQ(run({"captureprefs", "clear", "--", item}, m_here).status, 0);
    }

    void put(const char* item, const QByteArray& bytes) const
    {
        ASSERT_EQ(platform::writeAttribute(m_tree.bytes(item), kName, bytes), 0);
    }
    void putFromPython(const char* item, const QByteArray& dictionary) const
    {
        put(item,
            outputOfPython("import datetime, plistlib, sys\n"
                           "sys.stdout.buffer.write(plistlib.dumps(eval(sys.stdin.read()), fmt=plistlib.FMT_BINARY))",
                           dictionary));
    }

    [[nodiscard]] platform::AttributeValue attributeOf(std::string_view item) const
    {
        return platform::readAttribute(m_tree.bytes(item), kName);
    }
    [[nodiscard]] QByteArray storedAsPythonReadsIt(const char* item) const
    {
        const QByteArray bytes = outputOfProgram(QStringLiteral("getfattr"),
                                                 {QStringLiteral("--only-values"),
                                                  QStringLiteral("--absolute-names"),
                                                  QStringLiteral("-n"),
                                                  QString::fromLatin1(kName),
                                                  QString::fromUtf8(m_tree.bytes(item))},
                                                 {});
        return outputOfPython("import plistlib, sys; print(plistlib.loads(sys.stdin.buffer.read()), end='')", bytes);
    }
    [[nodiscard]] QByteArray wordsOf(const QByteArray& item) const
    {
        const RunResult result = run({"captureprefs", "show", "--", item}, m_here);
        EXPECT_EQ(result.errors, "");
        EXPECT_TRUE(result.output.startsWith(item + ": ")) << result.output.constData();
        return result.output.mid(item.size() + 2).chopped(1);
    }

    const RunSettings m_here{.workingFolder = QByteArray::fromStdString(m_tree.root())};
};

} // namespace havrel::tests
