// SPDX-License-Identifier: MIT
#include "fs/path_coding.h"

#include "foundation/coder.h"
#include "fs/path.h"
#include "fs/sub_path.h"

#include <typeinfo>

namespace havrel {
namespace {

constexpr QLatin1StringView kPathKey{"path"};
constexpr QLatin1StringView kRootClass{"NSObject"};
constexpr QLatin1StringView kPathClass{"JNPath"};
constexpr QLatin1StringView kSubPathClass{"JNSubPath"};

JNPathPtr pathIn(const QVariant& object)
{
    return object.metaType() == QMetaType::fromType<JNPathPtr>() ? object.value<JNPathPtr>() : nullptr;
}

template<class Path>
bool isExactly(const QVariant& object)
{
    const JNPathPtr path = pathIn(object);
    if (!path)
        return false;
    const JNPath& found = *path;
    return typeid(found) == typeid(Path);
}

template<class Path>
QVariant decodeAs(Decoder& decoder)
{
    const JNPathPtr path = Path::withCoder(decoder);
    return path ? QVariant::fromValue(path) : QVariant();
}

template<class Path>
ArchivableClass rowOf(const QString& name, const QStringList& superclasses)
{
    ArchivableClass row;
    row.name = name;
    row.superclasses = superclasses;
    row.isInstance = isExactly<Path>;
    row.identity = [](const QVariant& object) -> const void* { return pathIn(object).get(); };
    row.encode = [](const QVariant& object, Encoder& encoder) { pathIn(object)->encodeWithCoder(encoder); };
    row.decode = decodeAs<Path>;
    return row;
}

} // namespace

bool registerPathClasses()
{
    registerArchivableClass(rowOf<JNPath>(kPathClass, {QString(kRootClass)}));
    registerArchivableClass(rowOf<JNSubPath>(kSubPathClass, {QString(kPathClass), QString(kRootClass)}));
    return true;
}

QString JNPath::className() const
{
    return kPathClass;
}

QString JNSubPath::className() const
{
    return kSubPathClass;
}

void JNPath::encodeWithCoder(Encoder& encoder) const
{
    const QByteArray bytes = cPath() + '\0';
    if (encoder.allowsKeyedCoding())
        encoder.encodeBytes(bytes, kPathKey);
    else
        encoder.encodeBytes(bytes);
}

QByteArray JNPath::decodedCPath(Decoder& decoder)
{
    QByteArray bytes = decoder.allowsKeyedCoding() ? decoder.decodeBytes(kPathKey) : decoder.decodeBytes();
    if (bytes.isEmpty())
        return {};
    if (const qsizetype end = bytes.indexOf('\0'); end >= 0) // as C reads it
        bytes.truncate(end);
    return bytes.isNull() ? QByteArray("") : bytes;
}

JNPathPtr JNPath::withCoder(Decoder& decoder)
{
    const QByteArray path = decodedCPath(decoder);
    return path.isNull() ? nullptr : withCPath(path);
}

} // namespace havrel
