// SPDX-License-Identifier: MIT
#include "fs/volume_info.h"

#include "diagnostics/exception.h"
#include "diagnostics/logr.h"
#include "foundation/error.h"
#include "foundation/process.h"
#include "fs/directory.h"
#include "fs/path.h"
#include "fs/path_text.h"
#include "fs/volume_coding.h"
#include "fs/volume_siblings.h"
#include "platform/device_registry.h"
#include "platform/file_names.h"
#include "platform/items.h"

#include <cerrno>
#include <limits>
#include <utility>

namespace havrel {
namespace {

constexpr std::int64_t kLongestFileWithoutBigOnes = 4'294'967'296;
constexpr qint64 kBitsOfLongest = 64;

/// Here, where every program that has volumes links it.
const bool kClassRegistered = registerVolumeClass();

const QString kData = QStringLiteral("Data");
const QString kSystem = QStringLiteral("System");
const QString kNumberKey = QStringLiteral("NSFileSystemNumber");

void logProblem(const char* origin, const char* what, const QByteArray& mountPoint, int error)
{
    Logr::log(LogClassification::Debug,
              QStringLiteral("%1 problem getting %2 for device %3: %4(%5)")
                  .arg(QLatin1StringView(origin),
                       QLatin1StringView(what),
                       platform::textOfFileName(mountPoint),
                       QString::number(error),
                       systemErrorText(error)));
}

QString word(std::uint32_t value)
{
    return QString::number(value, 16).rightJustified(4, u'0');
}

} // namespace

JNVolumeInfo::JNVolumeInfo(Token /*token*/, platform::FileSystem stat, const platform::VolumeAttributes& attributes)
    : m_pathObj(JNPath::assumingName(attributes.label.isEmpty() ? path_text::baseName(stat.mountPoint).toByteArray()
                                                                : attributes.label,
                                     stat.mountPoint))
    , m_stat(std::move(stat))
    , m_createTimeSpec(attributes.created.value_or(timespec{}))
    , m_capabilities(attributes.capabilities)
    , m_attributes(attributes.supported)
    , m_uuid(attributes.uuid.value_or(platform::VolumeUUID{}))
{
    const auto blockSize = static_cast<std::uint64_t>(m_stat.blockSize);
    m_totalBytes = m_stat.blocks * blockSize;
    m_freeBytes = m_stat.freeBlocks * blockSize;
    m_availBytes = m_stat.availableBlocks * blockSize;
}

JNVolumeInfo::JNVolumeInfo(Token /*token*/, const JNVolumeInfo& other)
    : m_pathObj(other.m_pathObj)
    , m_totalBytes(other.m_totalBytes)
    , m_createTimeSpec(other.m_createTimeSpec)
    , m_capabilities(other.m_capabilities)
    , m_attributes(other.m_attributes)
    , m_uuid(other.m_uuid)
{
    const MutexLock lock(other.m_propLock);
    m_rootDirectory = other.m_rootDirectory;
    m_dataVolume = other.m_dataVolume;
    m_systemVolume = other.m_systemVolume;
    m_stat = other.m_stat;
    m_freeBytes = other.m_freeBytes;
    m_availBytes = other.m_availBytes;
    m_deviceName = other.m_deviceName;
    m_nsAttributes = other.m_nsAttributes;
    m_uuidStr = other.m_uuidStr;
}

JNVolumeInfoPtr JNVolumeInfo::withPath(const QByteArray& path)
{
    platform::FileSystem found;
    QByteArray asked = path;
    int error = platform::findFileSystem(asked, found);
    if (error == ENOENT) {
        asked = path_text::directoryName(path).toByteArray();
        error = platform::findFileSystem(asked, found);
    }
    if (error != 0)
        HVException::ioErrno(error, QStringLiteral("problem getting volume statfs"))
            .setCPath(asked.constData())
            .raise();
    return withStat(found);
}

JNVolumeInfoPtr JNVolumeInfo::withStat(const platform::FileSystem& stat)
{
    platform::VolumeAttributes attributes;
    if (const int error = platform::askForAttributes(stat, attributes); error != 0)
        HVException::ioErrno(error, QStringLiteral("problem getting volume attributes"))
            .setCPath(stat.mountPoint.constData())
            .raise();
    return withStat(stat, attributes);
}

JNVolumeInfoPtr JNVolumeInfo::withStat(platform::FileSystem stat, const platform::VolumeAttributes& attributes)
{
    return std::make_shared<JNVolumeInfo>(Token(), std::move(stat), attributes);
}

JNVolumeInfoPtr JNVolumeInfo::volumeInfoForPathObject(const JNPath& path)
{
    return withPath(path.cPath());
}

JNVolumeInfoPtr JNVolumeInfo::volumeInfoForPath(const QString& path)
{
    return withPath(platform::bytesOfFileName(path));
}

JNVolumeInfoPtr JNVolumeInfo::copy() const
{
    return std::make_shared<JNVolumeInfo>(Token(), *this);
}

QByteArray JNVolumeInfo::cName() const
{
    return m_pathObj->cName();
}

QByteArray JNVolumeInfo::cPath() const
{
    return m_pathObj->cPath();
}

QString JNVolumeInfo::name() const
{
    return m_pathObj->name();
}

QString JNVolumeInfo::displayName() const
{
    return m_pathObj->displayName();
}

QString JNVolumeInfo::path() const
{
    return m_pathObj->path();
}

QUrl JNVolumeInfo::url() const
{
    return m_pathObj->url();
}

QString JNVolumeInfo::displayPath() const
{
    return displayName() + u':';
}

std::shared_ptr<JNDirectory> JNVolumeInfo::rootDirectory()
{
    {
        const MutexLock lock(m_propLock);
        if (m_rootDirectory)
            return m_rootDirectory;
    }
    auto directory = JNDirectory::directoryWithPath(path());
    if (!directory)
        return nullptr;
    const MutexLock lock(m_propLock);
    if (!m_rootDirectory) {
        directory->setVolumeInfo(shared_from_this());
        m_rootDirectory = std::move(directory);
    }
    return m_rootDirectory;
}

platform::FileSystem JNVolumeInfo::stat() const
{
    const MutexLock lock(m_propLock);
    return m_stat;
}

bool JNVolumeInfo::hasFlag(std::uint32_t flag) const
{
    const MutexLock lock(m_propLock);
    return (m_stat.flags & flag) != 0;
}

std::uint64_t JNVolumeInfo::filesystemID() const
{
    const MutexLock lock(m_propLock);
    return m_stat.id;
}

void JNVolumeInfo::reloadStats()
{
    const QByteArray mountPoint = stat().mountPoint;
    platform::FileSystem found;
    const int error = platform::findFileSystem(mountPoint, found);
    {
        const MutexLock lock(m_propLock);
        m_nsAttributes.clear();
        if (error == 0)
            m_stat = std::move(found);
    }
    if (error != 0)
        logProblem("-[JNVolumeInfo reloadStats]", "stats", mountPoint, error);
}

void JNVolumeInfo::reloadSizes()
{
    platform::FileSystem asked = stat();
    const int error = platform::askForStatistics(asked);
    {
        const MutexLock lock(m_propLock);
        m_nsAttributes.clear();
        if (error == 0)
            takeSizes(asked);
    }
    if (error != 0)
        logProblem("-[JNVolumeInfo reloadSizes]", "sizes", asked.mountPoint, error);
}

void JNVolumeInfo::takeSizes(const platform::FileSystem& stat)
{
    const auto blockSize = static_cast<std::uint64_t>(stat.blockSize);
    m_freeBytes = stat.freeBlocks * blockSize;
    m_availBytes = stat.availableBlocks * blockSize;
}

std::uint64_t JNVolumeInfo::freeBytes() const
{
    const MutexLock lock(m_propLock);
    return m_freeBytes;
}

std::uint64_t JNVolumeInfo::availableBytes() const
{
    const MutexLock lock(m_propLock);
    return m_availBytes != 0 ? m_availBytes : m_freeBytes;
}

std::int64_t JNVolumeInfo::blockSize() const
{
    return stat().blockSize;
}

std::int64_t JNVolumeInfo::optimalXferSize() const
{
    return stat().optimalXferSize;
}

QByteArray JNVolumeInfo::cDeviceName() const
{
    return stat().device;
}

QString JNVolumeInfo::deviceName() const
{
    const MutexLock lock(m_propLock);
    if (m_deviceName.isNull())
        m_deviceName = platform::textOfFileName(m_stat.device);
    return m_deviceName;
}

QByteArray JNVolumeInfo::cFilesystemType() const
{
    return stat().type;
}

QByteArray JNVolumeInfo::uuidCStr() const
{
    const MutexLock lock(m_propLock);
    if (m_uuidStr.isNull() && m_uuid != platform::VolumeUUID{})
        m_uuidStr = platform::textOfVolumeUUID(m_uuid);
    return m_uuidStr;
}

QString JNVolumeInfo::syntheticUUID() const
{
    if (const QByteArray uuid = uuidCStr(); !uuid.isEmpty())
        return QString::fromLatin1(uuid);
    const std::uint64_t id = filesystemID();
    return QStringLiteral("FSID-%1-%2")
        .arg(word(static_cast<std::uint32_t>(id)), word(static_cast<std::uint32_t>(id >> 32U)));
}

QVariant JNVolumeInfo::wholeDeviceIdentifier()
{
    QVariant number = nsAttributes().toMap().value(kNumberKey);
    const QByteArray device = cDeviceName();
    if (device.isEmpty() || device.startsWith('/'))
        return number;
    const auto disk = wholeDiskOfDevice(platform::deviceRegistry(), device);
    return disk ? QVariant(*disk) : number;
}

QVariant JNVolumeInfo::nsAttributes()
{
    {
        const MutexLock lock(m_propLock);
        if (m_nsAttributes.isValid())
            return m_nsAttributes;
    }
    platform::FileSystem asked = stat();
    const auto number = platform::deviceId(cPath());
    int error = number ? platform::askForStatistics(asked) : platform::findName(cPath());
    if (!number && error == 0)
        error = ENOENT; // it has come back between the two
    if (error != 0) {
        Logr::log(LogClassification::Debug,
                  QStringLiteral("-[JNVolumeInfo nsAttributes] problem obtaining NSFileManager attributes for "
                                 "filesystem at %1: %2")
                      .arg(path(), Error::posix(error).description()));
        return {};
    }
    const auto blockSize = static_cast<quint64>(asked.blockSize);
    const QVariantMap attributes{
        {QStringLiteral("NSFileSystemSize"), QVariant::fromValue<quint64>(asked.blocks * blockSize)},
        {QStringLiteral("NSFileSystemFreeSize"), QVariant::fromValue<quint64>(asked.availableBlocks * blockSize)},
        {QStringLiteral("NSFileSystemNodes"), QVariant::fromValue<quint64>(asked.items)},
        {QStringLiteral("NSFileSystemFreeNodes"), QVariant::fromValue<quint64>(asked.freeItems)},
        {kNumberKey, QVariant::fromValue<quint64>(*number)},
    };
    const MutexLock lock(m_propLock);
    m_nsAttributes = attributes;
    return m_nsAttributes;
}

JNVolumeInfoPtr JNVolumeInfo::dataVolumeInfo()
{
    return sibling(&JNVolumeInfo::m_dataVolume, kData, kSystem);
}

JNVolumeInfoPtr JNVolumeInfo::systemVolumeInfo()
{
    return sibling(&JNVolumeInfo::m_systemVolume, kSystem, kData);
}

JNVolumeInfoPtr JNVolumeInfo::sibling(Sibling JNVolumeInfo::*kept, const QString& role, const QString& ownRole)
{
    {
        const MutexLock lock(m_propLock);
        if (this->*kept)
            return *(this->*kept);
    }
    JNVolumeInfoPtr found = volumeWithSiblingRole(role, ownRole);
    const MutexLock lock(m_propLock);
    this->*kept = found;
    return found;
}

std::optional<QString> JNVolumeInfo::dataVolumeUUID() const
{
    JNVolumeInfoPtr found;
    {
        const MutexLock lock(m_propLock);
        found = m_dataVolume.value_or(nullptr);
    }
    return found ? std::optional(found->syntheticUUID()) : std::nullopt;
}

JNVolumeInfoPtr JNVolumeInfo::volumeWithSiblingRole(const QString& sibling, const QString& primary) const
{
    if (!Process::isCatalinaOrLater())
        return nullptr;
    const SiblingSearch search{path_text::baseName(cDeviceName()).toByteArray(), path(), sibling, primary};
    const auto source = mountSourceOfSibling(platform::deviceRegistry(), search);
    if (!source)
        return nullptr;
    for (const JNVolumeInfoPtr& volume : allVolumes())
        if (volume->cDeviceName() == *source)
            return volume;
    return nullptr;
}

void JNVolumeInfo::unmount() const
{
    unmountForcibly(Forcibly::No);
}

void JNVolumeInfo::unmountForcibly(Forcibly forcibly) const
{
    const bool forced = forcibly == Forcibly::Yes;
    if (const int error = platform::unmountVolume(cPath(), forced); error != 0)
        HVException::ioErrno(error, QStringLiteral("cannot unmount volume"))
            .setDetail(displayName(), QStringLiteral("name"))
            .setStrPath(path())
            .setDecimalDetail(forced ? 1 : 0, QStringLiteral("forcably"))
            .raise();
}

bool JNVolumeInfo::hasFormatCapability(std::uint32_t bit) const noexcept
{
    return (m_capabilities.format.bits & m_capabilities.format.valid & bit) != 0;
}

bool JNVolumeInfo::hasInterfaceCapability(std::uint32_t bit) const noexcept
{
    return (m_capabilities.interface.bits & m_capabilities.interface.valid & bit) != 0;
}

std::int64_t JNVolumeInfo::maxFileSize() const
{
    if (!has2TBFiles())
        return kLongestFileWithoutBigOnes;
    const qint64 bits = m_pathObj->fileSizeBits();
    if (bits >= kBitsOfLongest)
        return std::numeric_limits<std::int64_t>::max();
    return bits == 0 ? 0 : static_cast<std::int64_t>((std::uint64_t(1) << bits) - 1);
}

bool JNVolumeInfo::isEqual(const JNVolumeInfo& other) const
{
    return filesystemID() == other.filesystemID();
}

QString JNVolumeInfo::description() const
{
    return QStringLiteral("JNVolumeInfo(\"%1\",%2)").arg(displayName(), path());
}

} // namespace havrel
