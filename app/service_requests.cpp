// SPDX-License-Identifier: MIT
#include "app/service_requests.h"

namespace havrel {

ServiceRequests::~ServiceRequests() = default;

} // namespace havrel
