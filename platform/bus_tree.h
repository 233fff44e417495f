// SPDX-License-Identifier: MIT
#pragma once

#include "platform/bus_body.h"

#include <QByteArray>
#include <QVariantList>

#include <functional>
#include <memory>

namespace havrel::platform {

class BusLoop;

/// The duty to answer one call: once, at any time. Unanswered, the call fails with the end of this object. Does not
/// wait for the event thread; what the bus makes of the answer is never known.
///
/// Threads: one thread at a time.
class BusAnswer
{
public:
    /// \param held the number under which \p loop keeps the call
    BusAnswer(std::weak_ptr<BusLoop> loop, quint64 held);
    ~BusAnswer();
    BusAnswer(const BusAnswer&) = delete;
    BusAnswer& operator=(const BusAnswer&) = delete;
    BusAnswer(BusAnswer&&) = delete;
    BusAnswer& operator=(BusAnswer&&) = delete;

    /// Answers with \p body; with an error where that has no shape.
    void reply(const BusBody& body);
    /// \param name "com.havrel.Error.Something"
    void fail(const QByteArray& name, const QString& text);

private:
    std::weak_ptr<BusLoop> m_loop;
    quint64 m_held;
};

/// A call of something below a path.
struct BusTreeCall
{
    QByteArray sender;      ///< a unique name
    QByteArray destination; ///< the name that was called: a unique or a well-known one
    QByteArray path;
    QByteArray interface; ///< may be empty
    QByteArray member;
    QByteArray signature; ///< of the values
    QVariantList values;
    std::shared_ptr<BusAnswer> answer; ///< null: the caller asked for none
};

/// Whatever is below a path, the path itself too.
struct BusTree
{
    QByteArray prefix;
    /// Which interfaces it takes; calls of others are answered by the library.
    std::function<bool(const QByteArray& interface)> takes;
    /// Both run on the event thread, in the order of the calls: must not wait and must not throw.
    std::function<void(const BusTreeCall& call)> called;
};

} // namespace havrel::platform
