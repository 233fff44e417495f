// SPDX-License-Identifier: MIT
#pragma once

#include "platform/proceed.h"

#include <QByteArray>
#include <QByteArrayList>

#include <functional>

namespace havrel {
struct ArchiveFile;
} // namespace havrel

namespace havrel::restic {

/// How a run of the engine's program went.
struct Outcome
{
    int status = 0;
    QByteArrayList words; ///< the last lines of its standard error, in words
};

/// The engine's program, called for one archive: with its place and its key, without a shell, and without what the
/// user's environment tells it to use instead.
///
/// Threads: any thread.
class Program
{
public:
    using LineBlock = std::function<platform::Proceed(const QByteArray& line)>;
    struct Call
    {
        QByteArrayList arguments;                      ///< "backup", "--json" ...
        QByteArray input = {};                         ///< what its standard input holds
        LineBlock output = {};                         ///< called for each line of its output
        LineBlock errors = {};                         ///< called for each line of its standard error
        std::function<platform::Proceed()> pulse = {}; ///< asked now and then while it writes nothing
    };

    explicit Program(const ArchiveFile& archive);

    /// Runs it to its end. \throws HVException "Archive" when it is not installed or cannot be started.
    [[nodiscard]] Outcome run(const Call& call) const;
    /// As run(). \throws HVException "Archive" also when it does not end well.
    void runWell(const Call& call) const;
    /// The output of a run that ends well.
    [[nodiscard]] QByteArray outputOf(const QByteArrayList& arguments) const;
    /// Raises what an outcome means.
    [[noreturn]] void raise(const Outcome& outcome) const;

    [[nodiscard]] const QByteArray& place() const noexcept { return m_place; }

private:
    QByteArray m_place;
    QString m_refusedCommand; // which the archive names for its key, but the user has not given
    QByteArrayList m_common;  // options of every call
};

} // namespace havrel::restic
