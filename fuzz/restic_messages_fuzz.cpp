// SPDX-License-Identifier: MIT
// Whatever an engine's program writes is read without harm, and names come back from tags, patterns and quotes.
#include "components/restic_messages.h"

#include "components/engine_fault.h"
#include "components/restic_texts.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

using namespace havrel::restic;

void require(bool holds)
{
    if (!holds)
        std::abort();
}

void readAsMessages(const QByteArray& bytes)
{
    if (const auto progress = captureMessageOf(bytes).progress)
        require(progress->fraction >= 0 && progress->fraction <= 1);
    (void)problemOf(bytes);
    (void)itemOf(bytes);
    (void)capturesOf(bytes);
    (void)treeOf(bytes);
    (void)havrel::faultOfEngine(1, {wordsOf(bytes)});
}

void readAsNames(const QByteArray& bytes)
{
    require(bytesOfTagText(tagTextOf(bytes)) == bytes);
    const QByteArray quoted = QByteArray(bytes).replace('\\', "\\\\");
    require(bytesOfQuoted(quoted) == bytes);
    (void)bytesOfQuoted(bytes);
    require(patternOf(bytes).size() >= bytes.size());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    readAsMessages(bytes);
    readAsNames(bytes);
    return 0;
}
