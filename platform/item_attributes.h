// SPDX-License-Identifier: MIT
#pragma once

struct stat;

namespace havrel::platform {

/// What a copy does when the target's file system keeps no extended attributes or no access lists at all.
enum class AttributeLoss { Accepted, Refused };

/// What happened to the attributes of a copy.
struct AttributeOutcome
{
    int error = 0;     ///< 0 or an errno value
    bool lost = false; ///< some could not be kept, and the loss was accepted
};

/// Gives an open item owner, attributes, mode and times of another; everything but its contents. Blocks on the disk.
///
/// Owner and group are kept as far as this process may; the set-id bits go where they would then stand for somebody
/// else. Extended attributes of users and access lists are kept or the call fails (but see \p loss); those of other
/// namespaces (security, trusted, and file systems' own) are kept where the system lets them be written. Times are
/// exact to the nanosecond; those of creation and of attribute changes cannot be set.
///
/// \param from,to descriptors of two files or folders opened for use, or of two items opened with O_PATH only.
/// \param status  the item's status before it was read.
/// \source xattr(7), acl(5): access lists are the attributes "system.posix_acl_access" and "system.posix_acl_default"
///
/// Threads: any thread.
[[nodiscard]] AttributeOutcome copyAttributes(int from, int to, const struct stat& status, AttributeLoss loss);

} // namespace havrel::platform
