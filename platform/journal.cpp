// SPDX-License-Identifier: MIT
#include "platform/journal.h"

#include "platform/file_names.h"
#include "platform/systemd_library.h"

#include <array>
#include <cerrno>
#include <memory>

#include <sys/uio.h>
#include <unistd.h>

namespace havrel::platform {
namespace {

constexpr const char* kJournalSocket = "/run/systemd/journal/socket"; // sd_journal_sendv keeps silent without it

auto librarySend()
{
    using Send = int (*)(const iovec* fields, int count);
    static const auto s_send = reinterpret_cast<Send>(systemdSymbol("sd_journal_sendv"));
    return s_send;
}

iovec pieceOf(QByteArray& bytes)
{
    return {.iov_base = bytes.data(), .iov_len = static_cast<std::size_t>(bytes.size())};
}

QByteArray programName()
{
    return QByteArray("SYSLOG_IDENTIFIER=") + ::program_invocation_short_name;
}

} // namespace

bool journalExists()
{
    return ::access(kJournalSocket, W_OK) == 0;
}

JournalSend systemJournalSend()
{
    return [](const iovec* fields, int count) {
        const auto send = journalExists() ? librarySend() : nullptr;
        return send == nullptr ? -ENOENT : send(fields, count);
    };
}

JournalSend& journalSend()
{
    // Never destroyed: late lines need it.
    static JournalSend& s_send = *std::make_unique<JournalSend>(systemJournalSend()).release();
    return s_send;
}

int sendToJournal(JournalPriority priority, const QString& message)
{
    QByteArray text = "MESSAGE=" + bytesOfFileName(message);
    QByteArray urgency = "PRIORITY=" + QByteArray::number(static_cast<int>(priority));
    QByteArray program = programName();
    const std::array fields{pieceOf(text), pieceOf(urgency), pieceOf(program)};
    return -journalSend()(fields.data(), static_cast<int>(fields.size()));
}

void writeToStandardError(const QString& message)
{
    const QByteArray line = bytesOfFileName(message) + '\n';
    QByteArrayView rest = line;
    while (!rest.isEmpty()) {
        const ssize_t written = ::write(STDERR_FILENO, rest.data(), static_cast<std::size_t>(rest.size()));
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return;
        rest = rest.sliced(written);
    }
}

void writeToConsole(JournalPriority priority, const QString& message)
{
    if (sendToJournal(priority, message) != 0)
        writeToStandardError(message);
}

} // namespace havrel::platform
