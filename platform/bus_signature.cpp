// SPDX-License-Identifier: MIT
#include "platform/bus_body.h"

namespace havrel::platform {
namespace {

constexpr QByteArrayView kBasicTypes = "ybnqiuxtdsogh";
constexpr int kDeepest = 64; // containers in containers; the bus protocol allows 32 of each kind

qsizetype lengthOfType(QByteArrayView signature, int depth);

/// The length of the complete types up to \p end, with it; 0 when it does not come.
qsizetype lengthUpTo(char end, QByteArrayView signature, int depth)
{
    qsizetype at = 0;
    while (at < signature.size() && signature[at] != end) {
        const qsizetype length = lengthOfType(signature.sliced(at), depth);
        if (length == 0)
            return 0;
        at += length;
    }
    return at > 0 && at < signature.size() ? at + 1 : 0;
}

/// "{", a basic type, a complete type, "}".
qsizetype lengthOfEntry(QByteArrayView signature, int depth)
{
    if (signature.size() < 4 || !kBasicTypes.contains(signature[1]))
        return 0;
    const qsizetype value = lengthOfType(signature.sliced(2), depth);
    return value > 0 && value + 2 < signature.size() && signature[value + 2] == '}' ? value + 3 : 0;
}

qsizetype lengthOfArray(QByteArrayView signature, int depth)
{
    const QByteArrayView element = signature.sliced(1);
    const qsizetype length =
        element.startsWith('{') ? lengthOfEntry(element, depth + 1) : lengthOfType(element, depth + 1);
    return length == 0 ? 0 : length + 1;
}

qsizetype lengthOfStructure(QByteArrayView signature, int depth)
{
    const qsizetype members = lengthUpTo(')', signature.sliced(1), depth + 1);
    return members == 0 ? 0 : members + 1;
}

qsizetype lengthOfType(QByteArrayView signature, int depth)
{
    if (signature.isEmpty() || depth > kDeepest)
        return 0;
    switch (signature[0]) {
    case 'a':
        return lengthOfArray(signature, depth);
    case '(':
        return lengthOfStructure(signature, depth);
    case 'v':
        return 1;
    default:
        return kBasicTypes.contains(signature[0]) ? 1 : 0;
    }
}

struct NaturalType
{
    int kind;
    const char* type;
};

constexpr NaturalType kNaturalTypes[] = {
    {QMetaType::Bool, "b"},
    {QMetaType::UChar, "y"},
    {QMetaType::Int, "i"},
    {QMetaType::UInt, "u"},
    {QMetaType::LongLong, "x"},
    {QMetaType::ULongLong, "t"},
    {QMetaType::Double, "d"},
    {QMetaType::QString, "s"},
    {QMetaType::QByteArray, "ay"},
    {QMetaType::QStringList, "as"},
    {QMetaType::QVariantMap, "a{sv}"},
    {QMetaType::QVariantList, "av"},
};

} // namespace

QByteArrayView firstCompleteType(QByteArrayView signature)
{
    return signature.first(lengthOfType(signature, 0));
}

QByteArray naturalBusType(const QVariant& value)
{
    if (value.metaType() == QMetaType::fromType<BusVariant>())
        return value.value<BusVariant>().signature;
    for (const NaturalType& each : kNaturalTypes)
        if (each.kind == value.typeId())
            return each.type;
    return {};
}

} // namespace havrel::platform
