// SPDX-License-Identifier: MIT
#include "cli/attribute_failure.h"

#include "foundation/error.h"
#include "platform/file_names.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>

namespace havrel::cli {
namespace {

struct Meaning
{
    int error;
    const char* text;
};

// What the kernel says about attributes means something else than what its words say about files.
constexpr auto kMeanings = std::to_array<Meaning>({
    {ENOTSUP, "its file system keeps no attributes, so nothing on it can carry preferences"},
    {E2BIG, "the preferences are longer than its file system keeps in an attribute"},
    {ERANGE, "the preferences are longer than its file system keeps in an attribute"},
    {EROFS, "it is on a read-only file system"},
    {EINVAL, "a path cannot hold a NUL"},
});

QString deniedText(AttributeAccess access)
{
    return access == AttributeAccess::Write
               ? QStringLiteral("no permission to write it (preferences need write permission, its owner's too)")
               : QStringLiteral("no permission to read it");
}

QString notPermittedText(const std::filesystem::path& item)
{
    std::error_code ignored;
    const auto status = std::filesystem::symlink_status(item, ignored);
    if (status.type() == std::filesystem::file_type::symlink) {
        const std::string target = std::filesystem::read_symlink(item, ignored).string();
        return QStringLiteral("a symbolic link cannot carry preferences; its target can: ") +
               platform::textOfFileName(QByteArray::fromStdString(target));
    }
    if (!std::filesystem::is_regular_file(status) && !std::filesystem::is_directory(status))
        return QStringLiteral("only files and folders can carry preferences");
    return QStringLiteral("not permitted: it is immutable or append-only, or another user's in a shared folder");
}

QString noRoomText(const std::filesystem::path& item)
{
    std::error_code error;
    const auto space = std::filesystem::space(item, error);
    if (!error && space.available == 0)
        return QStringLiteral("no space left on its file system");
    return QStringLiteral("no room left for attributes on this item (its file system is not full)");
}

} // namespace

QString attributeFailureText(int error, const QByteArray& path, AttributeAccess access)
{
    if (error == EACCES)
        return deniedText(access);
    if (error == EPERM)
        return notPermittedText(path.toStdString());
    if (error == ENOSPC)
        return noRoomText(path.toStdString());
    if (error == ESTALE && access == AttributeAccess::Walk) // the walk's own answer; else it is a network's
        return QStringLiteral("it was moved meanwhile, so that not all of it was looked through");
    const auto* const row =
        std::find_if(kMeanings.begin(), kMeanings.end(), [error](const Meaning& each) { return each.error == error; });
    return row != kMeanings.end() ? QString::fromLatin1(row->text) : systemErrorText(error);
}

} // namespace havrel::cli
