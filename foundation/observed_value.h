// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/description.h"

#include <QList>
#include <QString>
#include <QVariant>

#include <concepts>
#include <memory>
#include <optional>

namespace havrel {

/// What a value is for an observer: nil for an empty optional, a null text and a null pointer.
template<class T>
[[nodiscard]] QVariant observedValue(const T& value)
{
    return QVariant::fromValue(value);
}
[[nodiscard]] inline QVariant observedValue(const QVariant& value)
{
    return value;
}
[[nodiscard]] inline QVariant observedValue(const QString& value)
{
    return value.isNull() ? QVariant() : QVariant(value);
}
template<class T>
[[nodiscard]] QVariant observedValue(T* const& value)
{
    return value ? QVariant::fromValue(value) : QVariant();
}
template<class T>
[[nodiscard]] QVariant observedValue(const std::shared_ptr<T>& value)
{
    return value ? QVariant::fromValue(value) : QVariant();
}
template<class T>
[[nodiscard]] QVariant observedValue(const std::optional<T>& value)
{
    return value ? observedValue(*value) : QVariant();
}

/// Whether two values of a property are the same to observers; values that cannot be compared never are.
template<class T>
[[nodiscard]] bool areSameObserved(const T& left, const T& right)
{
    if constexpr (std::same_as<T, QString>)
        return left.isNull() == right.isNull() && left == right;
    else if constexpr (std::equality_comparable<T>)
        return left == right;
    else
        return false;
}
/// An empty text is not an absent one.
[[nodiscard]] inline bool areSameObserved(const std::optional<QString>& left, const std::optional<QString>& right)
{
    return left.has_value() == right.has_value() && (!left || areSameObserved(*left, *right));
}

/// The elements as a list in which the null object stands for nil.
template<class T>
[[nodiscard]] QVariantList observedValues(const QList<T>& list)
{
    QVariantList result;
    result.reserve(list.size());
    for (const T& each : list) {
        const QVariant value = observedValue(each);
        result.push_back(value.isValid() ? value : nullObject());
    }
    return result;
}

} // namespace havrel
