// SPDX-License-Identifier: MIT
#include "cli/command.h"
#include "cli/subcommands.h"
#include "components/component_process.h"

namespace havrel::cli {

void defineComponentsRun(Command& command)
{
    command.footer(
        "Serves as switchboard, monitor and scheduler of this user, in one process, until it is interrupted.\n"
        "For trying and testing: otherwise the message bus starts each of them when somebody asks for it.");
    command.action([] {
        const int status =
            runComponents({ComponentKind::Switchboard, ComponentKind::Monitor, ComponentKind::Scheduler}, "havrel");
        return status == 0 ? ExitStatus::Done : ExitStatus::SomethingFailed;
    });
}

} // namespace havrel::cli
