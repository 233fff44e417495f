// SPDX-License-Identifier: MIT
#include "app/service_options.h"

namespace havrel {
namespace {

constexpr int kWrongUsage = 2;
constexpr int kLongestInterval = 86'400'000; // a day

const char* const kHelp = "Usage: havrel-service\n"
                          "\n"
                          "Serves the commands of Havrel in file managers. The desktop starts it when one of them is\n"
                          "chosen, and it ends by itself; there is no need to start it by hand. The command for that\n"
                          "is havrel(1).\n"
                          "\n"
                          "  --help     Show this text\n"
                          "  --version  Show the version\n";

ServiceOptions fault(const QString& text)
{
    return {.text = QStringLiteral("havrel-service: %1\n").arg(text), .exitStatus = kWrongUsage};
}

ServiceOptions withInterval(const QByteArray& milliseconds)
{
    bool isNumber = false;
    const int interval = milliseconds.toInt(&isNumber);
    if (!isNumber || interval < 1 || interval > kLongestInterval)
        return fault(QStringLiteral("--idle-interval takes milliseconds, from 1 to %1").arg(kLongestInterval));
    return {.idleInterval = std::chrono::milliseconds(interval)};
}

} // namespace

ServiceOptions serviceOptionsOf(const QByteArrayList& arguments)
{
    if (arguments.isEmpty())
        return {};
    if (arguments.first() == "--help")
        return {.text = QString::fromLatin1(kHelp)};
    if (arguments.first() == "--version")
        return {.text = QStringLiteral("havrel-service " HAVREL_VERSION "\n")};
    if (arguments.first() == "--idle-interval" && arguments.size() <= 2)
        return withInterval(arguments.value(1));
    return fault(QStringLiteral("unknown argument; --help tells what there is"));
}

} // namespace havrel
