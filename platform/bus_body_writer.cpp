// SPDX-License-Identifier: MIT
#include "platform/bus_body.h"
#include "platform/bus_library.h"

#include <cerrno>
#include <utility>

namespace havrel::platform {
namespace {

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
            return value.typeId() == QMetaType::Bool ? appendRaw(type, &truth) : EINVAL;
        }
        case 'd': {
            const double number = value.toDouble();
            return value.typeId() == QMetaType::Double ? appendRaw(type, &number) : EINVAL;
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
        return fits ? appendRaw(type, &integer) : EINVAL;
    }

    int appendText(char type, const QString& text)
    {
        const QByteArray bytes = text.toUtf8();
        return bytes.contains('\0') ? EINVAL : appendRaw(type, bytes.constData());
    }

    int appendRaw(char type, const void* value)
    {
        return answered(m_library.sd_bus_message_append_basic(m_message, type, value));
    }

    template<typename Contents>
    int contained(char container, QByteArrayView types, const Contents& contents)
    {
        const QByteArray terminated = types.toByteArray();
        const int opened = m_library.sd_bus_message_open_container(m_message, container, terminated.constData());
        if (opened < 0)
            return -opened;
        const int error = contents();
        return error != 0 ? error : answered(m_library.sd_bus_message_close_container(m_message));
    }

    static int answered(int result) { return result < 0 ? -result : 0; }

    const BusLibrary& m_library = *busLibrary();
    sd_bus_message* m_message;
};

} // namespace

int appendBody(sd_bus_message* message, const BusBody& body)
{
    return BodyWriter(message).appendAll(body.signature, body.values);
}

} // namespace havrel::platform
