// SPDX-License-Identifier: MIT
#pragma once

#include "cli/progress_bar.h"
#include "platform/directory_walk.h"
#include "platform/extended_attributes.h"

#include <functional>
#include <vector>

namespace havrel::cli {

class Command;
class Items;
class Report;

/// An item that carries preferences, or that would not tell.
struct WalkedPreferences
{
    QByteArray path;
    platform::AttributeValue value; ///< never "no such attribute"
};

/// Finds the items below folders that carry preferences, with a progress bar.
///
/// Threads: one thread at a time.
class PreferencesWalk : private platform::WalkVisitor
{
public:
    using Found = std::function<void(const WalkedPreferences& found)>;

    /// \param limit of an attribute's length, in bytes; a longer one is found with the error ERANGE
    PreferencesWalk(platform::CrossFileSystems cross, qsizetype limit, Report& report, Found found);

    /// Finds what is at \p root and below. A root that is no folder is looked at alone. Items of one folder come in the
    /// order of their names. Items that vanish meanwhile carry nothing.
    void walk(const QByteArray& root);

private:
    void visit(const platform::WalkedFolder& folder) override;
    void failed(const QByteArray& path, int error) override;
    void look(const QByteArray& reach, const QByteArray& path);
    void tell();

    platform::DirectoryWalk m_walk;
    qsizetype m_limit;
    Report& m_report;
    Found m_found;
    ProgressBar m_bar;
    qint64 m_count = 0;
    std::vector<WalkedPreferences> m_waiting; // found in the current folder
};

/// Walks each of \p roots in turn.
void walkEach(const Items& roots, PreferencesWalk& walk, Report& report);

} // namespace havrel::cli
