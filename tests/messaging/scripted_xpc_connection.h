// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/dispatch.h"
#include "foundation/error.h"
#include "foundation/thread_annotations.h"
#include "messaging/xpc_connection.h"
#include "tests/support/awaited.h"

#include <QByteArrayList>

#include <deque>
#include <map>
#include <memory>
#include <utility>
#include <vector>

namespace havrel::tests {

/// How the other end answers a barrier.
enum class Answer {
    Reply,
    Fail,          ///< by an error
    FailThenReply, ///< an error, and the reply all the same
    ReplyThenFail,
    Hold, ///< not before the test says so, or the connection ends
};

/// The error of an Answer::Fail.
inline Error scriptedError()
{
    return {QStringLiteral("Scripted"), 7, {{error_key::kLocalizedDescription, QStringLiteral("the script says so")}}};
}

/// The error of messages to a connection that has ended.
inline Error endedError()
{
    return {QStringLiteral("Scripted"), 8, {{error_key::kLocalizedDescription, QStringLiteral("it has ended")}}};
}

/// A connection whose other end does what the test says, and which writes down what happens to it.
///
/// Threads: any thread.
class ScriptedXPCConnection final : public XPCConnection
{
public:
    struct Message
    {
        QByteArray keywordName;
        QVariantList values;
    };

    /// \param replies its reply queue; outlives it
    ScriptedXPCConnection(QString name, SerialQueue& replies)
        : m_name(std::move(name))
        , m_state(std::make_shared<State>(replies))
    {
    }

    // ---- the script

    /// Answers to the next barriers; then Answer::Reply.
    void answer(const std::deque<Answer>& answers)
    {
        const MutexLock guard(m_state->lock);
        m_state->answers = answers;
    }
    /// What the reply block of another message gets. Without it, the reply does not come before the end.
    void reply(const QByteArray& keywordName, const QVariantList& values)
    {
        const MutexLock guard(m_state->lock);
        m_state->values[keywordName] = values;
    }
    /// Lets the held messages have their reply, or the error.
    void replyToHeld() { m_state->settleHeld(std::nullopt); }
    void failHeld() { m_state->settleHeld(scriptedError()); }
    void replyToFirstHeld() { m_state->replyToFirstHeld(); }
    /// The system ends it.
    void lose() { m_state->end(); }
    /// A message of the other end, handled when this returns.
    void receive(const XPCMessage& message)
    {
        m_state->replies.sync([this, &message] {
            if (const auto object = exportedObject())
                object->received(message);
        });
    }

    // ---- what happened

    [[nodiscard]] QByteArrayList journal() const
    {
        const MutexLock guard(m_state->lock);
        return m_state->journal;
    }
    [[nodiscard]] std::vector<Message> messages() const
    {
        const MutexLock guard(m_state->lock);
        return m_state->messages;
    }
    /// The keyword names of the messages.
    [[nodiscard]] QByteArrayList sent() const
    {
        QByteArrayList names;
        for (const Message& each : messages())
            names << each.keywordName;
        return names;
    }
    [[nodiscard]] qsizetype barriers() const { return sent().count("barrierWithCompletion:"); }
    /// Waits until \p count messages are held.
    [[nodiscard]] bool hasHeld(std::size_t count = 1) { return m_state->holding.first(count).size() >= count; }
    [[nodiscard]] std::shared_ptr<XPCExportedObject> exportedObject() const
    {
        const MutexLock guard(m_state->lock);
        return m_state->exportedObject;
    }
    [[nodiscard]] XPCInterfacePtr exportedInterface() const
    {
        const MutexLock guard(m_state->lock);
        return m_state->exportedInterface;
    }
    [[nodiscard]] XPCInterfacePtr remoteInterface() const
    {
        const MutexLock guard(m_state->lock);
        return m_state->remoteInterface;
    }

    // ---- XPCConnection

    void setRemoteObjectInterface(XPCInterfacePtr interface) override
    {
        const MutexLock guard(m_state->lock);
        m_state->journal << "interface";
        m_state->remoteInterface = std::move(interface);
    }
    void setExportedInterface(XPCInterfacePtr interface) override
    {
        const MutexLock guard(m_state->lock);
        m_state->exportedInterface = std::move(interface);
    }
    void setExportedObject(std::shared_ptr<XPCExportedObject> object) override
    {
        const MutexLock guard(m_state->lock);
        m_state->journal << QByteArray(object ? "export" : "export nothing");
        m_state->exportedObject = std::move(object);
    }
    void setInvalidationHandler(std::function<void()> handler) override
    {
        const MutexLock guard(m_state->lock);
        m_state->journal << QByteArray(handler ? "handler" : "no handler");
        m_state->invalidationHandler = std::move(handler);
        m_state->tellEnd();
    }
    void resume() override
    {
        const MutexLock guard(m_state->lock);
        m_state->journal << "resume";
    }
    void invalidate() override
    {
        {
            const MutexLock guard(m_state->lock);
            m_state->journal << "invalidate";
        }
        m_state->end();
    }
    XPCProxyPtr remoteObjectProxyWithErrorHandler(ErrorHandler handler) override
    {
        if (refusesProxies)
            return nullptr;
        return std::make_shared<Proxy>(m_state, std::move(handler));
    }
    QString serviceName() const override { return m_name; }
    std::optional<uid_t> effectiveUserIdentifier() const override { return std::nullopt; }
    QString description() const override { return u'<' + m_name + u'>'; }

