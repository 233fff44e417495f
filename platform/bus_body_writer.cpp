// SPDX-License-Identifier: MIT
#include "platform/bus_body.h"
#include "platform/bus_library.h"
#include "platform/bus_text.h"

#include <cerrno>
#include <utility>

namespace havrel::platform {
namespace {

// A message that is larger ends the connection to the bus, and with it all that goes through it.
// \source the message bus specification, "Marshaling" and "Message Format"
constexpr qsizetype kLargestArray = 64 * 1'024 * 1'024;
constexpr qsizetype kLargestBody = 128 * 1'024 * 1'024 - 16 * 1'024; // the rest is for the header

/// How many bytes the types without contents take, which is also what they are aligned to.
constexpr qsizetype sizeOfBasic(char type)
{
    switch (type) {
    case 'y':
        return 1;
    case 'n':
    case 'q':
        return 2;
    case 'x':
    case 't':
    case 'd':
        return 8;
    default:
        return 4;
    }
}

/// Where a message is while it is written.
class WireOffset
{
public:
    void add(qsizetype alignment, qsizetype bytes) { m_at = (m_at + alignment - 1) / alignment * alignment + bytes; }
    [[nodiscard]] qsizetype at() const noexcept { return m_at; }
    [[nodiscard]] bool isTooFar() const noexcept { return m_at > kLargestBody; }

    /// What stands before the contents of a container.
    void begin(char container, QByteArrayView types)
    {
        if (container == 'v')
            return add(1, types.size() + 2);
        if (container == 'a')
            add(4, 4);
        if (container != 'a' || types.startsWith('{') || types.startsWith('(') || sizeOfBasic(types[0]) == 8)
            add(8, 0);
    }

private:
    qsizetype m_at = 0;
};

/// Writes values into one message. Operations answer 0 or an errno value.
class BodyWriter
{
public:
    explicit BodyWriter(sd_bus_message* message)
        : m_message(message)
    {
    }

    int appendAll(QByteArrayView signature, const QVariantList& values)
    {
        for (const QVariant& each : values) {
            const QByteArrayView type = firstCompleteType(signature);
            if (const int error = append(type, each); error != 0)
                return error;
            signature = signature.sliced(type.size());
        }
        return signature.isEmpty() ? 0 : EINVAL;
    }

private:
    int append(QByteArrayView type, const QVariant& value)
    {
        if (type.isEmpty())
            return EINVAL;
        switch (type[0]) {
        case 'a':
            return appendArray(type.sliced(1), value);
        case '(':
            return appendStructure(type.sliced(1).chopped(1), value);
        case 'v':
            return appendVariant(value);
        default:
            return appendBasic(type[0], value);
        }
    }

    int appendArray(QByteArrayView element, const QVariant& value)
    {
        if (element == "y")
            return appendBytes(value);
        if (element.startsWith('{'))
            return appendDictionary(element.sliced(1).chopped(1), value);
        if (!value.canConvert<QVariantList>())
            return EINVAL;
        return contained('a', element, [&] {
            for (const QVariant& each : value.toList())
                if (const int error = append(element, each); error != 0)
                    return error;
            return 0;
        });
    }

    int appendBytes(const QVariant& value)
    {
        if (value.typeId() != QMetaType::QByteArray)
            return EINVAL;
        const QByteArray bytes = value.toByteArray();
        m_offset.add(4, 4 + bytes.size());
        if (bytes.size() > kLargestArray || m_offset.isTooFar())
            return EMSGSIZE;
        return answered(m_library.sd_bus_message_append_array(
            m_message, 'y', bytes.constData(), static_cast<size_t>(bytes.size())));
    }

    int appendDictionary(QByteArrayView entry, const QVariant& value)
    {
        if (value.typeId() != QMetaType::QVariantMap || !QByteArrayView("sog").contains(entry[0]))
            return EINVAL;
        const QVariantMap map = value.toMap();
        return contained('a', QByteArray("{" + entry.toByteArray() + "}"), [&] {
            for (auto each = map.constKeyValueBegin(); each != map.constKeyValueEnd(); ++each)
                if (const int error = appendEntry(entry, each->first, each->second); error != 0)
                    return error;
            return 0;
        });
    }

