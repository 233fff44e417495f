// SPDX-License-Identifier: MIT
#pragma once

#include "app/service_requests.h"

#include <QStringList>
#include <QVariant>

namespace havrel {

/// The request that the action \p name of the desktop file stands for; null for a name that is none.
///
/// Threads: any thread.
[[nodiscard]] ServiceRequest requestOfAction(const QString& name);

/// What a desktop hands over, as a pasteboard. The list of URIs is absent when \p uris is empty.
///
/// \param platformData "activation-token", else "desktop-startup-id", is the activation token; the rest is ignored
///
/// \source the desktop entry specification, "D-Bus Activation"
///
/// Threads: any thread.
[[nodiscard]] Pasteboard pasteboardOf(const QStringList& uris, const QVariantMap& platformData);

/// The URIs among the parameters of an action: texts and lists of texts, in order; anything else is ignored.
///
/// Threads: any thread.
[[nodiscard]] QStringList urisInParameter(const QVariantList& parameter);

} // namespace havrel
