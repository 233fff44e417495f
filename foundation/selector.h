// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/observer.h"

#include <QByteArray>
#include <QObject>

#include <tuple>
#include <type_traits>
#include <utility>

namespace havrel {

/// A method of the owner that is called in place of a block, with as many of these arguments as it takes: the observed
/// object, the old value, the new value. The values become the types of its parameters where they convert, and those
/// types' defaults where they do not.
///
/// Threads: any thread.
class Selector
{
public:
    /// A slot or invokable method: its name, for which the one with the most parameters up to three is taken, or its
    /// whole signature, "didChange(QObject*,QVariant)".
    explicit Selector(QByteArray name)
        : m_name(std::move(name))
    {
    }
    explicit Selector(const char* name)
        : m_name(name)
    {
    }
    /// Any method: Selector(&Shelf::reload).
    template<class Owner, class Result, class... Arguments>
    explicit Selector(Result (Owner::*method)(Arguments...))
        : Selector(method, static_cast<Owner*>(nullptr), std::tuple<std::decay_t<Arguments>...>())
    {
    }
    template<class Owner, class Result, class... Arguments>
    explicit Selector(Result (Owner::*method)(Arguments...) const)
        : Selector(method, static_cast<const Owner*>(nullptr), std::tuple<std::decay_t<Arguments>...>())
    {
    }

    /// The block that calls the method on the owner.
    /// \throws HVException "Bug" "WTF?! Method should have at least two arguments: self and _cmd!" (details "Class",
    ///         "Selector") when \p owner has no such method, or the method is null: a method counts its receiver and
    ///         its selector as two arguments before its own, a method that is not there has none at all.
    /// \throws HVException "Bug" "selector cannot be called" when it takes more than three arguments, or one of a type
    ///         that the meta-type system does not know.
    [[nodiscard]] SettingBlock blockFor(const QObject& owner) const;

private:
    template<class Method, class Owner, class... Arguments>
    Selector(Method method, Owner* /*type*/, std::tuple<Arguments...> /*types*/);

    [[nodiscard]] SettingBlock namedMethodOf(const QObject& owner) const;

    QByteArray m_name;                                      // empty for a method pointer
    SettingBlock m_block;                                   // of a method pointer
    std::function<bool(const QObject& owner)> m_isMethodOf; // of a method pointer
};

namespace selector_detail {

inline QObject* argument(std::type_identity<QObject*> /*type*/, QObject* object)
{
    return object;
}
template<class T>
T* argument(std::type_identity<T*> /*type*/, QObject* object)
{
    return qobject_cast<T*>(object);
}
inline const QVariant& argument(std::type_identity<QVariant> /*type*/, const QVariant& value)
{
    return value;
}
template<class T>
T argument(std::type_identity<T> /*type*/, const QVariant& value)
{
    return value.value<T>();
}

} // namespace selector_detail

template<class Method, class Owner, class... Arguments>
Selector::Selector(Method method, Owner* /*type*/, std::tuple<Arguments...> /*types*/)
{
    static_assert(sizeof...(Arguments) <= 3, "a selector is given the object, the old value and the new value");
    if (!method)
        return;
    m_isMethodOf = [](const QObject& owner) { return dynamic_cast<const Owner*>(&owner) != nullptr; };
    m_block = [method](QObject* owner, QObject* object, const QVariant& oldValue, const QVariant& newValue) {
        const auto given = std::tuple<QObject*, const QVariant&, const QVariant&>(object, oldValue, newValue);
        const auto call = [&]<std::size_t... Indexes>(Owner * receiver, std::index_sequence<Indexes...>)
        {
            (receiver->*method)(
                selector_detail::argument(std::type_identity<Arguments>{}, std::get<Indexes>(given))...);
        };
        if (auto* const receiver = dynamic_cast<Owner*>(owner)) // not one whose class is gone
            call(receiver, std::index_sequence_for<Arguments...>{});
    };
}

} // namespace havrel
