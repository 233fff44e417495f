// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QVariant>

#include <optional>

namespace havrel {

/// What arrives of \p value in a place of \p type: integers are widened to 64 bits, lists become what a reader of the
/// type gets. Says the same as the message bus does, without one.
///
/// \param type one complete type of the message bus, see platform/bus_body.h
/// \return none when the value does not fit the type, and could not be sent
///
/// Threads: any thread.
[[nodiscard]] std::optional<QVariant> carriedValue(QByteArrayView type, const QVariant& value);

/// What arrives of \p values in places of \p types; none when one of them does not fit, or their number.
///
/// Threads: any thread.
[[nodiscard]] std::optional<QVariantList> carriedValues(const QByteArrayList& types, const QVariantList& values);

} // namespace havrel
