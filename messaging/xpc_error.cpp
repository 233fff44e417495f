// SPDX-License-Identifier: MIT
#include "messaging/xpc_error.h"

namespace havrel {

Error xpcError(qint64 code, const QString& description)
{
    return {error_domain::kCocoa, code, {{error_key::kLocalizedDescription, description}}};
}

} // namespace havrel