    bool refusesProxies = false;

private:
    struct Held
    {
        XPCReply reply;
        std::shared_ptr<ErrorHandler> failed;
    };

    struct State : std::enable_shared_from_this<State>
    {
        explicit State(SerialQueue& queue)
            : replies(queue)
        {
        }

        void send(const Message& message, const XPCReply& reply, const std::shared_ptr<ErrorHandler>& failed)
        {
            const MutexLock guard(lock);
            journal << message.keywordName;
            messages.push_back(message);
            if (ended)
                replies.async([failed] { (*failed)(endedError()); });
            else if (reply)
                answer(message.keywordName, {reply, failed});
        }

        void answer(const QByteArray& keywordName, const Held& message) HAVREL_REQUIRES(lock)
        {
            if (const auto given = values.find(keywordName); given != values.end())
                replies.async([message, list = given->second] { message.reply(list); });
            else if (keywordName == "barrierWithCompletion:")
                answerBarrier(message);
            else
                hold(message);
        }

        void answerBarrier(const Held& message) HAVREL_REQUIRES(lock)
        {
            Answer next = Answer::Reply;
            if (!answers.empty()) {
                next = answers.front();
                answers.pop_front();
            }
            const auto succeed = [message] { message.reply({}); };
            const auto fail = [message] { (*message.failed)(scriptedError()); };
            if (next == Answer::Hold)
                return hold(message);
            if (next == Answer::Fail || next == Answer::FailThenReply)
                replies.async(fail);
            if (next != Answer::Fail)
                replies.async(succeed);
            if (next == Answer::ReplyThenFail)
                replies.async(fail);
        }

        void hold(const Held& message) HAVREL_REQUIRES(lock)
        {
            held.push_back(message);
            holding.tell(true);
        }

        void settleHeld(const std::optional<Error>& error)
        {
            const MutexLock guard(lock);
            for (const Held& each : std::exchange(held, {}))
                replies.async([each, error] { error ? (*each.failed)(*error) : each.reply({}); });
        }

        void replyToFirstHeld()
        {
            const MutexLock guard(lock);
            replies.async([first = held.front()] { first.reply({}); });
            held.erase(held.begin());
        }

        void end()
        {
            settleHeld(endedError());
            const MutexLock guard(lock);
            ended = true;
            tellEnd();
        }

        void tellEnd() HAVREL_REQUIRES(lock)
        {
            if (ended && invalidationHandler)
                replies.async(std::exchange(invalidationHandler, nullptr));
        }

        SerialQueue& replies;
        Mutex lock;
        std::deque<Answer> answers HAVREL_GUARDED_BY(lock);
        std::map<QByteArray, QVariantList> values HAVREL_GUARDED_BY(lock);
        QByteArrayList journal HAVREL_GUARDED_BY(lock);
        std::vector<Message> messages HAVREL_GUARDED_BY(lock);
        std::vector<Held> held HAVREL_GUARDED_BY(lock);
        Awaited<bool> holding;
        bool ended HAVREL_GUARDED_BY(lock) = false;
        std::function<void()> invalidationHandler HAVREL_GUARDED_BY(lock);
        XPCInterfacePtr remoteInterface HAVREL_GUARDED_BY(lock);
        XPCInterfacePtr exportedInterface HAVREL_GUARDED_BY(lock);
        std::shared_ptr<XPCExportedObject> exportedObject HAVREL_GUARDED_BY(lock);
    };

    class Proxy final : public XPCProxy
    {
    public:
        Proxy(std::shared_ptr<State> state, ErrorHandler failed)
            : m_state(std::move(state))
            , m_failed(std::make_shared<ErrorHandler>(std::move(failed)))
        {
        }
        void send(const QByteArray& keywordName, const QVariantList& values, XPCReply reply) override
        {
            m_state->send({keywordName, values}, reply, m_failed);
        }

    private:
        const std::shared_ptr<State> m_state;
        const std::shared_ptr<ErrorHandler> m_failed;
    };

    const QString m_name;
    const std::shared_ptr<State> m_state;
};

using ScriptedXPCConnectionPtr = std::shared_ptr<ScriptedXPCConnection>;

} // namespace havrel::tests
