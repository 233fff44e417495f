// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QMetaType>
#include <QVariant>

#include <optional>

namespace havrel {

/// Where a listener can be reached: handed from process to process as a value, "(so)" on the bus.
///
/// Threads: const members any thread, others one at a time.
struct XPCEndpoint
{
    QByteArray owner;      ///< unique name of the bus, ":1.42"
    QByteArray pathPrefix; ///< connections are objects below it

    friend bool operator==(const XPCEndpoint&, const XPCEndpoint&) = default;

    /// As it travels: a list of two texts.
    [[nodiscard]] QVariant asValue() const;
    /// \return none for a value that is no endpoint
    [[nodiscard]] static std::optional<XPCEndpoint> fromValue(const QVariant& value);
};

} // namespace havrel

Q_DECLARE_METATYPE(havrel::XPCEndpoint)
