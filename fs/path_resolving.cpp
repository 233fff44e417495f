// SPDX-License-Identifier: MIT
#include "diagnostics/logr.h"
#include "foundation/error.h"
#include "fs/path.h"
#include "fs/path_text.h"
#include "platform/file_names.h"
#include "platform/items.h"
#include "platform/random.h"

#include <algorithm>

namespace havrel {
namespace {

qint64 knownLimit(const JNPath& path, platform::PathLimit limit)
{
    return std::max<qint64>(platform::pathLimit(path.cPath(), limit), 0);
}

} // namespace

JNPathPtr JNPath::withCPath(const QByteArray& path, const JNPathPtr& base)
{
    if (path.isEmpty())
        return base;
    if (path.startsWith('/'))
        return withCPath(path);
    QByteArray whole = path_text::joined(base->cPath(), path);
    if (path.startsWith('.'))
        whole = platform::realPath(whole).value_or(whole);
    return withCPath(std::move(whole));
}

JNPathPtr JNPath::realPath(const QString& path)
{
    return pathWithPath(path)->real();
}

JNPathPtr JNPath::tempPath()
{
    static const JNPathPtr s_tempPath = realPath(QStringLiteral("/tmp"));
    return s_tempPath;
}

JNPathPtr JNPath::tempPathWithPrefix(const QString& prefix, const QString& extension)
{
    for (;;) {
        const QString number = QString::number(platform::random32(), 16).rightJustified(8, u'0');
        JNPathPtr candidate = tempPath()->pathOfChild(prefix + u'-' + number + u'.' + extension);
        // A name that cannot be looked up is as good as a free one: the next number would fare no better.
        if (platform::findName(candidate->cPath()) != 0)
            return candidate;
    }
}

JNPathPtr JNPath::relativePath(const QString& path)
{
    return withCPath(platform::bytesOfFileName(path), shared_from_this());
}

QString JNPath::displayName() const
{
    if (const int error = platform::findName(cPath()); error != 0) {
        Logr::log(LogClassification::Debug,
                  QStringLiteral("-[JNPath displayName] could not obtain display name for %1 (%2)")
                      .arg(path(), Error::posix(error).description()));
    }
    return name();
}

JNPathPtr JNPath::resolved(const QByteArray& realPath)
{
    return realPath == cPath() ? shared_from_this() : withCPath(realPath);
}

JNPathPtr JNPath::real()
{
    const auto found = platform::realPath(cPath());
    return found ? resolved(*found) : shared_from_this();
}

JNPathPtr JNPath::hardenedReal()
{
    const auto found = platform::canonicalPath(cPath());
    return found ? resolved(*found) : real();
}

bool JNPath::exists() const
{
    return platform::itemExists(cPath());
}

qint64 JNPath::minTransferSize() const
{
    return knownLimit(*this, platform::PathLimit::MinTransferSize);
}

qint64 JNPath::maxTransferSize() const
{
    return knownLimit(*this, platform::PathLimit::MaxTransferSize);
}

qint64 JNPath::fileSizeBits() const
{
    return knownLimit(*this, platform::PathLimit::FileSizeBits);
}

QString JNPath::pathRelativeToPath(const JNPath& base) const
{
    if (isEqual(base))
        return QStringLiteral("");
    const QByteArray whole = cPath();
    const QByteArray above = base.cPath();
    if (above.isEmpty() || above.size() >= whole.size() || !whole.startsWith(above))
        return path();
    if (above.endsWith('/'))
        return platform::textOfFileName(QByteArrayView(whole).sliced(above.size()));
    if (whole[above.size()] == '/')
        return platform::textOfFileName(QByteArrayView(whole).sliced(above.size() + 1));
    return path();
}

bool JNPath::containsPath(const JNPath& other) const
{
    const QByteArray mine = cPath();
    const QByteArray others = other.cPath();
    if (others == mine)
        return true;
    if (!others.startsWith(mine))
        return false;
    if (mine != "/" && others[mine.size()] != '/')
        return false;
    return platform::deviceId(mine) == platform::deviceId(others);
}

} // namespace havrel
