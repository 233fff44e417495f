// SPDX-License-Identifier: MIT
// Whatever the bytes of a path are: its parts lie inside it, standardising it again changes nothing, and its URL gives
// its bytes back.
#include "fs/path_text.h"

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

void checkStandardised(QByteArrayView path)
{
    const QByteArray plain = path_text::standardised(path);
    require(path_text::standardised(plain) == plain);
    require(!plain.contains("//"));
    require(plain.startsWith('/') == path.startsWith('/'));
    require(plain == "/" || !plain.endsWith('/'));
}

void checkParts(QByteArrayView path)
{
    const QByteArrayView name = path_text::baseName(path);
    require(!name.isEmpty() && (name == "/" || !name.contains('/')));
    require(!path_text::directoryName(path).isEmpty());
}

void checkURL(const QByteArray& path)
{
    const QUrl url = path_text::toURL(path);
    require(url.isValid() && url.isLocalFile());
    QByteArray expected = path;
    while (expected.size() > 1 && expected.endsWith('/'))
        expected.chop(1);
    require(path_text::fromURL(url) == expected);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray path(static_cast<const char*>(static_cast<const void*>(data)), static_cast<qsizetype>(size));
    checkStandardised(path);
    checkParts(path);
    checkURL(path);
    (void)path_text::fromURL(QUrl::fromEncoded(path));
    return 0;
}
