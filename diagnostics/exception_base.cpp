// SPDX-License-Identifier: MIT
#include "diagnostics/exception_base.h"

#include "diagnostics/exception.h"
#include "diagnostics/exception_body.h"
#include "diagnostics/logr.h"
#include "foundation/description.h"
#include "foundation/error.h"

#include <QStringList>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdlib>
#include <memory>
#include <system_error>
#include <typeinfo>
#include <vector>

#include <cxxabi.h>

namespace havrel {
namespace {

std::atomic<bool> s_persistFailures = false;

const bool kTextRegistered =
    QMetaType::registerConverter<Exception, QString>([](const Exception& e) { return e.description(); });

/// Keys of exceptions made elsewhere that name a place; the last one present wins.
constexpr std::array<QLatin1StringView, 3> kForeignPathKeys{
    QLatin1StringView("kDetailsDirectory"), QLatin1StringView("kDetailsPath"), QLatin1StringView("kDetailsFilename")};

QString demangled(const std::type_info& type)
{
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> name(abi::__cxa_demangle(type.name(), nullptr, nullptr, &status),
                                                           &std::free);
    return QString::fromUtf8(status == 0 ? name.get() : type.name());
}

bool isPOSIX(const std::error_category& category)
{
    return category == std::system_category() || category == std::generic_category();
}

/// Tabs and the separators that take room in a line; newlines do not count.
/// \source Unicode general category Zs
bool isWhitespace(QChar unit)
{
    return unit == u'\t' || unit.category() == QChar::Separator_Space;
}

QString shownName(const QString& text)
{
    return text.isNull() ? QStringLiteral("(null)") : text;
}

/// Notes that an exception is being described on this thread. Exceptions hold others as causes and details, and can
/// hold themselves: one that is being described already shows its name and reason only, and so does everything once
/// the outermost description has shown kMostDescribed of them.
class DescriptionScope
{
public:
    explicit DescriptionScope(const void* body)
    {
        m_mayShowFacts = t_described < kMostDescribed && std::find(t_open.begin(), t_open.end(), body) == t_open.end();
        t_open.push_back(body);
        ++t_described;
    }
    ~DescriptionScope()
    {
        t_open.pop_back();
        if (t_open.empty())
            t_described = 0;
    }
    DescriptionScope(const DescriptionScope&) = delete;
    DescriptionScope& operator=(const DescriptionScope&) = delete;
    DescriptionScope(DescriptionScope&&) = delete;
    DescriptionScope& operator=(DescriptionScope&&) = delete;

