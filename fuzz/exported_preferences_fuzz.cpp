// SPDX-License-Identifier: MIT
// Any bytes as an attribute, and as a line that import reads. Laws: an attribute comes back from its exported line as
// it was; a line that import takes gives a record whose own line gives that record again; nothing crashes.
#include "cli/exported_preferences.h"

#include <cstdlib>

namespace {

using namespace havrel::cli;

void require(bool law)
{
    if (!law)
        std::abort();
}

void checkComesBack(const ExportedPreferences& record)
{
    const QByteArray line = jsonOfExported(record);
    require(line.isValidUtf8() && !line.contains('\n'));
    const ExportedReading again = exportedOfJson(line);
    require(again.fault.isNull() && again.record.path == record.path && again.record.bytes == record.bytes);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    checkComesBack({"item", bytes});
    if (const ExportedReading reading = exportedOfJson(bytes); reading.fault.isNull())
        checkComesBack(reading.record);
    return 0;
}
