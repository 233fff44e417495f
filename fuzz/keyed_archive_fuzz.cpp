// SPDX-License-Identifier: MIT
#include "diagnostics/exception.h"
#include "foundation/archiving.h"

#include <cstdlib>

namespace {

using namespace havrel;

/// The archived object; nil when the archive is refused the way it should be.
QVariant objectIn(const QByteArray& archive)
{
    try {
        return archivedObject(archive);
    } catch (const HVException& exception) {
        if (exception.reason() != QLatin1StringView("invalid archive data"))
            std::abort();
        return {};
    }
}

/// What was read can be archived, unless it then nests too deep, and that archive reads back as what archives alike.
void checkRoundTrip(const QVariant& object)
{
    QByteArray archive;
    try {
        archive = dataForRootObject(object);
    } catch (const HVException&) {
        return;
    }
    if (dataForRootObject(archivedObject(archive)) != archive)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    const QVariant object = objectIn(QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)));
    if (object.isValid())
        checkRoundTrip(object);
    return 0;
}
