// SPDX-License-Identifier: MIT
#pragma once

#include <QMetaType>
#include <QString>
#include <QVariantMap>

namespace havrel {

/// Domains of the platform's own errors. The code of each domain is that of the system it names.
namespace error_domain {
inline constexpr QLatin1StringView kPOSIX{"NSPOSIXErrorDomain"};       ///< codes are errno values
inline constexpr QLatin1StringView kOSStatus{"NSOSStatusErrorDomain"}; ///< codes are signed 32-bit status values
inline constexpr QLatin1StringView kURL{"NSURLErrorDomain"};
inline constexpr QLatin1StringView kCocoa{"NSCocoaErrorDomain"}; ///< property lists and archives
} // namespace error_domain

/// Keys of an error's user-info.
namespace error_key {
inline constexpr QLatin1StringView kLocalizedDescription{"NSLocalizedDescription"};
inline constexpr QLatin1StringView kLocalizedFailureReason{"NSLocalizedFailureReason"};
inline constexpr QLatin1StringView kLocalizedRecoverySuggestion{"NSLocalizedRecoverySuggestion"};
inline constexpr QLatin1StringView kLocalizedRecoveryOptions{"NSLocalizedRecoveryOptions"};
inline constexpr QLatin1StringView kRecoveryAttempter{"NSRecoveryAttempter"};
inline constexpr QLatin1StringView kUnderlyingError{"NSUnderlyingError"};
inline constexpr QLatin1StringView kFilePath{"NSFilePath"};
inline constexpr QLatin1StringView kHelpAnchor{"NSHelpAnchor"};
inline constexpr QLatin1StringView kFailingURLString{"NSErrorFailingURLStringKey"};
} // namespace error_key

/// A failure as a value: who says so (domain), which (code), and the facts (user-info).
///
/// Threads: const members any thread, others one at a time.
class Error
{
public:
    Error() = default;
    Error(QString domain, qint64 code, QVariantMap userInfo = {});

    /// An error of the POSIX domain whose description is the system's English text for \p errnoValue.
    [[nodiscard]] static Error posix(int errnoValue);

    [[nodiscard]] const QString& domain() const noexcept { return m_domain; }
    [[nodiscard]] qint64 code() const noexcept { return m_code; }
    [[nodiscard]] const QVariantMap& userInfo() const noexcept { return m_userInfo; }

    /// The description in the user-info; else one made of the failure reason, or of domain and code. Never empty.
    [[nodiscard]] QString localizedDescription() const;
    /// The failure reason in the user-info; null when there is none (for the POSIX domain: the system's text).
    [[nodiscard]] QString localizedFailureReason() const;
    /// Domain, code, description and user-info in one line, for logs.
    [[nodiscard]] QString description() const;

    /// Same domain and code, equal user-info.
    friend bool operator==(const Error& left, const Error& right);

private:
    QString m_domain;
    qint64 m_code = 0;
    QVariantMap m_userInfo;
};

/// The system's text for an errno value, in English whatever the locale ("Permission denied").
/// An unknown number gives "Unknown error: N".
///
/// \source strerrordesc_np(3)
///
/// Threads: any thread.
[[nodiscard]] QString systemErrorText(int errnoValue);

} // namespace havrel

Q_DECLARE_METATYPE(havrel::Error)
