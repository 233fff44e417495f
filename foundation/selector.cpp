// SPDX-License-Identifier: MIT
#include "foundation/selector.h"

#include "diagnostics/exception.h"

#include <QMetaMethod>

#include <algorithm>
#include <array>

namespace havrel {
namespace {

constexpr int kMostArguments = 3; // object, old value, new value

bool isNamed(const QMetaMethod& method, const QByteArray& name)
{
    return method.methodType() != QMetaMethod::Signal && (method.name() == name || method.methodSignature() == name);
}

bool isCallable(const QMetaMethod& method)
{
    if (method.parameterCount() > kMostArguments)
        return false;
    for (int i = 0; i < method.parameterCount(); ++i) {
        if (!method.parameterMetaType(i).isValid())
            return false;
    }
    return true;
}

HVException selectorBug(const QString& reason, const QObject& owner, const QByteArray& name)
{
    return HVException::exceptionWithName(exception_name::kBug, reason)
        .setClass(QString::fromLatin1(owner.metaObject()->className()))
        .setDetail(name.isEmpty() ? QVariant() : QVariant(QString::fromUtf8(name)), QStringLiteral("Selector"));
}

[[noreturn]] void raiseNoMethod(const QObject& owner, const QByteArray& name)
{
    selectorBug(QStringLiteral("WTF?! Method should have at least two arguments: self and _cmd!"), owner, name).raise();
}

/// \p value as a value of \p type.
QVariant converted(QVariant value, QMetaType type)
{
    if (value.metaType() != type && !value.convert(type))
        return QVariant(type);
    return value;
}

void invoke(const QMetaMethod& method, QObject& owner, const std::array<QVariant, kMostArguments>& given)
{
    std::array<QVariant, kMostArguments> values;
    std::array<QGenericArgument, kMostArguments> arguments;
    for (int i = 0; i < method.parameterCount(); ++i) {
        const auto at = static_cast<std::size_t>(i);
        const QMetaType type = method.parameterMetaType(i);
        const bool isVariant = type.id() == QMetaType::QVariant;
        values[at] = isVariant ? given[at] : converted(given[at], type);
        arguments[at] = {type.name(), isVariant ? static_cast<const void*>(&values[at]) : values[at].constData()};
    }
    method.invoke(&owner, Qt::DirectConnection, arguments[0], arguments[1], arguments[2]);
}

} // namespace

SettingBlock Selector::namedMethodOf(const QObject& owner) const
{
    const QMetaObject* type = owner.metaObject();
    QMetaMethod best;
    bool any = false;
    for (int i = 0; i < type->methodCount(); ++i) {
        const QMetaMethod method = type->method(i);
        if (!isNamed(method, m_name))
            continue;
        any = true;
        if (isCallable(method) && (!best.isValid() || method.parameterCount() >= best.parameterCount()))
            best = method;
    }
    if (!any)
        raiseNoMethod(owner, m_name);
    if (!best.isValid())
        selectorBug(QStringLiteral("selector cannot be called"), owner, m_name).raise();
    return [best](QObject* receiver, QObject* object, const QVariant& oldValue, const QVariant& newValue) {
        if (receiver)
            invoke(best, *receiver, {QVariant::fromValue(object), oldValue, newValue});
    };
}

SettingBlock Selector::blockFor(const QObject& owner) const
{
    if (!m_name.isEmpty())
        return namedMethodOf(owner);
    if (!m_block || !m_isMethodOf(owner))
        raiseNoMethod(owner, m_name);
    return m_block;
}

} // namespace havrel
