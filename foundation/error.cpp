// SPDX-License-Identifier: MIT
#include "foundation/error.h"

#include "foundation/description.h"

#include <cstring>
#include <utility>

namespace havrel {
namespace {

const bool kTextRegistered =
    QMetaType::registerConverter<Error, QString>([](const Error& error) { return error.description(); });

} // namespace

Error::Error(QString domain, qint64 code, QVariantMap userInfo)
    : m_domain(std::move(domain))
    , m_code(code)
    , m_userInfo(std::move(userInfo))
{
}

Error Error::posix(int errnoValue)
{
    return Error(error_domain::kPOSIX, errnoValue);
}

QString Error::localizedDescription() const
{
    if (const QVariant given = m_userInfo.value(error_key::kLocalizedDescription); given.isValid())
        return descriptionOf(given);
    if (const QString reason = localizedFailureReason(); !reason.isNull())
        return QStringLiteral("The operation couldn’t be completed. %1").arg(reason);
    return QStringLiteral("The operation couldn’t be completed. (%1 error %2.)").arg(m_domain).arg(m_code);
}

QString Error::localizedFailureReason() const
{
    if (const QVariant given = m_userInfo.value(error_key::kLocalizedFailureReason); given.isValid())
        return descriptionOf(given);
    return m_domain == error_domain::kPOSIX ? systemErrorText(static_cast<int>(m_code)) : QString();
}

QString Error::description() const
{
    const QString text =
        QStringLiteral("Error Domain=%1 Code=%2 \"%3\"").arg(m_domain, QString::number(m_code), localizedDescription());
    return m_userInfo.isEmpty() ? text : text + QStringLiteral(" UserInfo=") + descriptionOf(m_userInfo);
}

bool operator==(const Error& left, const Error& right)
{
    return left.m_code == right.m_code && left.m_domain == right.m_domain && left.m_userInfo == right.m_userInfo;
}

QString systemErrorText(int errnoValue)
{
    if (const char* text = ::strerrordesc_np(errnoValue))
        return QString::fromLatin1(text);
    return QStringLiteral("Unknown error: %1").arg(errnoValue);
}

} // namespace havrel
