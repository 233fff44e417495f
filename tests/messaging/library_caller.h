// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/error.h"
#include "messaging/reply_queue.h"
#include "messaging/transport_connection.h"
#include "messaging/xpc_connection.h"
#include "tests/messaging/library_object.h"
#include "tests/support/awaited.h"

#include <gtest/gtest.h>

#include <optional>
#include <utility>

namespace havrel::tests {

/// What comes out of one message: its reply, or its error.
struct LibraryOutcome
{
    std::optional<QVariantList> values;
    std::optional<Error> error;

    [[nodiscard]] qint64 code() const { return error ? error->code() : 0; }
};

/// One connection of a test, with what has become of it.
class LibraryCaller
{
public:
    explicit LibraryCaller(XPCConnectionPtr connection)
        : m_connection(std::move(connection))
    {
        m_connection->setRemoteObjectInterface(libraryInterface());
        m_connection->setInvalidationHandler([this] { ends.tell(true); });
        m_connection->resume();
    }
    ~LibraryCaller()
    {
        Awaited<bool> done;
        m_connection->invalidate();
        dynamic_cast<TransportConnection&>(*m_connection).replyQueue().async([&] { done.tell(true); });
        EXPECT_TRUE(done.one().has_value());
    }
    LibraryCaller(const LibraryCaller&) = delete;
    LibraryCaller& operator=(const LibraryCaller&) = delete;
    LibraryCaller(LibraryCaller&&) = delete;
    LibraryCaller& operator=(LibraryCaller&&) = delete;

    void send(const QByteArray& keywordName, const QVariantList& values)
    {
        m_connection->remoteObjectProxyWithErrorHandler([this](const Error& error) { errors.tell(error); })
            ->send(keywordName, values);
    }
    void ask(const QByteArray& keywordName, const QVariantList& values, Awaited<LibraryOutcome>& outcomes)
    {
        m_connection->remoteObjectProxyWithErrorHandler([&](const Error& error) {
                        outcomes.tell({{}, error});
                    })
            ->send(keywordName, values, [&](const QVariantList& answer) {
                outcomes.tell({answer, {}});
            });
    }
    LibraryOutcome ask(const QByteArray& keywordName, const QVariantList& values = {})
    {
        Awaited<LibraryOutcome> outcomes;
        ask(keywordName, values, outcomes);
        return outcomes.one().value_or(LibraryOutcome());
    }
    bool barrier() { return ask("barrierWithCompletion:").values.has_value(); }
    XPCConnection& connection() { return *m_connection; }

    Awaited<bool> ends;
    Awaited<Error> errors;

private:
    const XPCConnectionPtr m_connection;
};

} // namespace havrel::tests
