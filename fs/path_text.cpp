// SPDX-License-Identifier: MIT
#include "fs/path_text.h"

namespace havrel::path_text {
namespace {

QByteArrayView withoutTrailingSlashes(QByteArrayView path)
{
    while (path.size() > 1 && path.endsWith('/'))
        path.chop(1);
    return path;
}

/// Removes the last component of \p path, a standardised path, if there is one that is not "..".
bool leaveComponent(QByteArray& path)
{
    if (path == "/")
        return true;
    const QByteArrayView last = baseName(path);
    if (path.isEmpty() || last == "..")
        return false;
    const qsizetype rest = path.size() - last.size();
    path.truncate(rest > 1 ? rest - 1 : rest); // the slash before it goes too, the root's stays
    return true;
}

void takeComponent(QByteArray& path, QByteArrayView component)
{
    if (component.isEmpty() || component == ".")
        return;
    if (component == ".." && leaveComponent(path))
        return;
    path = appended(path, component);
}

} // namespace

QByteArrayView baseName(QByteArrayView path)
{
    if (path.isEmpty())
        return ".";
    path = withoutTrailingSlashes(path);
    return path == "/" ? path : path.sliced(path.lastIndexOf('/') + 1);
}

QByteArrayView directoryName(QByteArrayView path)
{
    const QByteArrayView trimmed = withoutTrailingSlashes(path);
    const qsizetype slash = (trimmed == "/" ? path : trimmed).lastIndexOf('/');
    if (slash < 0)
        return ".";
    qsizetype end = slash;
    while (end > 0 && path[end - 1] == '/')
        --end;
    if (end == 0)
        end = slash == 1 ? 2 : 1; // "//" stays, any other number of slashes is the root
    return path.first(end);
}

QByteArray joined(QByteArrayView parent, QByteArrayView name)
{
    QByteArray path;
    path.reserve(parent.size() + 1 + name.size());
    path.append(parent);
    if (!parent.endsWith('/'))
        path.append('/');
    return path.append(name);
}

QByteArray appended(QByteArrayView directory, QByteArrayView component)
{
    return directory.isEmpty() ? component.toByteArray() : joined(directory, component);
}

QByteArray standardised(QByteArrayView path)
{
    QByteArray result(path.startsWith('/') ? "/" : "");
    while (!path.isEmpty()) {
        const qsizetype slash = path.indexOf('/');
        const qsizetype end = slash < 0 ? path.size() : slash;
        takeComponent(result, path.first(end));
        path = path.sliced(slash < 0 ? end : end + 1);
    }
    return result;
}

QString extension(const QString& name)
{
    const qsizetype dot = name.lastIndexOf(u'.');
    return dot > 0 ? name.sliced(dot + 1) : QString();
}

QUrl toURL(QByteArrayView path)
{
    const QByteArray encoded = path.toByteArray().toPercentEncoding("/!$&'()*+,;=:@");
    return QUrl::fromEncoded((path.startsWith('/') ? "file://" : "file:") + encoded, QUrl::StrictMode);
}

QByteArray fromURL(const QUrl& url)
{
    const QByteArray path = QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1());
    return withoutTrailingSlashes(path).toByteArray();
}

} // namespace havrel::path_text
