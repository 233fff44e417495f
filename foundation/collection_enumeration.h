// SPDX-License-Identifier: MIT
#pragma once

#include <QVariant>

#include <functional>

namespace havrel {

using Visit = std::function<void(const QVariant&)>;

/// Calls \p block for each element of a collection (for a dictionary, each value in key order), and behind each element
/// that is itself a collection for what is in that one. Collections are arrays, dictionaries and sets; strings and data
/// are none. Anything but a collection has no elements. Must not be called on collections that nest without measure:
/// the depth of the stack follows theirs.
///
/// Threads: any thread.
///
/// \selector enumerateRecursiveCollectionValuesUsingBlock:
void enumerateRecursiveCollectionValuesUsingBlock(const QVariant& collection, const Visit& block);

/// The same, but a dictionary's keys are visited and descended into too, each before its value.
///
/// Threads: any thread.
///
/// \selector enumerateRecursiveCollectionObjectUsingBlock:
void enumerateRecursiveCollectionObjectUsingBlock(const QVariant& collection, const Visit& block);

} // namespace havrel
