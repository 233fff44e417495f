// SPDX-License-Identifier: MIT
#pragma once

#include "diagnostics/logr.h"
#include "foundation/thread_annotations.h"

#include <QStringList>

#include <utility>

namespace havrel::tests {

/// A logger that keeps its finished lines.
///
/// Threads: any thread.
class RecordingLogr : public Logr
{
public:
    RecordingLogr() = default;
    explicit RecordingLogr(Surroundings surroundings)
        : Logr(std::move(surroundings))
    {
    }
    ~RecordingLogr() override { Logr::close(); }
    Q_DISABLE_COPY_MOVE(RecordingLogr)

    void logCString(const QByteArray& line) override
    {
        const MutexLock guard(m_lock);
        m_lines << QString::fromLatin1(line);
    }

    /// Every line so far.
    [[nodiscard]] QStringList lines()
    {
        flush();
        const MutexLock guard(m_lock);
        return m_lines;
    }

    /// Forgets every line so far.
    void clear()
    {
        flush();
        const MutexLock guard(m_lock);
        m_lines.clear();
    }

    /// Every line without its date, and with its place below \p top: "Failure cannot read [.2.1]".
    [[nodiscard]] QStringList shortLines(const LogLineIdentPtr& top)
    {
        const QString under = u'[' + top->description();
        QStringList shown;
        for (const QString& line : lines())
            shown << line.mid(kDateLength).replace(under, QStringLiteral("["));
        return shown;
    }

private:
    static constexpr qsizetype kDateLength = 30; // "2025-07-30 12:34:56.789 +0200 "

    Mutex m_lock;
    QStringList m_lines HAVREL_GUARDED_BY(m_lock);
};

/// Makes \p logger the shared logger for as long as this lives; then the next use chooses anew.
class SharedLoggerScope
{
public:
    explicit SharedLoggerScope(const LogrPtr& logger) { Logr::setSharedLogger(logger); }
    ~SharedLoggerScope() { Logr::closeSharedLogger(); }
    Q_DISABLE_COPY_MOVE(SharedLoggerScope)
};

} // namespace havrel::tests
