// SPDX-License-Identifier: MIT
#include "cli/command.h"
#include "cli/output.h"
#include "cli/report.h"
#include "cli/subcommands.h"
#include "diagnostics/exception_base.h"
#include "diagnostics/logr.h"
#include "foundation/error.h"
#include "foundation/process.h"
#include "messaging/reply_threads.h"

#include <array>
#include <exception>

namespace havrel::cli {
namespace {

constexpr auto kGroups = std::to_array<SubcommandGroup>({
    {"archive", "Archives, which hold what was captured"},
    {"captureprefs", "Capture preferences of files and folders"},
    {"components", "Components of the product"},
    {"pattern", "Exclusion patterns"},
    {"log", "Lines of the log"},
});

constexpr auto kSubcommands = std::to_array<Subcommand>({
    {"", "capture", "Capture items into an archive that you choose", defineCapture},
    {"", "reveal", "Show items in an archive that you choose", defineReveal},
    {"archive", "create", "Make an archive, and the repository that keeps it", defineArchiveCreate},
    {"archive", "list", "List the archives that you have made or captured to", defineArchiveList},
    {"archive", "info", "Show what an archive is and what was captured into it", defineArchiveInfo},
    {"archive", "items", "List the items of a capture", defineArchiveItems},
    {"archive", "restore", "Bring items back from an archive", defineArchiveRestore},
    {"captureprefs", "show", "Show the preferences of items", defineCaptureprefsShow},
    {"captureprefs", "set", "Change the preferences of items", defineCaptureprefsSet},
    {"captureprefs", "clear", "Remove the preferences of items", defineCaptureprefsClear},
    {"captureprefs", "edit", "Open a window that edits the preferences of items", defineCaptureprefsEdit},
    {"captureprefs", "list", "Find the items below folders that carry preferences", defineCaptureprefsList},
    {"captureprefs", "export", "Write the preferences of everything below folders as JSON", defineCaptureprefsExport},
    {"captureprefs", "import", "Give items the preferences that were exported", defineCaptureprefsImport},
    {"components", "run", "Serve as all components of the product", defineComponentsRun},
    {"pattern", "check", "Tell whether patterns are valid, and how they are understood", definePatternCheck},
    {"", "integrations", "Show, add or remove the commands in file managers", defineIntegrations},
    {"log", "id", "Take the identities of log lines apart", defineLogId},
});

ExitStatus guardedRun(std::span<const char* const> arguments)
{
    Report report;
    try {
        Process::captureNow();
        return runSubcommand(arguments, kGroups, kSubcommands);
    } catch (const Exception& exception) {
        report.failure("internal error", exception.description());
    } catch (const std::exception& exception) {
        report.failure("internal error", QString::fromLocal8Bit(exception.what()));
    } catch (...) {
        report.failure("internal error", QStringLiteral("unknown"));
    }
    return report.status();
}

ExitStatus finished(ExitStatus status)
{
    const int error = finishOutput();
    if (error == 0)
        return status;
    Report report;
    report.failure("standard output", systemErrorText(error));
    return status == ExitStatus::Done ? report.status() : status;
}

} // namespace
} // namespace havrel::cli

int main(int argc, char** argv)
{
    const std::span<const char* const> arguments(argv, static_cast<std::size_t>(argc));
    const auto own = arguments.empty() ? arguments : arguments.subspan(1);
    const havrel::cli::ExitStatus status = havrel::cli::finished(havrel::cli::guardedRun(own));
    havrel::ReplyThreads::shared().leave();
    havrel::Logr::closeSharedLogger(); // lines may be held back
    return static_cast<int>(status);
}
