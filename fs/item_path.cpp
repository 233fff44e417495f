// SPDX-License-Identifier: MIT
#include "fs/item_path.h"

#include "platform/host.h"

namespace havrel {
namespace {

constexpr QByteArrayView kScheme = "file:";

ItemPath fault(const char* text)
{
    return {{}, QString::fromLatin1(text)};
}

bool isHexadecimalDigit(char byte)
{
    return (byte >= '0' && byte <= '9') || (byte >= 'a' && byte <= 'f') || (byte >= 'A' && byte <= 'F');
}

/// Whether two digits follow each "%".
bool isWellEncoded(const QByteArray& text)
{
    for (qsizetype at = text.indexOf('%'); at >= 0; at = text.indexOf('%', at + 1))
        if (at + 2 >= text.size() || !isHexadecimalDigit(text[at + 1]) || !isHexadecimalDigit(text[at + 2]))
            return false;
    return true;
}

bool isThisComputer(const QByteArray& host)
{
    return host.isEmpty() || host.compare("localhost", Qt::CaseInsensitive) == 0 ||
           host.compare(platform::host().hostName(), Qt::CaseInsensitive) == 0;
}

} // namespace

QByteArray fileURIOfPath(const QByteArray& path)
{
    return "file://" + path.toPercentEncoding("/");
}

bool isFileURI(QByteArrayView text)
{
    return text.size() >= kScheme.size() && text.first(kScheme.size()).compare(kScheme, Qt::CaseInsensitive) == 0;
}

ItemPath pathOfFileURI(const QByteArray& uri)
{
    QByteArray path = uri.mid(kScheme.size());
    if (path.startsWith("//")) {
        const qsizetype root = path.indexOf('/', 2);
        if (!isThisComputer(path.mid(2, root < 0 ? -1 : root - 2)))
            return fault("this URI names an item on another computer");
        path = root < 0 ? QByteArray() : path.mid(root);
    }
    if (!path.startsWith('/'))
        return fault("this URI has no absolute path (a path that begins with \"file:\" is written ./file:...)");
    if (path.contains('?') || path.contains('#'))
        return fault("this URI has a query or a fragment (in a name, ? is written %3F and # is written %23)");
    if (!isWellEncoded(path))
        return fault("this URI has a % without two hexadecimal digits");
    const QByteArray decoded = QByteArray::fromPercentEncoding(path);
    if (decoded.contains('\0'))
        return fault("this URI holds a NUL, which no path can");
    return {decoded, {}};
}

QByteArray withoutTrailingSlashes(QByteArray path)
{
    while (path.size() > 1 && (path.endsWith('/') || path.endsWith("/.")))
        path.chop(1);
    return path;
}

} // namespace havrel
