// SPDX-License-Identifier: MIT
#pragma once

#include "components/archive_file.h"
#include "components/archive_key.h"
#include "components/capture_engine.h"
#include "diagnostics/exception.h"
#include "platform/programs.h"
#include "tests/support/environment_value.h"
#include "tests/support/temporary_tree.h"

#include <gtest/gtest.h>

namespace havrel::tests {

/// A user's folders, and a real repository in one of them.
class WithArchive : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_FALSE(platform::programOfName("restic").isEmpty())
            << "restic is not installed (scripts/setup installs it)";
        makeKeyFile(m_archive.identifier);
        m_engine = engineOf(m_archive);
        m_engine->makeRepository();
    }

    CaptureSummary capture(const QByteArrayList& items) { return m_engine->capture(items, {}); }
    QList<EngineProblem> restore(const QByteArrayList& items, const char* folder = "back")
    {
        return m_engine->restore(m_engine->captures().constLast(), items, m_tree.bytes(folder));
    }

    TemporaryTree m_tree{"items/"};
    EnvironmentValue m_home{"HOME", m_tree.bytes("home")};
    EnvironmentValue m_data{"XDG_DATA_HOME", m_tree.bytes("data")};
    EnvironmentValue m_cache{"XDG_CACHE_HOME", m_tree.bytes("cache")};
    ArchiveFile m_archive = ArchiveFile::of(QStringLiteral("restic"), m_tree.bytes("repository"), {});
    std::unique_ptr<CaptureEngine> m_engine;
    QByteArray m_items = m_tree.bytes("items");
};

/// What \p work raises: the word of its fault and its sentence, and whether the engine's own words say \p words.
struct Raised
{
    std::string fault, sentence, words;
};
inline Raised raisedBy(const std::function<void()>& work)
{
    try {
        work();
    } catch (const HVException& exception) {
        const auto text = [&exception](QLatin1StringView key) {
            return exception.detail(key).toString().toStdString();
        };
        return {text(QLatin1StringView("Fault")), exception.reason().toStdString(), text(detail_key::kErrDescription)};
    }
    ADD_FAILURE() << "nothing was raised";
    return {};
}

} // namespace havrel::tests
