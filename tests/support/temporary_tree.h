// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <stdexcept>
#include <string>
#include <string_view>

namespace havrel {

/// A folder under $TMPDIR that is removed with its contents when the object goes.
class TemporaryTree
{
public:
    /// \param entries paths relative to the root; a trailing '/' makes a folder, else an empty file.
    TemporaryTree(std::initializer_list<std::string_view> entries = {})
    {
        std::string name = (std::filesystem::temp_directory_path() / "havrel-XXXXXX").string();
        if (::mkdtemp(name.data()) == nullptr)
            throw std::runtime_error("cannot make " + name);
        m_root = name;
        for (const std::string_view entry : entries)
            add(entry);
    }
    ~TemporaryTree()
    {
        std::error_code ignored; // A leftover folder in $TMPDIR must not fail the test that made it.
        std::filesystem::remove_all(m_root, ignored);
    }
    TemporaryTree(const TemporaryTree&) = delete;
    TemporaryTree& operator=(const TemporaryTree&) = delete;
    TemporaryTree(TemporaryTree&&) = delete;
    TemporaryTree& operator=(TemporaryTree&&) = delete;

    [[nodiscard]] std::string root() const { return m_root.string(); }
    [[nodiscard]] std::string path(std::string_view entry) const { return (m_root / entry).string(); }
    [[nodiscard]] QByteArray bytes(std::string_view entry) const { return QByteArray::fromStdString(path(entry)); }

    void add(std::string_view entry) const
    {
        const std::filesystem::path path = m_root / entry;
        if (entry.ends_with('/')) {
            std::filesystem::create_directories(path);
            return;
        }
        std::filesystem::create_directories(path.parent_path());
        if (!std::ofstream(path))
            throw std::runtime_error("cannot make " + path.string());
    }

    void write(std::string_view entry, std::string_view contents) const
    {
        if (!(std::ofstream(m_root / entry, std::ios::binary) << contents))
            throw std::runtime_error("cannot write " + path(entry));
    }

    void addLink(std::string_view entry, std::string_view target) const
    {
        std::filesystem::create_symlink(target, m_root / entry);
    }

private:
    std::filesystem::path m_root;
};

} // namespace havrel
