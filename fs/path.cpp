// SPDX-License-Identifier: MIT
#include "fs/path.h"

#include "fs/path_coding.h"
#include "fs/path_text.h"
#include "platform/file_names.h"

#include <utility>

namespace havrel {
namespace {

/// Here, where every program that has paths links it.
const bool kClassesRegistered = registerPathClasses();
const bool kTextRegistered = QMetaType::registerConverter<JNPathPtr, QString>(
    [](const JNPathPtr& path) { return path ? path->description() : QStringLiteral("(null)"); });

} // namespace

JNPath::JNPath(Token /*token*/, QByteArray name, QByteArray path)
    : m_cPath(std::move(path))
    , m_cName(std::move(name))
{
}

JNPath::~JNPath() = default;

JNPathPtr JNPath::withCPath(QByteArray path)
{
    QByteArray name = path_text::baseName(path).toByteArray();
    return assumingName(std::move(name), std::move(path));
}

JNPathPtr JNPath::withPath(const QString& path)
{
    auto made = withCPath(platform::bytesOfFileName(path));
    // A text that holds bytes as surrogates may spell the same bytes in more than one way: then the bytes decide.
    if (path.isValidUtf16()) {
        const MutexLock lock(made->m_pathLock);
        made->m_path = path;
    }
    return made;
}

JNPathPtr JNPath::withURL(const QUrl& url)
{
    const bool file = url.scheme().compare(QLatin1StringView("file"), Qt::CaseInsensitive) == 0;
    if (!url.isValid() || !file)
        return nullptr;
    auto made = withCPath(path_text::fromURL(url));
    const MutexLock lock(made->m_pathLock);
    made->m_url = url;
    return made;
}

JNPathPtr JNPath::withCName(QByteArray name, const JNPath& parentPath)
{
    QByteArray path = path_text::joined(parentPath.cPath(), name);
    return assumingName(std::move(name), std::move(path));
}

JNPathPtr JNPath::withPathObject(const JNPath& other)
{
    auto same = assumingName(other.cName(), other.cPath());
    same->shareForms(other);
    return same;
}

JNPathPtr JNPath::assumingName(QByteArray name, QByteArray path)
{
    return std::make_shared<JNPath>(Token(), std::move(name), std::move(path));
}

JNPathPtr JNPath::pathWithPath(const QString& path)
{
    return withPath(path);
}

JNPathPtr JNPath::pathWithURL(const QUrl& url)
{
    return withURL(url);
}

std::vector<JNPathPtr> JNPath::arrayFromPathsOrURLs(const QVariantList& pathsOrURLs)
{
    std::vector<JNPathPtr> paths;
    for (const QVariant& each : pathsOrURLs) {
        JNPathPtr path;
        if (each.typeId() == QMetaType::QString)
            path = pathWithPath(each.toString());
        else if (each.typeId() == QMetaType::QUrl)
            path = pathWithURL(each.toUrl());
        if (path)
            paths.push_back(std::move(path));
    }
    return paths;
}

JNPathPtr JNPath::copy() const
{
    return withPathObject(*this);
}

void JNPath::shareForms(const JNPath& other)
{
    other.m_pathLock.lock();
    QString name = other.m_name;
    QString path = other.m_path;
    QUrl url = other.m_url;
    other.m_pathLock.unlock();

    const MutexLock lock(m_pathLock);
    m_name = std::move(name);
    m_path = std::move(path);
    m_url = std::move(url);
}

QByteArray JNPath::cPath() const
{
    const MutexLock lock(m_pathLock);
    return cPath_nonblocking();
}

const QByteArray& JNPath::cPath_nonblocking() const
{
    return m_cPath;
}

QString JNPath::name() const
{
    const MutexLock lock(m_pathLock);
    if (m_name.isNull())
        m_name = platform::textOfFileName(m_cName);
    return m_name;
}

QString JNPath::path() const
{
    const MutexLock lock(m_pathLock);
    return path_nonblocking();
}

const QString& JNPath::path_nonblocking() const
{
    if (m_path.isNull())
        m_path = platform::textOfFileName(cPath_nonblocking());
    return m_path;
}

QUrl JNPath::url() const
{
    const MutexLock lock(m_pathLock);
    if (m_url.isEmpty())
        m_url = path_text::toURL(cPath_nonblocking());
    return m_url;
}

QString JNPath::extension() const
{
    return path_text::extension(name());
}

JNPathPtr JNPath::parent() const
{
    return withCPath(path_text::directoryName(cPath()).toByteArray());
}

void JNPath::flushInfo()
{
    const MutexLock lock(m_pathLock);
    m_url.clear();
}

JNPathPtr JNPath::pathOfChild(const QString& name) const
{
    return withCName(platform::bytesOfFileName(name), *this);
}

bool JNPath::isEqual(const JNPath& other) const
{
    return this == &other || cPath() == other.cPath();
}

bool JNPath::isEqual(const QString& text) const
{
    return path() == text;
}

bool JNPath::isEqual(const QVariant& object) const
{
    if (object.metaType() == QMetaType::fromType<JNPathPtr>()) {
        const auto other = object.value<JNPathPtr>();
        return other && isEqual(*other);
    }
    return object.typeId() == QMetaType::QString && isEqual(object.toString());
}

std::size_t JNPath::hash() const
{
    return qHash(path());
}

std::strong_ordering JNPath::compare(const JNPath& other) const
{
    return path().compare(other.path()) <=> 0;
}

std::strong_ordering JNPath::compare(const QVariant& object) const
{
    if (object.metaType() != QMetaType::fromType<JNPathPtr>())
        return std::strong_ordering::less;
    const auto other = object.value<JNPathPtr>();
    return other ? compare(*other) : std::strong_ordering::less;
}

QString JNPath::description() const
{
    return QStringLiteral("<%1: 0x%2>(%3)").arg(className(), QString::number(quintptr(this), 16), path());
}

} // namespace havrel
