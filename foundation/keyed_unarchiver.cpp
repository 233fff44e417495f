// SPDX-License-Identifier: MIT
#include "foundation/keyed_unarchiver.h"

#include "diagnostics/exception.h"
#include "foundation/archivable_classes.h"
#include "foundation/keyed_archive.h"
#include "foundation/keyed_archive_values.h"
#include "foundation/property_list_kind.h"
#include "foundation/reference_date.h"

#include <QDateTime>
#include <QScopedValueRollback>

#include <algorithm>

namespace havrel {
namespace {

using namespace keyed_archive; // NOLINT(google-build-using-namespace): the format's own names
using Kind = PropertyListKind;

constexpr int kAnySet = -1; // in keys of what does not depend on the set of classes

/// The archive's outermost dictionary.
QVariantMap contentsOf(const QByteArray& archive)
{
    const PropertyListReading reading = parsePropertyList(archive);
    if (reading.error)
        raiseInvalidArchive(*reading.error);
    QVariantMap contents = reading.value.toMap();
    if (contents.value(kArchiverKey) != QString(kArchiver))
        raiseInvalidArchive(QStringLiteral("it is a property list, but no keyed archive"));
    const QVariant version = contents.value(kVersionKey);
    if (propertyListKindOf(version) != Kind::Signed || version.toLongLong() != kVersion)
        raiseInvalidArchive(QStringLiteral("its version is unknown"));
    return contents;
}

[[noreturn]] void raiseDamagedField(const QString& key)
{
    raiseInvalidArchive(QStringLiteral("the value of “%1” is of the wrong kind").arg(key));
}

QVariant fieldOfKind(const QVariantMap& fields, const QString& key, Kind kind)
{
    QVariant value = fields.value(key);
    if (propertyListKindOf(value) != kind)
        raiseDamagedField(key);
    return value;
}

QDateTime dateIn(const QVariantMap& fields)
{
    const QVariant seconds = fields.value(kTimeField);
    const Kind kind = propertyListKindOf(seconds);
    QDateTime date = dateFromReferenceInterval(seconds.toDouble());
    if ((kind != Kind::Real && kind != Kind::Signed) || !date.isValid())
        raiseDamagedField(kTimeField);
    return date;
}

bool saysInvalidArchive(const Exception& exception)
{
    return exception.name() == exception_name::kBug && exception.reason() == QLatin1StringView(kInvalidArchiveReason);
}

/// What the class makes of the fields; what it raises means that the archive is not one of such an object.
QVariant decodedInstance(const ArchivableClass& archivable, Decoder& decoder)
{
    try {
        return archivable.decode(decoder);
    } catch (const Exception& exception) {
        if (saysInvalidArchive(exception))
            throw;
        raiseInvalidArchive(QStringLiteral("an object of the class “%1” cannot be restored: %2")
                                .arg(archivable.name, exception.description()));
    }
}

[[noreturn]] void raiseUnkeyed()
{
    raiseInvalidArchive(QStringLiteral("a keyed archive gives values only for their keys"));
}

} // namespace

KeyedUnarchiver::KeyedUnarchiver(const QByteArray& archive, SecureCoding requiring)
    : m_requiring(requiring)
{
    const QVariantMap contents = contentsOf(archive);
    m_top = contents.value(kTopKey).toMap().value(kRootKey);
    m_objects = contents.value(kObjectsKey).toList();
    m_open.resize(static_cast<std::size_t>(m_objects.size()));
}

QVariant KeyedUnarchiver::root(const QStringList& classes)
{
    const QScopedValueRollback restricted(m_classes, indexOfClasses(classes));
    return decodeReference(m_top);
}

bool KeyedUnarchiver::containsValueForKey(const QString& key) const
{
    return m_fields.contains(fieldName(key));
}

QVariant KeyedUnarchiver::decodeObject(const QStringList& classes, const QString& key)
{
    const auto field = m_fields.constFind(fieldName(key));
    if (field == m_fields.cend())
        return {};
    const QScopedValueRollback restricted(m_classes, indexOfClasses(classes));
    return decodeReference(*field);
}

bool KeyedUnarchiver::decodeBool(const QString& key)
{
    return decodeInteger(key) != 0;
}

qint64 KeyedUnarchiver::decodeInteger(const QString& key)
{
    const QVariant value = m_fields.value(fieldName(key));
    if (!value.isValid())
        return 0;
    const Kind kind = propertyListKindOf(value);
    if (kind != Kind::Signed && kind != Kind::Bool)
        raiseDamagedField(key);
    return value.toLongLong();
}

QByteArray KeyedUnarchiver::decodeBytes(const QString& key)
{
    return containsValueForKey(key) ? fieldOfKind(m_fields, fieldName(key), Kind::Data).toByteArray() : QByteArray();
}

QVariant KeyedUnarchiver::decodeObject()
{
    raiseUnkeyed();
}

quint32 KeyedUnarchiver::decodeUnsigned32()
{
    raiseUnkeyed();
}

QByteArray KeyedUnarchiver::decodeBytes()
{
    raiseUnkeyed();
}

QVariant KeyedUnarchiver::decodeReference(const QVariant& reference)
{
    const qsizetype index = indexOf(reference);
    charge(1);
    if (index == 0)
        return {};
    const Key key(index, m_classes);
    if (const auto known = m_decoded.constFind(key); known != m_decoded.cend()) {
        charge(static_cast<quint64>(known->weight));
        return known->object;
    }
    const int before = m_visited;
    QVariant object = decodeAt(index);
    m_decoded.insert(key, {object, m_visited - before});
    return object;
}

qsizetype KeyedUnarchiver::indexOf(const QVariant& reference) const
{
    if (propertyListKindOf(reference) != Kind::UID)
        raiseInvalidArchive(QStringLiteral("a reference is missing"));
    const quint64 number = reference.value<PropertyListUID>().number;
    if (number >= static_cast<quint64>(m_objects.size()))
        raiseInvalidArchive(QStringLiteral("a reference leads outside the objects"));
    return static_cast<qsizetype>(number);
}

void KeyedUnarchiver::charge(quint64 objects)
{
    if (objects > static_cast<quint64>(kMostPropertyListObjects - m_visited))
        raiseInvalidArchive(property_list_fault::tooManyValues());
    m_visited += static_cast<int>(objects);
}

QVariant KeyedUnarchiver::decodeAt(qsizetype index)
{
    const auto place = static_cast<std::size_t>(index);
    if (m_open[place])
        raiseInvalidArchive(QStringLiteral("an object is inside itself"));
    if (m_depth == kDeepest)
        raiseInvalidArchive(QStringLiteral("its objects nest deeper than %1 levels").arg(kDeepest));
    const QScopedValueRollback deeper(m_depth, m_depth + 1);
    m_open[place] = true;
    QVariant object = decodeStored(index);
    m_open[place] = false;
    return object;
}

QVariant KeyedUnarchiver::decodeStored(qsizetype index)
{
    const QVariant& stored = m_objects[index];
    if (stored.typeId() == QMetaType::QVariantMap)
        return decodeFields(index, stored.toMap());
    const QString name = archivedClassOfBareValue(stored);
    if (name.isNull())
        raiseInvalidArchive(QStringLiteral("it holds an object without a class"));
    checkClass(name, {kAnyClass});
    return stored;
}

QVariant KeyedUnarchiver::decodeFields(qsizetype index, const QVariantMap& fields)
{
    const QString name = classNameOf(fields);
    if (const ArchivedValueClass* value = archivedValueClassNamed(name)) {
        checkClass(name,
                   value->superclass.isEmpty() ? QStringList{kAnyClass} : QStringList{value->superclass, kAnyClass});
        return decodeValue(name, fields);
    }
    const auto archivable = archivableClassNamed(name);
    if (!archivable)
        raiseInvalidArchive(QStringLiteral("the class “%1” is unknown here").arg(name));
    checkClass(name, archivable->superclasses);
    if (m_requiring == SecureCoding::Yes && !archivable->supportsSecureCoding)
        raiseInvalidArchive(QStringLiteral("the class “%1” does not support secure coding").arg(name));
    return instanceAt(index, *archivable, fields);
}

QString KeyedUnarchiver::classNameOf(const QVariantMap& fields) const
{
    const QVariant described = m_objects[indexOf(fields.value(kClassKey))];
    const QVariant name = described.toMap().value(kClassNameKey);
    if (name.typeId() != QMetaType::QString)
        raiseInvalidArchive(QStringLiteral("an object's class has no name"));
    return name.toString();
}

void KeyedUnarchiver::checkClass(const QString& name, const QStringList& superclasses) const
{
    const QStringList& allowed = m_classSets[static_cast<std::size_t>(m_classes)];
    const auto isAllowed = [&](const QString& each) { return allowed.contains(each); };
    if (!isAllowed(name) && std::none_of(superclasses.begin(), superclasses.end(), isAllowed))
        raiseInvalidArchive(QStringLiteral("it holds an object of the class “%1” where only these may be: %2")
                                .arg(name, allowed.join(QStringLiteral(", "))));
}

QVariant KeyedUnarchiver::decodeValue(const QString& name, const QVariantMap& fields)
{
    switch (archivedValueClassNamed(name)->kind) {
    case Kind::String:
        return fieldOfKind(fields, kStringField, Kind::String);
    case Kind::Data:
        return fieldOfKind(fields, kDataField, Kind::Data);
    case Kind::Date:
        return dateIn(fields);
    case Kind::List:
        return objectsIn(fields, kObjectsField);
    case Kind::Map:
        return decodeMap(fields);
    default:
        return QVariant::fromValue(nullptr);
    }
}

QVariant KeyedUnarchiver::decodeMap(const QVariantMap& fields)
{
    const QVariantList keys = objectsIn(fields, kKeysField);
    const QVariantList objects = objectsIn(fields, kObjectsField);
    if (keys.size() != objects.size())
        raiseInvalidArchive(QStringLiteral("a dictionary has not as many values as keys"));
    QVariantMap map;
    for (qsizetype i = 0; i < keys.size(); ++i) {
        if (keys[i].typeId() != QMetaType::QString)
            raiseInvalidArchive(QStringLiteral("a dictionary's key is not a string"));
        map.insert(keys[i].toString(), objects[i]);
    }
    return map;
}

QVariantList KeyedUnarchiver::objectsIn(const QVariantMap& fields, const QString& field)
{
    const QVariantList references = fieldOfKind(fields, field, Kind::List).toList();
    QVariantList objects;
    objects.reserve(references.size());
    for (const QVariant& reference : references)
        objects.append(decodeReference(reference));
    return objects;
}

/// An instance is the same whatever set of classes led to it: its own class says what may be inside.
QVariant KeyedUnarchiver::instanceAt(qsizetype index, const ArchivableClass& archivable, const QVariantMap& fields)
{
    const Key key(index, kAnySet);
    if (const auto known = m_decoded.constFind(key); known != m_decoded.cend()) {
        charge(static_cast<quint64>(known->weight));
        return known->object;
    }
    const int before = m_visited;
    const QScopedValueRollback inside(m_fields, fields);
    QVariant object = decodedInstance(archivable, *this);
    m_decoded.insert(key, {object, m_visited - before});
    return object;
}

int KeyedUnarchiver::indexOfClasses(const QStringList& classes)
{
    const auto known = std::find(m_classSets.begin(), m_classSets.end(), classes);
    if (known != m_classSets.end())
        return static_cast<int>(known - m_classSets.begin());
    m_classSets.push_back(classes);
    return static_cast<int>(m_classSets.size()) - 1;
}

} // namespace havrel
