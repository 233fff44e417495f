// SPDX-License-Identifier: MIT
// Whatever the bytes of an archive file are: it is refused in words, or it comes back from the bytes that are made of
// it.
#include "components/archive_file.h"

#include "diagnostics/exception.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

using namespace havrel;

void require(bool holds)
{
    if (!holds)
        std::abort();
}

/// A binary list may hold what XML cannot; then there are no bytes.
QByteArray bytesOf(const ArchiveFile& archive)
{
    try {
        return bytesOfArchiveFile(archive);
    } catch (const HVException&) {
        return {};
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const ArchiveFileReading reading = parseArchiveFile(bytes);
    if (!reading.fault.isNull())
        return 0;
    (void)shownPlace(reading.archive.repository);
    const QByteArray written = bytesOf(reading.archive);
    if (written.isEmpty())
        return 0;
    const ArchiveFileReading again = parseArchiveFile(written);
    require(again.fault.isNull());
    require(again.archive.repository == reading.archive.repository);
    require(again.archive.identifier == reading.archive.identifier);
    require(bytesOfArchiveFile(again.archive) == written);
    return 0;
}
