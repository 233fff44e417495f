// SPDX-License-Identifier: MIT
#include "diagnostics/exception.h"
#include "diagnostics/logr.h"
#include "foundation/error.h"
#include "fs/path.h"
#include "fs/path_text.h"
#include "platform/file_names.h"
#include "platform/item_copy.h"
#include "platform/item_place.h"
#include "platform/item_removal.h"
#include "platform/items.h"

#include <cerrno>

namespace havrel {
namespace {

const QString kTarget = QStringLiteral("target");

/// A failure of an operation on a whole item, as the file system's own error.
HVException itemFailure(const JNPath& path, int error, const QString& reason)
{
    return HVException::error(Error::posix(error), exception_name::kIO, reason).setPathObject(path);
}

/// The places of an item and of a target; 0 or the errno value of the one that cannot be found.
int findPlaces(const JNPath& path, const QString& target, platform::ItemPlace& from, platform::ItemPlace& to)
{
    const int error = from.find(path.cPath());
    return error == 0 ? to.find(platform::bytesOfFileName(target)) : error;
}

int moveAcross(const JNPath& path, const QString& target)
{
    platform::ItemPlace from;
    platform::ItemPlace to;
    const int error = findPlaces(path, target, from, to);
    return error == 0 ? platform::moveAcross(from, to) : error;
}

bool isFolderItself(const QString& name)
{
    return name.isEmpty() || name == u"." || name == u"..";
}

void logLoss(const QString& target)
{
    Logr::log(LogClassification::Caution,
              QStringLiteral("The volume of %1 does not keep all attributes of the items copied there").arg(target));
}

} // namespace

QString JNPath::absoluteTarget(const QString& target) const
{
    if (target.isEmpty())
        return QStringLiteral("");
    const QByteArray bytes = platform::bytesOfFileName(target);
    const QByteArray whole = bytes.startsWith('/') ? bytes : path_text::appended(parent()->cPath(), bytes);
    return platform::textOfFileName(path_text::standardised(whole));
}

/// The empty text stands for no target; a name that means a folder itself must not lead to that folder.
QString JNPath::joinedTarget(const std::optional<QString>& directory, const std::optional<QString>& name) const
{
    const QString last = name.value_or(this->name());
    if (isFolderItself(last))
        return {};
    const QByteArray folder = directory ? platform::bytesOfFileName(*directory) : parent()->cPath();
    return platform::textOfFileName(path_text::appended(folder, platform::bytesOfFileName(last)));
}

JNPathPtr JNPath::moveToDirectory(const std::optional<QString>& directory,
                                  const std::optional<QString>& name,
                                  Overwriting overwriting) const
{
    return moveTo(joinedTarget(directory, name), overwriting);
}

JNPathPtr JNPath::moveTo(const QString& target, Overwriting overwriting) const
{
    const QString destination = absoluteTarget(target);
    if (overwriting == Overwriting::Yes)
        renameOver(destination);
    else
        moveWithoutReplacing(destination);
    return pathWithPath(destination);
}

void JNPath::renameOver(const QString& target) const
{
    const int error = target.isEmpty() ? EINVAL : platform::renameItem(cPath(), platform::bytesOfFileName(target));
    if (error != 0) {
        HVException::ioErrno(error, QStringLiteral("cannot rename filesystem object"))
            .setPathObject(*this)
            .setDetail(target, QStringLiteral("to"))
            .raise();
    }
}

void JNPath::moveWithoutReplacing(const QString& target) const
{
    int error = target.isEmpty() ? EINVAL : platform::renameItemExclusively(cPath(), platform::bytesOfFileName(target));
    if (error == EXDEV)
        error = moveAcross(*this, target);
    if (error != 0)
        itemFailure(*this, error, QStringLiteral("cannot move item")).setDetail(target, kTarget).raise();
}

JNPathPtr JNPath::copyToDirectory(const std::optional<QString>& directory,
                                  const std::optional<QString>& name,
                                  Overwriting overwriting,
                                  Cloning cloning) const
{
    return copyTo(joinedTarget(directory, name), overwriting, cloning);
}

JNPathPtr JNPath::copyTo(const QString& target, Overwriting overwriting, Cloning /*cloning*/) const
{
    const QString destination = absoluteTarget(target);
    const auto require = [&](int error, const QString& reason) {
        if (error != 0)
            itemFailure(*this, error, reason).setDetail(destination, kTarget).raise();
    };
    const QString cannotCopy = QStringLiteral("cannot copy item");

    require(destination.isEmpty() ? EINVAL : 0, cannotCopy);
    platform::ItemPlace from;
    platform::ItemPlace to;
    require(findPlaces(*this, destination, from, to), cannotCopy);
    require(platform::refuseToCopy(from, to), cannotCopy);
    if (overwriting == Overwriting::Yes) {
        require(platform::refuseToReplace(from, to), cannotCopy);
        const int error = platform::removeItem(to);
        require(error == ENOENT ? 0 : error, QStringLiteral("cannot overwrite item"));
    }
    const platform::AttributeOutcome outcome = platform::copyItem(from, to, platform::AttributeLoss::Accepted);
    require(outcome.error, cannotCopy);
    if (outcome.lost)
        logLoss(destination);
    return pathWithPath(destination);
}

bool JNPath::tryToDeleteFile() const
{
    return platform::removeItem(cPath()) == 0;
}

void JNPath::deleteFile() const
{
    if (const int error = platform::removeItem(cPath()); error != 0)
        itemFailure(*this, error, QStringLiteral("cannot delete item")).raise();
}

void JNPath::touch() const
{
    (void)platform::touchItem(cPath());
}

} // namespace havrel
