// SPDX-License-Identifier: MIT
#include "diagnostics/exception.h"
#include "diagnostics/logr.h"
#include "foundation/error.h"
#include "fs/file_info.h"
#include "platform/item_marks.h"
#include "platform/items.h"

namespace havrel {
namespace {

void logProblem(const JNFileInfo& info, int error, const QString& reason)
{
    auto problem = HVException::error(Error::posix(error), exception_name::kIO, reason);
    Logr::logException(LogClassification::Debug, nullptr, problem.setFileInfo(info));
}

bool answerOf(const JNFileInfo& info, const platform::ItemMark& mark, const QString& reason)
{
    if (mark.error != 0)
        logProblem(info, mark.error, reason);
    return mark.isSet;
}

} // namespace

bool JNFileInfo::isHidden() const
{
    return answerOf(*this, platform::hiddenMark(cPath()), QStringLiteral("problem obtaining isHidden attribute"));
}

bool JNFileInfo::isHiddenExtension() const
{
    return answerOf(
        *this, {.error = platform::findName(cPath())}, QStringLiteral("problem obtaining isHiddenExtension attribute"));
}

bool JNFileInfo::isExcludedFromBackup() const
{
    return answerOf(*this,
                    platform::excludedFromBackupMark(cPath()),
                    QStringLiteral("problem obtaining isExcludedFromBackup attribute"));
}

std::optional<std::uint64_t> JNFileInfo::volumeIdentifier() const
{
    const auto device = platform::deviceId(cPath());
    if (!device) {
        const int error = platform::findName(cPath());
        logProblem(*this, error, QStringLiteral("problem obtaining volumeIdentifier attribute"));
    }
    return device;
}

} // namespace havrel
