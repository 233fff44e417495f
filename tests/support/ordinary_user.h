// SPDX-License-Identifier: MIT
#pragma once

#include <stdexcept>
#include <string>

#include <unistd.h>

namespace havrel::tests {

/// Makes the process an ordinary user until it goes, when it is run by root: permissions then mean something.
class OrdinaryUser
{
public:
    /// \param folder becomes that user's own, so that the user can work in it.
    explicit OrdinaryUser(const std::string& folder)
    {
        if (::geteuid() != 0)
            return;
        if (::chown(folder.c_str(), kNobody, kNobody) != 0 || ::setegid(kNobody) != 0 || ::seteuid(kNobody) != 0)
            throw std::runtime_error("cannot become an ordinary user");
        m_wasRoot = true;
    }
    ~OrdinaryUser()
    {
        if (m_wasRoot && (::seteuid(0) != 0 || ::setegid(0) != 0))
            ::_exit(1); // the tests to come would run as somebody else
    }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;
    OrdinaryUser(OrdinaryUser&&) = delete;
    OrdinaryUser& operator=(OrdinaryUser&&) = delete;

private:
    static constexpr uid_t kNobody = 65534;
    bool m_wasRoot = false;
};

} // namespace havrel::tests
