// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <sys/stat.h>

namespace havrel::platform {

/// Lets the owner of a file or folder write to it until the object goes; then its mode and times are as they were. The
/// owner of a read-only item may not change its attributes, nor move a read-only folder elsewhere. Leaves links alone.
/// For items that nobody else changes meanwhile.
///
/// \source chmod(2), utimensat(2)
///
/// Threads: one thread at a time.
class LoosenedItem
{
public:
    explicit LoosenedItem(const QByteArray& path);
    ~LoosenedItem();
    LoosenedItem(const LoosenedItem&) = delete;
    LoosenedItem& operator=(const LoosenedItem&) = delete;
    LoosenedItem(LoosenedItem&&) = delete;
    LoosenedItem& operator=(LoosenedItem&&) = delete;

    /// 0, or the errno value why the owner cannot write to it; nothing has changed then.
    [[nodiscard]] int error() const noexcept { return m_error; }
    /// The item has another path now.
    void movedTo(const QByteArray& path) { m_path = path; }
    /// As it was before.
    [[nodiscard]] const struct stat& status() const noexcept { return m_status; }

private:
    QByteArray m_path;
    struct stat m_status = {};
    int m_error = 0;
};

} // namespace havrel::platform
