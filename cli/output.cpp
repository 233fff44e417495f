// SPDX-License-Identifier: MIT
#include "cli/output.h"

#include "platform/terminal.h"

#include <array>
#include <cerrno>
#include <cstdio>

namespace havrel::cli {
namespace {

int firstError = 0;

void noteError(bool failed)
{
    if (failed && firstError == 0)
        firstError = errno != 0 ? errno : EIO;
}

const char* codeOf(Tone tone)
{
    constexpr std::array kCodes = {"\x1b[1m", "\x1b[2m", "\x1b[32m", "\x1b[31m"};
    return kCodes[static_cast<std::size_t>(tone)];
}

} // namespace

bool outputHasColours()
{
    static const bool has = platform::isTerminal(platform::StandardStream::Output) &&
                            qEnvironmentVariableIsEmpty("NO_COLOR") && qgetenv("TERM") != "dumb";
    return has;
}

QByteArray toned(Tone tone, const QByteArray& text)
{
    return outputHasColours() ? codeOf(tone) + text + "\x1b[0m" : text;
}

void writeRecord(const QByteArray& record, char end)
{
    const auto size = static_cast<std::size_t>(record.size());
    noteError(std::fwrite(record.constData(), 1, size, stdout) != size);
    noteError(std::fputc(static_cast<unsigned char>(end), stdout) == EOF);
}

int finishOutput()
{
    noteError(std::fflush(stdout) != 0);
    return firstError;
}

} // namespace havrel::cli
