// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace havrel::tests {

inline void write(const std::string& path, const std::string& contents)
{
    std::ofstream(path, std::ios::binary) << contents;
}

inline std::string contentsOf(const std::string& path)
{
    std::ostringstream contents;
    contents << std::ifstream(path, std::ios::binary).rdbuf();
    return contents.str();
}

/// The status of an item itself; throws when there is none.
inline struct stat statusOf(const std::string& path)
{
    struct stat status;
    if (::lstat(path.c_str(), &status) != 0)
        throw std::runtime_error("there is no " + path);
    return status;
}

/// Whether something has the name, a dangling link too.
inline bool nameExists(const std::string& path)
{
    struct stat status;
    return ::lstat(path.c_str(), &status) == 0;
}

/// An attribute of the item itself; "(none)" when it has none.
inline std::string attributeOf(const std::string& path, const char* name)
{
    std::string value(4096, '\0');
    const ssize_t length = ::lgetxattr(path.c_str(), name, value.data(), value.size());
    if (length < 0)
        return "(none)";
    value.resize(static_cast<std::size_t>(length));
    return value;
}

inline bool setAttribute(const std::string& path, const char* name, const std::string& value)
{
    return ::lsetxattr(path.c_str(), name, value.data(), value.size(), 0) == 0;
}

/// The names in a folder and below it, relative to it, sorted.
inline std::vector<std::string> namesBelow(const std::string& folder)
{
    std::vector<std::string> names;
    for (const auto& each : std::filesystem::recursive_directory_iterator(folder))
        names.push_back(each.path().lexically_relative(folder).string());
    std::sort(names.begin(), names.end());
    return names;
}

/// A depth at which paths are longer than the kernel takes (4096 bytes), and walks have closed their outermost folders.
inline constexpr int kDeeperThanAnyPath = 70;
inline const std::string kDeepName(100, 'n');

/// Makes a folder that is deeper than any path, with the file "bottom" in the innermost.
inline void makeDeepFolder(const std::string& top)
{
    std::filesystem::create_directory(top);
    int folder = ::open(top.c_str(), O_RDONLY | O_DIRECTORY);
    for (int i = 0; i < kDeeperThanAnyPath; ++i) {
        if (::mkdirat(folder, kDeepName.c_str(), 0755) != 0)
            throw std::runtime_error("cannot make a deep folder");
        const int inner = ::openat(folder, kDeepName.c_str(), O_RDONLY | O_DIRECTORY);
        ::close(folder);
        folder = inner;
    }
    ::close(::openat(folder, "bottom", O_CREAT | O_WRONLY, 0644));
    ::close(folder);
}

/// How many folders of that name lie in one another, and whether the file "bottom" lies in the last.
inline std::pair<int, bool> depthOf(const std::string& top)
{
    int folder = ::open(top.c_str(), O_RDONLY | O_DIRECTORY);
    int depth = 0;
    for (int inner = 0; (inner = ::openat(folder, kDeepName.c_str(), O_RDONLY | O_DIRECTORY)) >= 0; ++depth) {
        ::close(folder);
        folder = inner;
    }
    struct stat status;
    const bool bottom = ::fstatat(folder, "bottom", &status, 0) == 0;
    ::close(folder);
    return {depth, bottom};
}

} // namespace havrel::tests
