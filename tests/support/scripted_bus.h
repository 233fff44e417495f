// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/temporary_tree.h"

#include <QByteArray>

#include <stdexcept>
#include <thread>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace havrel::tests {

/// Puts one message of the bus together, byte by byte, in little-endian order.
///
/// \source the message bus specification, "Message Format"
class WireMessage
{
public:
    enum Type : char { Call = 1, Return = 2 };

    WireMessage(Type type, quint32 serial)
        : m_type(type)
        , m_serial(serial)
    {
    }
    /// A header field of a type whose values are a length, their bytes and a NUL: "s" and "o".
    WireMessage& text(char field, char type, const QByteArray& value)
    {
        startField(field, type);
        number(m_fields, static_cast<quint32>(value.size()));
        m_fields += value + '\0';
        return *this;
    }
    WireMessage& replySerial(quint32 serial)
    {
        startField(5, 'u');
        number(m_fields, serial);
        return *this;
    }
    WireMessage& body(const QByteArray& signature, const QByteArray& bytes)
    {
        startField(8, 'g');
        m_fields += static_cast<char>(signature.size());
        m_fields += signature + '\0';
        m_body = bytes;
        return *this;
    }
    [[nodiscard]] QByteArray bytes() const
    {
        QByteArray all;
        for (const char each : {'l', m_type, '\0', '\1'})
            all += each;
        number(all, static_cast<quint32>(m_body.size()));
        number(all, m_serial);
        number(all, static_cast<quint32>(m_fields.size()));
        all += m_fields;
        pad(all, 8);
        return all + m_body;
    }

    static void number(QByteArray& bytes, quint32 value)
    {
        pad(bytes, 4);
        for (int shift = 0; shift < 32; shift += 8)
            bytes += static_cast<char>(value >> shift);
    }
    static void pad(QByteArray& bytes, int alignment)
    {
        while (bytes.size() % alignment != 0)
            bytes += '\0';
    }

private:
    /// Fields begin at a multiple of 8, as does their array.
    void startField(char field, char type)
    {
        pad(m_fields, 8);
        m_fields += field;
        m_fields += '\1';
        m_fields += type;
        m_fields += '\0';
    }

    char m_type;
    quint32 m_serial;
    QByteArray m_fields;
    QByteArray m_body;
};

/// Greets the first that connects, as a bus would, waits for a message that holds the word "Ready", says what it was
/// told to say, and hangs up.
class ScriptedBus
{
public:
    /// \param messages what it is to say
    explicit ScriptedBus(QByteArray messages)
        : m_messages(std::move(messages))
        , m_listening(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        sockaddr_un name{.sun_family = AF_UNIX, .sun_path = {}};
        const QByteArray path = m_tree.bytes("bus");
        std::copy(path.begin(), path.end(), name.sun_path);
        if (::bind(m_listening, reinterpret_cast<const sockaddr*>(&name), sizeof name) != 0 ||
            ::listen(m_listening, 1) != 0)
            throw std::runtime_error("cannot listen");
        m_thread = std::thread([this] { play(); });
    }
    ~ScriptedBus()
    {
        ::shutdown(m_listening, SHUT_RDWR); // nobody may have come
        m_thread.join();
        ::close(m_listening);
    }
    ScriptedBus(const ScriptedBus&) = delete;
    ScriptedBus& operator=(const ScriptedBus&) = delete;
    ScriptedBus(ScriptedBus&&) = delete;
    ScriptedBus& operator=(ScriptedBus&&) = delete;

    [[nodiscard]] QByteArray address() const { return "unix:path=" + m_tree.bytes("bus"); }

private:
    void play() const
    {
        const int peer = ::accept(m_listening, nullptr, nullptr);
        if (peer < 0)
            return;
        const QByteArray name = ":1.1";
        QByteArray greeting;
        WireMessage::number(greeting, static_cast<quint32>(name.size()));
        greeting += name + '\0';
        QByteArray heard = heardUntil(peer, {}, "BEGIN\r\n");
        say(peer, "DATA\r\nOK 0123456789abcdef0123456789abcdef\r\nAGREE_UNIX_FD\r\n");
        heard = heardUntil(peer, heard, "Hello");
        say(peer, WireMessage(WireMessage::Return, 1).replySerial(1).body("s", greeting).bytes());
        heard = heardUntil(peer, heard, "Ready");
        say(peer, m_messages);
        ::shutdown(peer, SHUT_WR);
        (void)heardUntil(peer, heard, {}); // until the peer hangs up
        ::close(peer);
    }
    /// Appends to \p heard until it holds \p end; everything when that is null.
    static QByteArray heardUntil(int peer, QByteArray heard, const QByteArray& end)
    {
        QByteArray buffer(4096, Qt::Uninitialized);
        while (end.isNull() || !heard.contains(end)) {
            const ssize_t length = ::read(peer, buffer.data(), 4096);
            if (length <= 0)
                break;
            heard.append(buffer.constData(), length);
        }
        return heard;
    }
    static void say(int peer, const QByteArray& bytes)
    {
        (void)::send(peer, bytes.constData(), static_cast<std::size_t>(bytes.size()), MSG_NOSIGNAL);
    }

    TemporaryTree m_tree;
    QByteArray m_messages;
    int m_listening;
    std::thread m_thread;
};

} // namespace havrel::tests
