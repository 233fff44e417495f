// SPDX-License-Identifier: MIT
#pragma once

namespace havrel::cli {

class Command;

// One source a subcommand, named after it; those that ask the service stand together in service_requests.cpp. Each
// tells its options, its help, and what it does.

void defineArchiveCreate(Command& command);
void defineArchiveInfo(Command& command);
void defineArchiveItems(Command& command);
void defineArchiveList(Command& command);
void defineArchiveRestore(Command& command);
void defineCapture(Command& command);
void defineCaptureprefsClear(Command& command);
void defineCaptureprefsEdit(Command& command);
void defineCaptureprefsExport(Command& command);
void defineCaptureprefsImport(Command& command);
void defineCaptureprefsList(Command& command);
void defineCaptureprefsSet(Command& command);
void defineCaptureprefsShow(Command& command);
void defineComponentsRun(Command& command);
void defineIntegrations(Command& command);
void defineLogId(Command& command);
void definePatternCheck(Command& command);
void defineReveal(Command& command);

} // namespace havrel::cli
