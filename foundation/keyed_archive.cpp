// SPDX-License-Identifier: MIT
#include "foundation/keyed_archive.h"

#include "diagnostics/exception.h"
#include "foundation/error.h"

namespace havrel {
namespace {

/// \source the platform's documented error codes of coders.
constexpr qint64 kReadCorrupt = 4864;
constexpr qint64 kInvalidValue = 4866;

Error coderError(qint64 code, const QString& sentence)
{
    return Error(error_domain::kCocoa, code, {{error_key::kLocalizedDescription, sentence}});
}

} // namespace

void raiseCannotEncode(const QString& fault)
{
    raiseCannotEncode(coderError(kInvalidValue, QStringLiteral("The object cannot be archived: %1.").arg(fault)));
}

void raiseCannotEncode(const Error& error)
{
    HVException::error(error, exception_name::kBug, QStringLiteral("cannot encode object")).raise();
}

void raiseInvalidArchive(const QString& fault)
{
    raiseInvalidArchive(coderError(kReadCorrupt, QStringLiteral("The archive cannot be read: %1.").arg(fault)));
}

void raiseInvalidArchive(const Error& error)
{
    HVException::error(error, exception_name::kBug, kInvalidArchiveReason).raise();
}

} // namespace havrel