    [[nodiscard]] bool mayShowFacts() const noexcept { return m_mayShowFacts; }

private:
    static constexpr int kMostDescribed = 100;
    static thread_local std::vector<const void*> t_open;
    static thread_local int t_described;
    bool m_mayShowFacts = false;
};

thread_local std::vector<const void*> DescriptionScope::t_open;
thread_local int DescriptionScope::t_described = 0;

QString shownFact(const QString& key, const QVariant& value)
{
    const QString text = descriptionOf(value);
    const bool quoted = std::any_of(text.begin(), text.end(), isWhitespace);
    return quoted ? key + QStringLiteral("='") + text + u'\'' : key + u'=' + text;
}

std::optional<Error> wrappedError(const QVariantMap& facts)
{
    const QVariant wrapped = facts.value(detail_key::kWrappedError);
    return wrapped.metaType() == QMetaType::fromType<Error>() ? std::optional(wrapped.value<Error>()) : std::nullopt;
}

QVariantMap errorInfo(const QString& reason, const QVariantMap& facts)
{
    QVariantMap info{{error_key::kLocalizedFailureReason, reason}};
    for (const QLatin1StringView key : kForeignPathKeys)
        if (const QVariant path = facts.value(key); path.isValid())
            info[error_key::kFilePath] = path;
    if (const QVariant anchor = facts.value(detail_key::kHelp); anchor.isValid())
        info[error_key::kHelpAnchor] = anchor;
    return info;
}

qint64 code32(const QVariant& number)
{
    return static_cast<qint32>(number.toLongLong());
}

} // namespace

Exception::Exception()
    : Exception(QString(), QString())
{
}

Exception::Exception(const QString& name, const QString& reason, const QVariantMap& userInfo)
    : m_body(std::make_shared<Body>(Kind::Plain, name, reason, userInfo))
{
}

Exception::Exception(Kind kind, const QString& name, const QString& reason)
    : m_body(std::make_shared<Body>(kind, name, reason))
{
}

Exception::Exception(std::shared_ptr<Body> body)
    : m_body(std::move(body)) // NOLINT(bugprone-throw-keyword-missing): not an exception
{
}

Exception::~Exception() = default;

Exception Exception::fromCurrent()
{
    try {
        throw;
    } catch (const std::exception& foreign) {
        return from(foreign);
    } catch (...) {
        const std::type_info* type = abi::__cxa_current_exception_type();
        const QString name = type ? demangled(*type) : QStringLiteral("?");
        return Exception(QStringLiteral("Unknown"), QStringLiteral("unknown exception"), {{detail_key::kClass, name}});
    }
}

Exception Exception::from(const std::exception& foreign)
{
    if (const auto* own = dynamic_cast<const Exception*>(&foreign))
        return *own;
    QVariantMap facts{{detail_key::kClass, demangled(typeid(foreign))}};
    if (const auto* system = dynamic_cast<const std::system_error*>(&foreign);
        system && isPOSIX(system->code().category())) {
        facts[detail_key::kPOSIXErr] = static_cast<qint64>(system->code().value());
        facts[detail_key::kErrDescription] = systemErrorText(system->code().value());
    }
    return Exception(QStringLiteral("std::exception"), QString::fromUtf8(foreign.what()), facts);
}

const QString& Exception::name() const noexcept
{
    return m_body->name;
}

const QString& Exception::reason() const noexcept
{
    return m_body->reason;
}

const QVariantMap& Exception::userInfo() const noexcept
{
    return m_body->userInfo;
}

QVariantMap& Exception::mutableUserInfo()
{
    return m_body->userInfo;
}

const platform::ReturnAddresses& Exception::callStackReturnAddresses() const noexcept
{
    return m_body->returnAddresses;
}

QString Exception::className() const
{
    return m_body->kind == Kind::HV ? QStringLiteral("HVException") : QStringLiteral("NSException");
}

QString Exception::description() const
{
    QString text = u'<' + shownName(name()) + QStringLiteral("> ") + shownName(reason());
    DescriptionScope scope(m_body.get());
    if (!scope.mayShowFacts())
        return text;
    QStringList facts;
    for (auto it = userInfo().begin(); it != userInfo().end(); ++it)
        if (!it.key().startsWith(u'.'))
            facts << shownFact(it.key(), it.value());
    if (!facts.isEmpty())
        text += QStringLiteral(" { ") + facts.join(QStringLiteral(", ")) + QStringLiteral(" }");
    return text;
}

const char* Exception::what() const noexcept
{
    try {
        std::call_once(m_body->whatMade, [this] { m_body->what = description().toUtf8(); });
        return m_body->what.constData();
    } catch (...) {
        return "exception";
    }
}

std::optional<HVException> Exception::asHVException() const
{
    return m_body->kind == Kind::HV ? std::optional(HVException(*this)) : std::nullopt;
}

std::optional<HVException> Exception::asSoftException() const
{
    auto own = asHVException();
    return own && own->isSoft() ? own : std::nullopt;
}

Error Exception::asError() const
{
    QVariantMap info = errorInfo(reason(), userInfo());
    if (const std::optional<Error> wrapped = wrappedError(userInfo())) {
        info.insert(wrapped->userInfo());
        return Error(wrapped->domain(), wrapped->code(), info);
    }
    if (const QVariant number = userInfo().value(detail_key::kPOSIXErr); number.isValid())
        return Error(error_domain::kPOSIX, code32(number), info);
    if (const QVariant number = userInfo().value(detail_key::kOSErr); number.isValid())
        return Error(error_domain::kOSStatus, code32(number), info);
    info[error_key::kLocalizedDescription] = QStringLiteral("%1 error: %2").arg(shownName(name()), shownName(reason()));
    return Error(name(), -1, info);
}

void Exception::raise() const
{
    if (m_body->returnAddresses.empty())
        m_body->returnAddresses = platform::currentReturnAddresses();
    if (m_body->kind == Kind::HV)
        throw HVException(*this);
    throw Exception(*this);
}

void Exception::raiseOrPersist() const
{
    if (!s_persistFailures.load())
        raise();
    const auto heading = Logr::logPlaceholder(
        LogClassification::Warning, QStringLiteral("Ignored failures"), QStringLiteral("ShePersisted"));
    Logr::logException(LogClassification::Failure, heading, *this);
}

void Exception::setPersistFailures(bool persist)
{
    s_persistFailures = persist;
}

} // namespace havrel
