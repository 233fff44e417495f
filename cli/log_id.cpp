// SPDX-License-Identifier: MIT
#include "cli/command.h"
#include "cli/json_output.h"
#include "cli/output.h"
#include "cli/report.h"
#include "cli/subcommands.h"
#include "diagnostics/log_line_ident.h"
#include "platform/file_names.h"

namespace havrel::cli {
namespace {

struct Options
{
    QByteArrayList texts;
    bool json = false;
};

QByteArray jsonOf(const LogLineIdent& ident)
{
    return JsonObject()
        .add(u"text", jsonText(ident.description()))
        .add(u"depth", QByteArray::number(ident.depth()))
        .add(u"application", QByteArray::number(ident.application()))
        .add(u"sequence", QByteArray::number(ident.sequence()))
        .add(u"hash", jsonText(QString::number(ident.hash())))
        .take();
}

ExitStatus show(const Options& options)
{
    if (options.texts.isEmpty())
        throw WrongUsage("no identity given");
    Report report;
    for (const QByteArray& text : options.texts) {
        if (const LogLineIdentPtr ident = LogLineIdent::logLineIdentifierFromString(platform::textOfFileName(text)))
            writeRecord(jsonOf(*ident));
        else
            report.failure(text, QStringLiteral("the empty text is no identity"));
    }
    return report.status();
}

} // namespace

void defineLogId(Command& command)
{
    const auto options = std::make_shared<Options>();
    command.operands(
        "TEXT...", options->texts, "Identity of a log line, as it stands in brackets: 6.73946250.4312.17.2");
    command.flag("--json", options->json, "The only form there is: one object a line");
    command.footer(
        "Any character counts as a digit, as the log itself reads identities; \"text\" is what was understood.\n"
        "\"hash\" is a decimal string, because many JSON readers keep only 53 bits of a number.");
    command.action([options] { return show(*options); });
}

} // namespace havrel::cli
