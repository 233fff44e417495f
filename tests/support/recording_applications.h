// SPDX-License-Identifier: MIT
#pragma once

#include "platform/applications.h"

namespace havrel::tests {

/// Keeps what applications are asked for.
class RecordingApplications final : public platform::Applications
{
public:
    bool isInstalled(const QByteArray& id) override { return installed && id == "com.havrel.client"; }
    int launch(const QByteArray& id) override
    {
        launched << id;
        return failure;
    }
    int open(const QByteArray& id, const platform::OpenRequest& request) override
    {
        openedBy << id;
        opened << request;
        return failure;
    }

    bool installed = true;
    int failure = 0;
    QByteArrayList launched;
    QByteArrayList openedBy;
    QList<platform::OpenRequest> opened;
};

} // namespace havrel::tests
