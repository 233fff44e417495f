// SPDX-License-Identifier: MIT
#pragma once

#include "platform/file_contents.h"
#include "platform/links.h"

#include <QByteArray>
#include <QByteArrayList>

#include <algorithm>
#include <map>

#include <dirent.h>
#include <sys/stat.h>
#include <sys/xattr.h>

namespace havrel::tests {

/// Everything about an item that a restore has to bring back, in one line, by the system's plain calls.
inline QByteArray descriptionOf(const QByteArray& path)
{
    struct stat status = {};
    if (::lstat(path.constData(), &status) != 0)
        return "missing";
    QByteArray text = "mode " + QByteArray::number(status.st_mode, 8) + " owner " + QByteArray::number(status.st_uid) +
                      ':' + QByteArray::number(status.st_gid) + " modified " +
                      QByteArray::number(qint64{status.st_mtim.tv_sec}) + '.' +
                      QByteArray::number(qint64{status.st_mtim.tv_nsec});
    if (S_ISLNK(status.st_mode))
        return text + " to " + platform::targetOfLink(path).value_or("?");
    QByteArray names(65536, '\0');
    names.resize(::llistxattr(path.constData(), names.data(), static_cast<std::size_t>(names.size())));
    QByteArrayList attributes;
    for (const QByteArray& name : names.split('\0')) {
        QByteArray value(65536, '\0');
        const ssize_t size = name.isEmpty() ? 0 : ::lgetxattr(path.constData(), name.constData(), value.data(), 65536);
        if (size > 0 || (size == 0 && !name.isEmpty()))
            attributes.append(name + '=' + value.first(size).toHex());
    }
    std::sort(attributes.begin(), attributes.end());
    text += " attributes " + attributes.join(',');
    if (S_ISREG(status.st_mode))
        text += " holds " + platform::readFile(path).bytes;
    return text;
}

/// Descriptions of an item and all that is in it, by their paths below it.
inline std::map<std::string, std::string> descriptionsOf(const QByteArray& root, const QByteArray& below = {})
{
    std::map<std::string, std::string> all;
    const QByteArray path = root + below;
    all[below.toStdString()] = descriptionOf(path).toStdString();
    struct stat status = {};
    if (::lstat(path.constData(), &status) != 0 || !S_ISDIR(status.st_mode))
        return all;
    DIR* folder = ::opendir(path.constData());
    while (const dirent* entry = folder != nullptr ? ::readdir(folder) : nullptr) {
        const QByteArray name = entry->d_name;
        if (name != "." && name != "..")
            all.merge(descriptionsOf(root, below + '/' + name));
    }
    if (folder != nullptr)
        ::closedir(folder);
    return all;
}

} // namespace havrel::tests
