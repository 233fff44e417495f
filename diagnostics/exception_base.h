// SPDX-License-Identifier: MIT
#pragma once

#include "diagnostics/log_classification.h"
#include "platform/backtrace.h"

#include <QMetaType>
#include <QString>
#include <QVariantMap>

#include <exception>
#include <memory>
#include <optional>

namespace havrel {

class Error;
class HVException;

/// Something that went wrong, as it travels up to the wall that handles it: name, reason, user-info, and where it was
/// raised. The root of everything that this system throws.
///
/// Copies share one body: what was caught is the very object that was raised, however often it was copied or sliced on
/// the way, and `isSameObject` tells so. A sliced HVException is still one (asHVException).
///
/// Threads: one thread at a time until raised, then const members any thread.
class Exception : public std::exception
{
public:
    /// Without name and reason; containers of values need it.
    Exception();
    Exception(const QString& name, const QString& reason, const QVariantMap& userInfo = {});
    Exception(const Exception&) = default;
    Exception& operator=(const Exception&) = default;
    // A move is a copy: both share the body, so what was moved from is still whole.
    Exception(Exception&& other) noexcept
        : Exception(other) // NOLINT(performance-move-constructor-init)
    {
    }
    Exception& operator=(Exception&& other) noexcept { return *this = other; }
    ~Exception() override;

    /// What a foreign exception becomes at the wall that catches it: an `Exception` as it is; a std::system_error with
    /// the error of its category; any other std::exception with the name "std::exception", its what() as reason and its
    /// type under "Class"; anything else with the name "Unknown".
    [[nodiscard]] static Exception fromCurrent();
    [[nodiscard]] static Exception from(const std::exception& foreign);

    [[nodiscard]] const QString& name() const noexcept;
    [[nodiscard]] const QString& reason() const noexcept;
    [[nodiscard]] const QVariantMap& userInfo() const noexcept;
    /// Where it was raised, innermost first; empty until then.
    [[nodiscard]] const platform::ReturnAddresses& callStackReturnAddresses() const noexcept;
    /// The class of the raised object: "NSException" or "HVException".
    [[nodiscard]] QString className() const;
    [[nodiscard]] bool isSameObject(const Exception& other) const noexcept { return m_body == other.m_body; }

    /// Name, reason and the facts that are not private, in one line:
    /// <IO> cannot delete item { ErrDescription='Permission denied', POSIXErr=13, Path=/x/y }
    ///
    /// \selector description
    [[nodiscard]] QString description() const;
    /// description() in UTF-8, for code that knows only std::exception. Lives as long as any copy.
    [[nodiscard]] const char* what() const noexcept override;

    /// The receiver if it is an `HVException`. \selector asHVException
    [[nodiscard]] std::optional<HVException> asHVException() const;
    /// The receiver if it is an `HVException` that is soft. \selector asSoftException
    [[nodiscard]] std::optional<HVException> asSoftException() const;
    /// The receiver as an error object. \selector asError
    [[nodiscard]] Error asError() const;

    /// The receiver archived, nested causes and errors included. \selector dataForException
    /// \throws HVException "Bug" when a detail cannot be encoded.
    [[nodiscard]] QByteArray dataForException() const;
    /// The exception archived in \p data. \selector exceptionFromData:
    /// \throws HVException "Bug" when the data is no such archive.
    [[nodiscard]] static Exception exceptionFromData(const QByteArray& data);

    /// Throws the receiver (as HVException when it is one), noting the stack if it was not raised before.
    [[noreturn]] void raise() const;
    /// Raises the receiver, unless failures are persisted: then it is logged under "Ignored failures".
    ///
    /// \selector raiseOrPersist
    void raiseOrPersist() const;
    /// The process-wide switch behind raiseOrPersist; off at start.
    static void setPersistFailures(bool persist);

protected:
    enum class Kind { Plain, HV };
    Exception(Kind kind, const QString& name, const QString& reason);

    [[nodiscard]] QVariantMap& mutableUserInfo();

private:
    friend class ExceptionArchiving;
    struct Body;
    explicit Exception(std::shared_ptr<Body> body);
    friend class HVException;

    std::shared_ptr<Body> m_body;
};

} // namespace havrel

Q_DECLARE_METATYPE(havrel::Exception)