    int appendEntry(QByteArrayView entry, const QString& key, const QVariant& value)
    {
        return contained('e', entry, [&] {
            const int error = appendText(entry[0], key);
            return error != 0 ? error : append(entry.sliced(1), value);
        });
    }

    int appendStructure(QByteArrayView members, const QVariant& value)
    {
        if (value.typeId() != QMetaType::QVariantList)
            return EINVAL;
        return contained('r', members, [&] { return appendAll(members, value.toList()); });
    }

    int appendVariant(const QVariant& value)
    {
        const QByteArray type = naturalBusType(value);
        if (type.isEmpty() || firstCompleteType(type).size() != type.size())
            return EINVAL;
        const bool says = value.metaType() == QMetaType::fromType<BusVariant>();
        return contained('v', type, [&] { return append(type, says ? value.value<BusVariant>().value : value); });
    }

    int appendBasic(char type, const QVariant& value)
    {
        switch (type) {
        case 'b': {
            const int truth = value.toBool() ? 1 : 0;
            return value.typeId() == QMetaType::Bool ? appendFixed(type, &truth) : EINVAL;
        }
        case 'd': {
            const double number = value.toDouble();
            return value.typeId() == QMetaType::Double ? appendFixed(type, &number) : EINVAL;
        }
        case 's':
        case 'o':
        case 'g':
            return value.typeId() == QMetaType::QString ? appendText(type, value.toString()) : EINVAL;
        default:
            return appendInteger(type, value);
        }
    }

    int appendInteger(char type, const QVariant& value)
    {
        switch (type) {
        case 'y':
            return appendAs<quint8>(type, value);
        case 'n':
            return appendAs<qint16>(type, value);
        case 'q':
            return appendAs<quint16>(type, value);
        case 'i':
            return appendAs<qint32>(type, value);
        case 'u':
            return appendAs<quint32>(type, value);
        case 'x':
            return appendAs<qint64>(type, value);
        case 't':
            return appendAs<quint64>(type, value);
        default:
            return ENOTSUP;
        }
    }

    template<typename Integer>
    int appendAs(char type, const QVariant& value)
    {
        const bool isUnsigned = value.typeId() == QMetaType::ULongLong || value.typeId() == QMetaType::UInt ||
                                value.typeId() == QMetaType::UChar;
        const bool isSigned = value.typeId() == QMetaType::LongLong || value.typeId() == QMetaType::Int;
        const bool fits = isUnsigned ? std::in_range<Integer>(value.toULongLong())
                                     : isSigned && std::in_range<Integer>(value.toLongLong());
        const auto integer = static_cast<Integer>(value.toULongLong()); // modulo 2^64, which the narrowing undoes
        return fits ? appendFixed(type, &integer) : EINVAL;
    }

    int appendText(char type, const QString& text)
    {
        const QByteArray bytes = busText(text).toUtf8();
        if (type == 'g')
            m_offset.add(1, bytes.size() + 2);
        else
            m_offset.add(4, 4 + bytes.size() + 1);
        return bytes.contains('\0') ? EINVAL : appendRaw(type, bytes.constData());
    }

    int appendFixed(char type, const void* value)
    {
        m_offset.add(sizeOfBasic(type), sizeOfBasic(type));
        return appendRaw(type, value);
    }

    int appendRaw(char type, const void* value)
    {
        if (m_offset.isTooFar())
            return EMSGSIZE;
        return answered(m_library.sd_bus_message_append_basic(m_message, type, value));
    }

    template<typename Contents>
    int contained(char container, QByteArrayView types, const Contents& contents)
    {
        const QByteArray terminated = types.toByteArray();
        const int opened = m_library.sd_bus_message_open_container(m_message, container, terminated.constData());
        if (opened < 0)
            return -opened;
        m_offset.begin(container, types);
        const qsizetype start = m_offset.at();
        if (const int error = contents(); error != 0)
            return error;
        if (container == 'a' && m_offset.at() - start > kLargestArray)
            return EMSGSIZE;
        return answered(m_library.sd_bus_message_close_container(m_message));
    }

    static int answered(int result) { return result < 0 ? -result : 0; }

    const BusLibrary& m_library = *busLibrary();
    sd_bus_message* m_message;
    WireOffset m_offset;
};

} // namespace

int appendBody(sd_bus_message* message, const BusBody& body)
{
    return BodyWriter(message).appendAll(body.signature, body.values);
}

} // namespace havrel::platform
