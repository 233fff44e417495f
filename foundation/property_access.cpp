// SPDX-License-Identifier: MIT
#include "foundation/property_access.h"

#include "diagnostics/exception.h"

#include <QMetaProperty>
#include <QObject>

namespace havrel {
namespace {

QVariant valueOf(const QObject& object, KeyPath name)
{
    return nilIfNull(propertyNamed(object, name).read(&object));
}

bool isNull(const QVariant& value)
{
    if (value.typeId() == QMetaType::QString)
        return static_cast<const QString*>(value.constData())->isNull();
    const bool isPointerObject = value.typeId() >= QMetaType::User && value.canConvert<QObject*>();
    return isPointerObject ? !objectIn(value) : value.isNull();
}

} // namespace

HVException propertyBug(const QString& reason, const QObject& object, KeyPath name)
{
    return HVException::exceptionWithName(exception_name::kBug, reason)
        .setClass(QString::fromLatin1(object.metaObject()->className()))
        .setDetail(name.text(), QStringLiteral("Property"));
}

QMetaProperty propertyNamed(const QObject& object, KeyPath name)
{
    const QMetaObject* type = object.metaObject();
    const bool holdsNul = name.chars().find('\0') != std::string_view::npos; // the toolkit would stop reading there
    const int index = holdsNul ? -1 : type->indexOfProperty(name.chars().data());
    if (index < 0)
        propertyBug(QStringLiteral("unknown property"), object, name).raise();
    return type->property(index);
}

QObject* objectIn(const QVariant& value)
{
    if ((value.metaType().flags() & QMetaType::PointerToQObject) != 0)
        return *static_cast<QObject* const*>(value.constData());
    return value.value<QObject*>();
}

QVariant nilIfNull(QVariant value)
{
    return isNull(value) ? QVariant() : std::move(value);
}

QVariant valueAtKeyPath(const QObject& object, KeyPath keyPath)
{
    if (!keyPath.hasSeveralNames())
        return valueOf(object, keyPath);
    const QObject* current = &object;
    QVariant value; // keeps a shared object on the way alive
    for (const KeyPath name : keyPath.names()) {
        if (!current)
            return {};
        value = valueOf(*current, name);
        current = objectIn(value);
    }
    return value;
}

void setValueAtKeyPath(QObject& object, KeyPath keyPath, const QVariant& value)
{
    const std::vector<KeyPath> names = keyPath.names();
    QObject* last = &object;
    QVariant holder; // keeps a shared object on the way alive
    for (std::size_t i = 0; i + 1 < names.size() && last; ++i) {
        holder = valueOf(*last, names[i]);
        last = objectIn(holder);
    }
    if (last && !propertyNamed(*last, names.back()).write(last, value))
        propertyBug(QStringLiteral("cannot set property"), *last, names.back()).setObject(value).raise();
}

} // namespace havrel
