// SPDX-License-Identifier: MIT
#include "app/provided_activation_token.h"

#include <QtGlobal>

namespace havrel {
namespace {

/// \source xdg-activation-v1
constexpr const char* kVariable = "XDG_ACTIVATION_TOKEN";

void provide(const QByteArray& token)
{
    if (token.isEmpty() || token.contains('\0'))
        qunsetenv(kVariable);
    else
        qputenv(kVariable, token);
}

} // namespace

ProvidedActivationToken::ProvidedActivationToken(const Pasteboard& pasteboard)
    : m_before(qgetenv(kVariable))
{
    provide(pasteboard.value(pasteboard::kActivationToken));
}

ProvidedActivationToken::~ProvidedActivationToken()
{
    provide(m_before);
}

} // namespace havrel
