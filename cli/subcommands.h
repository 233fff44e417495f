// SPDX-License-Identifier: MIT
#pragma once

namespace havrel::cli {

class Command;

// One source a subcommand, named after it. Each tells its options, its help, and what it does.

void defineCaptureprefsClear(Command& command);
void defineCaptureprefsExport(Command& command);
void defineCaptureprefsImport(Command& command);
void defineCaptureprefsList(Command& command);
void defineCaptureprefsSet(Command& command);
void defineCaptureprefsShow(Command& command);
void defineIntegrations(Command& command);
void defineLogId(Command& command);
void definePatternCheck(Command& command);

} // namespace havrel::cli
