// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QVariant>

struct sd_bus_message;

namespace havrel::platform {

/// What a message of the bus carries: values and the types that they have on the wire.
///
/// | type                  | value                                                                                  |
/// |-----------------------|----------------------------------------------------------------------------------------|
/// | b                     | boolean                                                                                |
/// | y q u t               | unsigned 64-bit integer                                                                |
/// | n i x                 | signed 64-bit integer                                                                  |
/// | d                     | double                                                                                 |
/// | s o g                 | QString                                                                                |
/// | ay                    | QByteArray                                                                             |
/// | as ao ag              | QStringList                                                                            |
/// | a{s.} a{o.} a{g.}     | QVariantMap                                                                            |
/// | other arrays, (...)   | QVariantList; an entry of a dictionary with other keys is a list of two                |
/// | v                     | the value; when written, a BusVariant, or else the type that suits the value           |
///
/// Integers of every kind are written where the value fits the type. File descriptors are not carried.
///
/// \source the message bus specification, "Type System"
struct BusBody
{
    QByteArray signature = {}; ///< one complete type a value
    QVariantList values = {};
};

/// A value for a place of type "v" that says what type it is to have there.
struct BusVariant
{
    QByteArray signature; ///< one complete type
    QVariant value;
};

/// The first complete type of \p signature; empty when it does not begin with one.
///
/// Threads: any thread.
[[nodiscard]] QByteArrayView firstCompleteType(QByteArrayView signature);

/// The type that \p value gets in a place of type "v"; empty when it has none.
///
/// Threads: any thread.
[[nodiscard]] QByteArray naturalBusType(const QVariant& value);

/// Appends \p body to \p message.
///
/// \return 0; EINVAL when a value does not fit its type, EMSGSIZE for arrays of more than 64 MiB and bodies of more
/// than
///         128 MiB (the message is of no use then), or another errno value.
///
/// Threads: one thread at a time.
[[nodiscard]] int appendBody(sd_bus_message* message, const BusBody& body);

/// Reads the values of \p message, from its first on.
///
/// \return 0, ENOTSUP for types that are not carried, or another errno value; \p values then holds those before it.
///
/// Threads: one thread at a time.
[[nodiscard]] int readBody(sd_bus_message* message, QVariantList& values);

} // namespace havrel::platform
