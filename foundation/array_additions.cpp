// SPDX-License-Identifier: MIT
#include "foundation/array_additions.h"

#include "diagnostics/exception_base.h"
#include "foundation/description.h"
#include "foundation/index_set.h"

#include <QStringList>

namespace havrel {
namespace {

QVariant orNullObject(const QVariant& object)
{
    return object.isValid() ? object : nullObject();
}

QVariant orNil(const QVariant& object)
{
    return isNullObject(object) ? QVariant() : object;
}

/// Raises unless 0 <= index < end.
void checkIndex(qsizetype index, qsizetype end)
{
    if (index >= 0 && index < end)
        return;
    const QString bounds = end > 0 ? QStringLiteral("[0 .. %1]").arg(end - 1) : QStringLiteral("for empty array");
    Exception(QStringLiteral("NSRangeException"), QStringLiteral("index %1 beyond bounds %2").arg(index).arg(bounds))
        .raise();
}

template<class Sequence>
bool shareStorage(const QVariant& left, const QVariant& right)
{
    const auto& one = *static_cast<const Sequence*>(left.constData());
    const auto& other = *static_cast<const Sequence*>(right.constData());
    return one.size() == other.size() && (one.isEmpty() || one.constData() == other.constData());
}

bool shareEntries(const QVariant& left, const QVariant& right)
{
    const auto& one = *static_cast<const QVariantMap*>(left.constData());
    const auto& other = *static_cast<const QVariantMap*>(right.constData());
    return one.isSharedWith(other) || (one.isEmpty() && other.isEmpty());
}

bool isSameObject(const QVariant& left, const QVariant& right)
{
    if (left.metaType() != right.metaType())
        return false;
    if (left.typeId() == qMetaTypeId<Exception>())
        return left.value<Exception>().isSameObject(right.value<Exception>());
    switch (left.typeId()) {
    case QMetaType::QString:
        return shareStorage<QString>(left, right);
    case QMetaType::QByteArray:
        return shareStorage<QByteArray>(left, right);
    case QMetaType::QVariantList:
        return shareStorage<QVariantList>(left, right);
    case QMetaType::QStringList:
        return shareStorage<QStringList>(left, right);
    case QMetaType::QVariantMap:
        return shareEntries(left, right);
    default:
        return left == right; // shared pointers compare by address
    }
}

} // namespace

QVariantList arrayWithNonNilObjectsCount(std::initializer_list<QVariant> objects)
{
    QVariantList list;
    for (const QVariant& object : objects) {
        if (object.isValid())
            list.append(object);
    }
    return list;
}

QVariant objectOrNilAtIndex(const QVariantList& list, qsizetype index)
{
    checkIndex(index, list.size());
    return orNil(list[index]);
}

QVariant firstObjectOrNil(const QVariantList& list)
{
    return list.isEmpty() ? QVariant() : orNil(list.first());
}

QVariant lastObjectOrNil(const QVariantList& list)
{
    return list.isEmpty() ? QVariant() : orNil(list.last());
}

bool isIdenticalToArray(const QVariantList& list, const QVariantList& other)
{
    return std::equal(list.begin(), list.end(), other.begin(), other.end(), isSameObject);
}

QVariantList translateArrayUsingBlock(const QVariantList& list, const Translation& block)
{
    QVariantList results;
    bool stop = false;
    for (qsizetype index = 0; index < list.size() && !stop; ++index) {
        const QVariant result = block(list[index], index, stop);
        if (result.isValid())
            results.append(result);
    }
    return results;
}

QString compactDescription(const QVariantList& list)
{
    return compactDescription(list, {});
}

QString compactDescription(const QVariantList& list, const CompactText& elementText)
{
    QStringList texts;
    for (const QVariant& element : list)
        texts << (elementText ? elementText(element) : compactElementText(element));
    return texts.join(u',');
}

QString compactElementText(const QVariant& element)
{
    switch (element.typeId()) {
    case QMetaType::QString:
        return u'"' + element.toString() + u'"';
    case QMetaType::QVariantList:
    case QMetaType::QStringList:
        return compactDescription(element.toList());
    case QMetaType::QVariantMap:
    case QMetaType::QVariantHash:
        return compactDescription(element.toMap());
    default:
        return element.typeId() == qMetaTypeId<IndexSet>() ? element.value<IndexSet>().compactDescription()
                                                           : descriptionOf(element);
    }
}

void addObjectOrNil(QVariantList& list, const QVariant& object)
{
    list.append(orNullObject(object));
}

void insertObjectOrNil(QVariantList& list, const QVariant& object, qsizetype index)
{
    checkIndex(index, list.size() + 1);
    list.insert(index, orNullObject(object));
}

void replaceObjectAtIndex(QVariantList& list, qsizetype index, const QVariant& objectOrNil)
{
    checkIndex(index, list.size());
    list[index] = orNullObject(objectOrNil);
}

} // namespace havrel
