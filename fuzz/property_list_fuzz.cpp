// SPDX-License-Identifier: MIT
#include "foundation/property_list.h"

#include <cstdlib>

namespace {

using namespace havrel;

/// What was read can be written, and what was written reads back as what writes the same bytes.
void checkRoundTrip(const QVariant& value, PropertyListWriting (*write)(const QVariant&), bool mustBeWritable)
{
    const PropertyListWriting written = write(value);
    if (written.error && mustBeWritable)
        std::abort();
    if (written.error)
        return;
    const PropertyListReading read = parsePropertyList(written.bytes);
    if (read.error || write(read.value).bytes != written.bytes)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const PropertyListReading read = parsePropertyList(bytes);
    if (read.error.has_value() == read.value.isValid())
        std::abort();
    if (read.error)
        return 0;
    checkRoundTrip(read.value, binaryPropertyList, true);
    checkRoundTrip(read.value, xmlPropertyList, read.format == PropertyListFormat::XML);
    return 0;
}
