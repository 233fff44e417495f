// SPDX-License-Identifier: MIT
#pragma once

#include "integrations/integration.h"

namespace havrel::integrations {

/// The file that holds the user's actions of Thunar. Thunar reads only the first that it finds, so that a new one must
/// begin as a copy of the one for everybody.
///
/// Threads: one thread at a time.
class ThunarActionsFile
{
public:
    explicit ThunarActionsFile(const Places& places);

    [[nodiscard]] const QByteArray& path() const { return m_path; }
    /// Fills in what this file says. Blocks on the disk.
    void describe(WayState& state) const;
    /// Adds Havrel's actions; the file as it was is kept beside it, with ".before-havrel" behind its name.
    void add(Change& change) const;
    /// Removes Havrel's actions, and the file itself when it then says what the one for everybody says.
    void remove(Change& change) const;

private:
    [[nodiscard]] QByteArray actionsForEverybody() const;
    void replace(const QByteArray& old, const QByteArray& bytes, Change& change) const;

    QByteArray m_path;
    QByteArrayList m_others;
};

} // namespace havrel::integrations
