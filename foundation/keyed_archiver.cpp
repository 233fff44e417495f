// SPDX-License-Identifier: MIT
#include "foundation/keyed_archiver.h"

#include "foundation/archivable_classes.h"
#include "foundation/keyed_archive.h"
#include "foundation/property_list_kind.h"
#include "foundation/reference_date.h"

#include <QDateTime>

#include <utility>

namespace havrel {
namespace {

using namespace keyed_archive; // NOLINT(google-build-using-namespace): the format's own names
using Kind = PropertyListKind;

/// Levels that canEncodeObject() wants below containers and instances: a property list of the greatest depth, and the
/// fields of an instance at its bottom.
constexpr int kRoomForContents = kDeepestPropertyList + 8;

QVariant referenceTo(qsizetype index)
{
    return QVariant::fromValue(PropertyListUID{static_cast<quint64>(index)});
}

QStringList onlyTheRootClass()
{
    return {kAnyClass};
}

const void* identityOf(const ArchivableClass& archivable, const QVariant& object)
{
    return archivable.identity ? archivable.identity(object) : nullptr;
}

[[noreturn]] void raiseUnkeyed()
{
    raiseCannotEncode(QStringLiteral("a keyed archive takes values only with their keys"));
}

} // namespace

KeyedArchiver::KeyedArchiver(SecureCoding requiring)
    : m_requiring(requiring)
    , m_objects{QString(kNil)}
{
}

QByteArray KeyedArchiver::archive(const QVariant& root)
{
    const QVariant top = add(root);
    const PropertyListWriting written = binaryPropertyList(QVariantMap{
        {kVersionKey, kVersion},
        {kArchiverKey, QString(kArchiver)},
        {kTopKey, QVariantMap{{kRootKey, top}}},
        {kObjectsKey, m_objects},
    });
    if (written.error)
        raiseCannotEncode(*written.error);
    return written.bytes;
}

bool KeyedArchiver::canEncodeObject(const QVariant& object) const
{
    const Kind kind = propertyListKindOf(object);
    const bool isContainer = kind == Kind::List || kind == Kind::Map;
    const bool isInstance = object.isValid() && (kind == Kind::None || kind == Kind::UID);
    if (m_depth + (isContainer || isInstance ? kRoomForContents : 1) > kDeepest)
        return false;
    if (!isInstance)
        return true;
    const auto archivable = archivableClassOf(object);
    if (!archivable || (m_requiring == SecureCoding::Yes && !archivable->supportsSecureCoding))
        return false;
    return !m_open.contains(identityOf(*archivable, object));
}

void KeyedArchiver::encodeObject(const QVariant& object, const QString& key)
{
    store(add(object), key);
}

void KeyedArchiver::encodeBool(bool value, const QString& key)
{
    store(value, key);
}

void KeyedArchiver::encodeInteger(qint64 value, const QString& key)
{
    store(value, key);
}

void KeyedArchiver::encodeBytes(const QByteArray& bytes, const QString& key)
{
    store(bytes, key);
}

void KeyedArchiver::encodeObject(const QVariant& /*object*/)
{
    raiseUnkeyed();
}

void KeyedArchiver::encodeUnsigned32(quint32 /*value*/)
{
    raiseUnkeyed();
}

void KeyedArchiver::encodeBytes(const QByteArray& /*bytes*/)
{
    raiseUnkeyed();
}

void KeyedArchiver::charge(quint64 objects)
{
    if (objects > static_cast<quint64>(kMostPropertyListObjects - m_visited))
        raiseCannotEncode(property_list_fault::tooManyValues());
    m_visited += static_cast<int>(objects);
}

void KeyedArchiver::store(const QVariant& value, const QString& key)
{
    m_fields.insert(fieldName(key), value);
}

QVariant KeyedArchiver::add(const QVariant& object)
{
    charge(1);
    if (m_depth == kDeepest)
        raiseCannotEncode(QStringLiteral("its objects nest deeper than %1 levels").arg(kDeepest));
    ++m_depth;
    const qsizetype index = addValue(object);
    --m_depth;
    return referenceTo(index);
}

qsizetype KeyedArchiver::addValue(const QVariant& value)
{
    switch (propertyListKindOf(value)) {
    case Kind::None:
    case Kind::UID:
        return value.isValid() ? addInstance(value) : 0;
    case Kind::Null:
        return addNew(QVariantMap{{kClassKey, classReference(QStringLiteral("NSNull"), onlyTheRootClass())}});
    case Kind::String:
        return addString(value.toString());
    case Kind::Data:
        return addField(QStringLiteral("NSData"), kDataField, value);
    case Kind::Date:
        return addField(QStringLiteral("NSDate"), kTimeField, intervalSinceReferenceDate(value.toDateTime()));
    case Kind::List:
        return addList(value.toList());
    case Kind::Map:
        return addMap(value.toMap());
    case Kind::Bool:
    case Kind::Signed:
    case Kind::Unsigned:
    case Kind::Real:
        break;
    }
    return addNew(value);
}

qsizetype KeyedArchiver::addNew(const QVariant& stored)
{
    m_objects.append(stored);
    return m_objects.size() - 1;
}

qsizetype KeyedArchiver::addString(const QString& text)
{
    const auto known = m_strings.constFind(text);
    if (known != m_strings.cend())
        return *known;
    return m_strings[text] = addNew(text);
}

qsizetype KeyedArchiver::addField(const QString& className, const QString& field, const QVariant& value)
{
    const qsizetype index = addNew({});
    m_objects[index] = QVariantMap{{kClassKey, classReference(className, onlyTheRootClass())}, {field, value}};
    return index;
}

qsizetype KeyedArchiver::addList(const QVariantList& list)
{
    const qsizetype index = addNew({});
    QVariantMap fields{{kObjectsField, references(list)}};
    fields.insert(kClassKey, classReference(QStringLiteral("NSArray"), onlyTheRootClass()));
    m_objects[index] = fields;
    return index;
}

qsizetype KeyedArchiver::addMap(const QVariantMap& map)
{
    const qsizetype index = addNew({});
    QVariantList keys;
    for (const QString& key : map.keys())
        keys << key;
    QVariantMap fields{{kKeysField, references(keys)}, {kObjectsField, references(map.values())}};
    fields.insert(kClassKey, classReference(QStringLiteral("NSDictionary"), onlyTheRootClass()));
    m_objects[index] = fields;
    return index;
}

QVariantList KeyedArchiver::references(const QVariantList& objects)
{
    QVariantList list;
    list.reserve(objects.size());
    for (const QVariant& object : objects)
        list.append(add(object));
    return list;
}

qsizetype KeyedArchiver::addInstance(const QVariant& object)
{
    const auto archivable = archivableClassOf(object);
    if (!archivable)
        raiseCannotEncode(notAPropertyListValue(object));
    if (m_requiring == SecureCoding::Yes && !archivable->supportsSecureCoding)
        raiseCannotEncode(QStringLiteral("the class %1 does not support secure coding").arg(archivable->name));
    const void* identity = identityOf(*archivable, object);
    if (!identity)
        return encodeInstance(*archivable, object);
    if (m_open.contains(identity))
        raiseCannotEncode(QStringLiteral("an object of the class %1 is inside itself").arg(archivable->name));
    if (const auto known = m_instances.constFind(identity); known != m_instances.cend())
        return *known;
    m_retained.append(object);
    m_open.insert(identity);
    const qsizetype index = encodeInstance(*archivable, object);
    m_open.remove(identity);
    return m_instances[identity] = index;
}

qsizetype KeyedArchiver::encodeInstance(const ArchivableClass& archivable, const QVariant& object)
{
    const qsizetype index = addNew({});
    QVariantMap outer = std::exchange(m_fields, {});
    archivable.encode(object, *this);
    m_fields.insert(kClassKey, classReference(archivable.name, archivable.superclasses));
    m_objects[index] = std::exchange(m_fields, std::move(outer));
    return index;
}

QVariant KeyedArchiver::classReference(const QString& name, const QStringList& superclasses)
{
    const auto known = m_classes.constFind(name);
    if (known != m_classes.cend())
        return referenceTo(*known);
    const qsizetype index = addNew(QVariantMap{{kClassNameKey, name}, {kClassesKey, QStringList{name} + superclasses}});
    m_classes.insert(name, index);
    return referenceTo(index);
}

} // namespace havrel
