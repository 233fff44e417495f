// SPDX-License-Identifier: MIT
#include "components/kept_dictionary.h"

#include "diagnostics/logr.h"
#include "foundation/property_list.h"
#include "platform/file_contents.h"
#include "platform/file_names.h"
#include "platform/replaced_file.h"

#include <cerrno>
#include <utility>

namespace havrel {
namespace {

constexpr qsizetype kLongest = qsizetype{64} * 1024 * 1024; // bytes
constexpr mode_t kFolderOfOwnerAlone = 0700;
constexpr mode_t kFileOfOwnerAlone = 0600;

void logTrouble(const QByteArray& path, const QString& what, const QString& why)
{
    Logr::log(LogClassification::Warning,
              QStringLiteral("cannot %1 \"%2\": %3").arg(what, platform::textOfFileName(path), why));
}

} // namespace

KeptDictionary::KeptDictionary(QByteArray path)
    : m_path(std::move(path))
{
}

QVariantMap KeptDictionary::read() const
{
    const platform::FileContents contents = platform::readFile(m_path, kLongest);
    if (contents.error == ENOENT)
        return {};
    const PropertyListReading reading = parsePropertyList(contents.bytes);
    if (contents.error != 0)
        logTrouble(m_path, QStringLiteral("read"), systemErrorText(contents.error));
    else if (reading.error)
        logTrouble(m_path, QStringLiteral("read"), reading.error->localizedDescription());
    return reading.value.toMap();
}

bool KeptDictionary::keep(const QVariantMap& dictionary) const
{
    const PropertyListWriting written = binaryPropertyList(dictionary);
    if (written.error) {
        logTrouble(m_path, QStringLiteral("keep"), written.error->localizedDescription());
        return false;
    }
    int error = platform::makeFolders(m_path.left(m_path.lastIndexOf('/')), kFolderOfOwnerAlone);
    if (error == 0)
        error = platform::replaceFile(m_path, written.bytes, kFileOfOwnerAlone);
    if (error != 0)
        logTrouble(m_path, QStringLiteral("keep"), systemErrorText(error));
    return error == 0;
}

} // namespace havrel
