// SPDX-License-Identifier: MIT
#include "platform/terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

namespace havrel::platform {

bool isTerminal(StandardStream stream) noexcept
{
    return ::isatty(static_cast<int>(stream)) == 1;
}

int terminalColumns(StandardStream stream) noexcept
{
    constexpr int kUsualColumns = 80;
    winsize size{};
    const bool known = ::ioctl(static_cast<int>(stream), TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return known ? size.ws_col : kUsualColumns;
}

} // namespace havrel::platform
