// SPDX-License-Identifier: MIT
#include "cli/raw_arguments.h"

#include <string_view>

namespace havrel::cli {
namespace {

constexpr char kMark = '\x1f'; // "unit separator": hardly ever in a name, and marked itself where it is

bool hasOtherMeaning(std::string_view value)
{
    constexpr std::string_view kSpecialBeginnings = "[{%+\x1f";
    return !value.empty() && kSpecialBeginnings.find(value.front()) != std::string_view::npos;
}

std::string marked(std::string_view value)
{
    return kMark + std::string(value);
}

std::string guarded(const std::string& argument)
{
    if (hasOtherMeaning(argument))
        return marked(argument);
    const std::size_t equals = argument.starts_with("--") ? argument.find('=') : std::string::npos;
    if (equals == std::string::npos)
        return argument;
    const std::string value = argument.substr(equals + 1);
    return argument.substr(0, equals + 1) + (value.empty() || hasOtherMeaning(value) ? marked(value) : value);
}

} // namespace

std::vector<std::string> guardedArguments(const std::vector<std::string>& arguments)
{
    std::vector<std::string> result;
    result.reserve(arguments.size());
    bool onlyOperands = false;
    for (const std::string& argument : arguments) {
        if (onlyOperands)
            result.push_back(marked(argument));
        else if (argument == "--")
            onlyOperands = true;
        else
            result.push_back(guarded(argument));
    }
    return result;
}

std::string unguarded(std::string argument)
{
    if (argument.starts_with(kMark))
        argument.erase(0, 1);
    return argument;
}

} // namespace havrel::cli
