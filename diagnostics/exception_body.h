// SPDX-License-Identifier: MIT
#pragma once

#include "diagnostics/exception_base.h"

#include <QByteArray>

#include <mutex>

namespace havrel {

/// What all copies of one exception share. Only for the sources of the exception classes and of their archiving.
struct Exception::Body
{
    Body(Kind bodyKind, const QString& bodyName, const QString& bodyReason, const QVariantMap& facts = {})
        : kind(bodyKind)
        , name(bodyName)
        , reason(bodyReason)
        , userInfo(facts)
    {
    }

    const Kind kind;
    const QString name;
    const QString reason;
    QVariantMap userInfo;
    platform::ReturnAddresses returnAddresses;

    std::once_flag whatMade;
    QByteArray what; // made once, by what()
};

} // namespace havrel
