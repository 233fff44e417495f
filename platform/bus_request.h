// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QVariant>

#include <functional>
#include <memory>
#include <vector>

namespace havrel::platform {

class BusLoop;

/// A call that a peer made of an exported method, and the duty to answer it: once, at any time. Unanswered, it fails
/// with its end. Callers that asked for no answer get none.
///
/// Threads: one thread at a time.
class BusRequest
{
public:
    struct Origin
    {
        QByteArray sender; ///< a unique name
        QByteArray path;
        QByteArray interface;
        QByteArray member;
    };

    BusRequest(std::weak_ptr<BusLoop> loop, quint64 message, QByteArray answers, Origin origin, QVariantList values);
    ~BusRequest();
    BusRequest(BusRequest&& other) noexcept;
    BusRequest& operator=(BusRequest&& other) = delete;
    BusRequest(const BusRequest&) = delete;
    BusRequest& operator=(const BusRequest&) = delete;

    [[nodiscard]] const Origin& origin() const noexcept { return m_origin; }
    /// As many as the method takes, of its types.
    [[nodiscard]] const QVariantList& values() const noexcept { return m_values; }

    /// Answers with \p values, which must suit what the method answers; EINVAL otherwise, and the caller gets an error.
    /// \return 0 or an errno value; ENOTCONN when the connection has gone meanwhile.
    int reply(const QVariantList& values = {});
    /// Answers with an error.
    /// \param name "com.havrel.Error.Something"
    int fail(const QByteArray& name, const QString& text);

private:
    std::weak_ptr<BusLoop> m_loop;
    quint64 m_message;
    QByteArray m_answers;
    Origin m_origin;
    QVariantList m_values;
};

/// A method of an exported interface.
struct BusMethod
{
    QByteArray name;
    QByteArray takes = {}; ///< signature; calls with another one fail and never arrive
    QByteArrayList takesNames = {};
    QByteArray answers = {}; ///< signature
    QByteArrayList answersNames = {};
    /// Runs on the connection's event thread, in the order of the calls: must not wait and must not throw.
    std::function<void(BusRequest request)> call = {};
};

struct BusInterface
{
    QByteArray name;
    std::vector<BusMethod> methods;
};

} // namespace havrel::platform
