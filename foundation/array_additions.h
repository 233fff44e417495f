// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/dictionary_additions.h"

#include <QVariantList>

#include <functional>
#include <initializer_list>

namespace havrel {

/// Additions to arrays: nil kept as the null object and read back as nil, translation, one-line texts.
///
/// An index outside the array raises an `Exception` named "NSRangeException", as the platform's arrays do, and leaves
/// the array as it was.
///
/// Threads: any thread.

/// The given objects without the nil ones. \selector arrayWithNonNilObjectsCount:
[[nodiscard]] QVariantList arrayWithNonNilObjectsCount(std::initializer_list<QVariant> objects);

/// The element, nil where it is the null object. \selector objectOrNilAtIndex:
[[nodiscard]] QVariant objectOrNilAtIndex(const QVariantList& list, qsizetype index);
/// Nil also when there is none. \selector firstObjectOrNil
[[nodiscard]] QVariant firstObjectOrNil(const QVariantList& list);
/// Nil also when there is none. \selector lastObjectOrNil
[[nodiscard]] QVariant lastObjectOrNil(const QVariantList& list);

/// Whether both hold the very same object at every index.
///
/// Shared objects are the same by address; strings, data, arrays and dictionaries when they share their storage, as
/// copies do until one changes; values without an identity (numbers, dates, the null object) when kind and value agree.
///
/// \selector isIdenticalToArray:
[[nodiscard]] bool isIdenticalToArray(const QVariantList& list, const QVariantList& other);

/// What becomes of one element; nil leaves it out. Setting \p stop ends the translation behind this element.
using Translation = std::function<QVariant(const QVariant& element, qsizetype index, bool& stop)>;

/// The results for each element in order, nil ones left out. \selector translateArrayUsingBlock:
[[nodiscard]] QVariantList translateArrayUsingBlock(const QVariantList& list, const Translation& block);

/// The array as it is now, whatever becomes of \p list; it shares the storage until one of them changes, so this costs
/// nothing. \selector immutableCopy
[[nodiscard]] inline QVariantList immutableCopy(const QVariantList& list)
{
    return list;
}

/// The elements' texts joined by ",", without brackets or blanks: strings in double quotes, collections and index sets
/// by their compact descriptions, all else by its description. \selector compactDescription
[[nodiscard]] QString compactDescription(const QVariantList& list);
/// The same with texts made by the caller; an empty function stands for the usual text.
/// \selector compactDescription:
[[nodiscard]] QString compactDescription(const QVariantList& list, const CompactText& elementText);
/// The usual text of one element.
[[nodiscard]] QString compactElementText(const QVariant& element);

/// Stores the null object in place of nil. \selector addObjectOrNil:
void addObjectOrNil(QVariantList& list, const QVariant& object);
/// The same, before the element at \p index or at the end. \selector insertObjectOrNil:atIndex:
void insertObjectOrNil(QVariantList& list, const QVariant& object, qsizetype index);
/// \selector replaceObjectAtIndex:withObjectOrNil:
void replaceObjectAtIndex(QVariantList& list, qsizetype index, const QVariant& objectOrNil);

} // namespace havrel
