// SPDX-License-Identifier: MIT
#include "platform/bus_body.h"
#include "platform/bus_library.h"

#include <cerrno>

namespace havrel::platform {
namespace {

/// Reads values from one message. Operations answer 0 or an errno value.
class BodyReader
{
public:
    explicit BodyReader(sd_bus_message* message)
        : m_message(message)
    {
    }

    /// Everything up to the end of the message, or of the container that was entered.
    int readAll(QVariantList& values)
    {
        for (;;) {
            char type = 0;
            const char* contents = nullptr;
            const int peeked = m_library.sd_bus_message_peek_type(m_message, &type, &contents);
            if (peeked <= 0)
                return -peeked;
            QVariant value;
            if (const int error = read(type, contents, value); error != 0)
                return error;
            values.append(std::move(value));
        }
    }

private:
    int read(char type, const char* contents, QVariant& value)
    {
        switch (type) {
        case 'a':
            return readArray(contents, value);
        case 'v':
            return readVariant(contents, value);
        case 'r':
        case 'e':
            return readList(type, contents, value);
        default:
            return readBasic(type, value);
        }
    }

    int readArray(const QByteArray& element, QVariant& value)
    {
        if (element == "y")
            return readBytes(value);
        if (element.startsWith("{s") || element.startsWith("{o") || element.startsWith("{g"))
            return readDictionary(element, value);
        const int error = readList('a', element, value);
        if (error == 0 && (element == "s" || element == "o" || element == "g"))
            value = value.toStringList();
        return error;
    }

    int readBytes(QVariant& value)
    {
        const void* bytes = nullptr;
        size_t length = 0;
        const int result = m_library.sd_bus_message_read_array(m_message, 'y', &bytes, &length);
        if (result >= 0)
            value = QByteArray(static_cast<const char*>(bytes), static_cast<qsizetype>(length));
        return result < 0 ? -result : 0;
    }

    int readDictionary(const QByteArray& element, QVariant& value)
    {
        QVariant entries;
        if (const int error = readList('a', element, entries); error != 0)
            return error;
        QVariantMap map;
        for (const QVariant& each : entries.toList()) {
            const QVariantList entry = each.toList();
            map.insert(entry.at(0).toString(), entry.at(1));
        }
        value = map;
        return 0;
    }

    int readVariant(const QByteArray& contents, QVariant& value)
    {
        QVariant only;
        const int error = readList('v', contents, only);
        const QVariantList values = only.toList();
        if (error == 0)
            value = values.isEmpty() ? QVariant() : values.constFirst();
        return error;
    }

    int readList(char container, const QByteArray& contents, QVariant& value)
    {
        const int entered = m_library.sd_bus_message_enter_container(m_message, container, contents.constData());
        if (entered <= 0)
            return entered < 0 ? -entered : EBADMSG;
        QVariantList values;
        const int error = readAll(values);
        if (error != 0)
            return error;
        const int left = m_library.sd_bus_message_exit_container(m_message);
        value = values;
        return left < 0 ? -left : 0;
    }

    int readBasic(char type, QVariant& value)
    {
        switch (type) {
        case 's':
        case 'o':
        case 'g':
            return readAs<const char*>(type, value, [](const char* text) { return QString::fromUtf8(text); });
        case 'b':
            return readAs<int>(type, value, [](int truth) { return truth != 0; });
        case 'd':
            return readAs<double>(type, value, [](double number) { return number; });
        default:
            return readInteger(type, value);
        }
    }

    int readInteger(char type, QVariant& value)
    {
        const auto widened = [](auto number) { return qint64{number}; };
        const auto widenedUnsigned = [](auto number) { return quint64{number}; };
        switch (type) {
        case 'y':
            return readAs<quint8>(type, value, widenedUnsigned);
        case 'n':
            return readAs<qint16>(type, value, widened);
        case 'q':
            return readAs<quint16>(type, value, widenedUnsigned);
        case 'i':
            return readAs<qint32>(type, value, widened);
        case 'u':
            return readAs<quint32>(type, value, widenedUnsigned);
        case 'x':
            return readAs<qint64>(type, value, widened);
        case 't':
            return readAs<quint64>(type, value, widenedUnsigned);
        default:
            return ENOTSUP;
        }
    }

    template<typename Raw, typename Convert>
    int readAs(char type, QVariant& value, const Convert& convert)
    {
        Raw raw{};
        const int result = m_library.sd_bus_message_read_basic(m_message, type, &raw);
        if (result > 0)
            value = QVariant::fromValue(convert(raw));
        return result > 0 ? 0 : result < 0 ? -result : EBADMSG;
    }

    const BusLibrary& m_library = *busLibrary();
    sd_bus_message* m_message;
};

} // namespace

int readBody(sd_bus_message* message, QVariantList& values)
{
    return BodyReader(message).readAll(values);
}

} // namespace havrel::platform
