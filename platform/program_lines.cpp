// SPDX-License-Identifier: MIT
#include "platform/program_lines.h"

#include "platform/child_process.h"
#include "platform/pipe.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>

#include <poll.h>
#include <sys/mman.h>
#include <unistd.h>

namespace havrel::platform {
namespace {

using LineBlock = std::function<Proceed(OutputStream, const QByteArray&)>;

/// A file in memory that holds \p bytes, to be read from its beginning: unlike a pipe it needs nobody to fill it.
OwnedDescriptor fileOf(const QByteArray& bytes)
{
    OwnedDescriptor file(::memfd_create("input", MFD_CLOEXEC));
    for (qsizetype at = 0; file.isOpen() && at < bytes.size();) {
        const ssize_t written =
            ::pwrite(file.get(), bytes.constData() + at, static_cast<std::size_t>(bytes.size() - at), at);
        if (written < 0 && errno != EINTR)
            return OwnedDescriptor();
        at += written < 0 ? 0 : written;
    }
    return file;
}

/// One of the program's streams, taken apart into lines.
class LineStream
{
public:
    LineStream(OutputStream stream, OwnedDescriptor readEnd)
        : m_stream(stream)
        , m_readEnd(std::move(readEnd))
    {
    }

    /// To wait on; -1, which poll(2) passes over, when the stream has ended.
    [[nodiscard]] int descriptor() const noexcept { return m_readEnd.get(); }

    Proceed read(const LineBlock& line)
    {
        const QByteArray chunk = readAvailable(m_readEnd.get());
        m_held += chunk;
        Proceed proceed = deliver(line);
        if (!chunk.isEmpty())
            return proceed;
        m_readEnd.reset();
        if (!m_held.isEmpty() && line(m_stream, m_held) == Proceed::No)
            proceed = Proceed::No;
        return proceed;
    }

private:
    Proceed deliver(const LineBlock& line)
    {
        Proceed proceed = Proceed::Yes;
        qsizetype from = 0;
        for (qsizetype end = 0; (end = m_held.indexOf('\n', std::max(from, m_searched))) >= 0; from = end + 1)
            if (line(m_stream, m_held.mid(from, end - from)) == Proceed::No)
                proceed = Proceed::No;
        m_held.remove(0, from);
        m_searched = m_held.size();
        return proceed;
    }

    OutputStream m_stream;
    OwnedDescriptor m_readEnd;
    QByteArray m_held;
    qsizetype m_searched = 0; // bytes of what is held that are known to have no newline
};

/// Sees to it that a program ends which is wanted no more: asks it to, and ends it when it takes too long.
class Ending
{
public:
    Ending(const OwnedChildProcess& child, const ProgramCall& call)
        : m_child(child)
        , m_call(call)
    {
    }

    void take(Proceed proceed)
    {
        if (proceed == Proceed::Yes || isInterrupted())
            return;
        m_child.interrupt();
        m_latest = Clock::now() + m_call.patience;
    }
    /// As poll(2) wants it.
    [[nodiscard]] int milliseconds() const
    {
        constexpr int kPulse = 200;
        if (!isInterrupted())
            return m_call.pulse ? kPulse : -1;
        const auto rest = std::chrono::ceil<std::chrono::milliseconds>(m_latest - Clock::now());
        return static_cast<int>(std::max<std::chrono::milliseconds::rep>(rest.count(), 0));
    }
    /// Nothing has come for that long.
    void pulse()
    {
        if (!isInterrupted() && m_call.pulse)
            take(m_call.pulse());
    }
    [[nodiscard]] bool isOverdue() const { return isInterrupted() && Clock::now() >= m_latest; }

private:
    using Clock = std::chrono::steady_clock;

    [[nodiscard]] bool isInterrupted() const { return m_latest != Clock::time_point::max(); }

    const OwnedChildProcess& m_child;
    const ProgramCall& m_call;
    Clock::time_point m_latest = Clock::time_point::max(); // when it has to have ended, once it was interrupted
};

void readAll(std::array<LineStream, 2>& streams, Ending& ending, const LineBlock& line)
{
    while ((streams[0].descriptor() >= 0 || streams[1].descriptor() >= 0) && !ending.isOverdue()) {
        std::array<pollfd, 2> waits{pollfd{streams[0].descriptor(), POLLIN, 0},
                                    pollfd{streams[1].descriptor(), POLLIN, 0}};
        const int came = ::poll(waits.data(), waits.size(), ending.milliseconds());
        if (came < 0 && errno != EINTR)
            return;
        if (came == 0)
            ending.pulse();
        for (std::size_t i = 0; i < waits.size(); ++i)
            if (waits[i].revents != 0)
                ending.take(streams[i].read(line));
    }
}

} // namespace

ProgramEnd runForLines(const ProgramCall& call, const LineBlock& line)
{
    const OwnedDescriptor input = fileOf(call.input);
    Pipe output = makePipe();
    Pipe errors = makePipe();
    if (!input.isOpen() || !output.writeEnd.isOpen() || !errors.writeEnd.isOpen())
        return {.errnoValue = errno};
    LaunchResult launched = launch({.program = call.program,
                                    .arguments = call.arguments,
                                    .standardInput = input.get(),
                                    .standardOutput = output.writeEnd.get(),
                                    .standardError = errors.writeEnd.get(),
                                    .environment = call.environment});
    if (launched.errnoValue != 0)
        return {.errnoValue = launched.errnoValue};
    output.writeEnd.reset();
    errors.writeEnd.reset();
    std::array<LineStream, 2> streams{LineStream(OutputStream::Output, std::move(output.readEnd)),
                                      LineStream(OutputStream::Errors, std::move(errors.readEnd))};
    Ending ending(launched.child, call);
    readAll(streams, ending, line);
    if (ending.isOverdue())
        launched.child.kill();
    return {.status = launched.child.wait()};
}

} // namespace havrel::platform
