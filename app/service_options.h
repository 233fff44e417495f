// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArrayList>
#include <QString>

#include <chrono>

namespace havrel {

/// What the program was started for.
struct ServiceOptions
{
    std::chrono::milliseconds idleInterval = std::chrono::seconds(600);
    QString text{};     ///< what to tell instead of serving; null: serve
    int exitStatus = 0; ///< with which the program ends then; of a fault not 0
};

/// Reads the arguments of the program, without its own name: nothing, "--help", "--version", or, for tests,
/// "--idle-interval" with milliseconds.
///
/// Threads: any thread.
[[nodiscard]] ServiceOptions serviceOptionsOf(const QByteArrayList& arguments);

} // namespace havrel
