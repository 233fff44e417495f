// SPDX-License-Identifier: MIT
#include "platform/device_registry.h"

#include "platform/file_names.h"
#include "platform/item_calls.h"
#include "platform/items.h"

#include <QByteArrayList>

#include <algorithm>
#include <atomic>
#include <memory>
#include <utility>

#include <dirent.h>
#include <sys/sysmacros.h>

namespace havrel::platform {
namespace {

/// The names in a folder but those that begin with a dot, sorted; none when it cannot be read.
QByteArrayList namesIn(const QByteArray& folder)
{
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(::opendir(folder.constData()), ::closedir);
    QByteArrayList names;
    while (const dirent* const entry =
               entries ? ::readdir(entries.get()) : nullptr) // NOLINT(concurrency-mt-unsafe): a stream of our own
        if (entry->d_name[0] != '.')
            names << entry->d_name;
    std::sort(names.begin(), names.end());
    return names;
}

bool exists(const QByteArray& path)
{
    return findName(path) == 0;
}

/// The name in /dev of a folder of the tree, which has no folders inside a name.
QByteArray deviceNameOf(const QByteArray& folder)
{
    return folder.mid(folder.lastIndexOf('/') + 1).replace('!', '/');
}

class SysfsEntry final : public RegistryEntry
{
public:
    /// \param root   of the whole tree, without links
    /// \param folder of this entry, without links
    SysfsEntry(QByteArray root, QByteArray folder)
        : m_root(std::move(root))
        , m_folder(std::move(folder))
    {
    }

    [[nodiscard]] bool conformsTo(const QString& className) const override
    {
        return className == QLatin1String("IOMedia") ? isBlockDevice() : className == QLatin1String("IOService");
    }

    [[nodiscard]] QVariant property(const QString& name) const override
    {
        if (!isBlockDevice())
            return {};
        if (name == QLatin1String("BSD Name"))
            return textOfFileName(deviceNameOf(m_folder));
        return name == QLatin1String("Whole") ? QVariant(!isPartition()) : QVariant();
    }

    [[nodiscard]] std::vector<RegistryEntryPtr> parents() const override
    {
        if (isPartition())
            return single(above());
        if (!isBlockDevice())
            return single(above());
        auto entries = linked("/slaves");
        if (const auto device = realPath(m_folder + "/device"))
            append(*device, entries);
        return entries;
    }

    [[nodiscard]] std::vector<RegistryEntryPtr> children() const override
    {
        if (!isBlockDevice())
            return linked("/block");
        auto entries = linked("/holders");
        for (const QByteArray& name : namesIn(m_folder))
            if (exists(m_folder + '/' + name + "/partition"))
                append(m_folder + '/' + name, entries);
        return entries;
    }

private:
    /// Folders of block devices have a number of the device, and a folder for their queue or a number of the partition.
    [[nodiscard]] bool isBlockDevice() const
    {
        return exists(m_folder + "/dev") && (isPartition() || exists(m_folder + "/queue"));
    }
    [[nodiscard]] bool isPartition() const { return exists(m_folder + "/partition"); }
    [[nodiscard]] QByteArray above() const { return m_folder.first(std::max<qsizetype>(m_folder.lastIndexOf('/'), 0)); }

    /// Nothing at the top of the tree and beyond.
    void append(const QByteArray& folder, std::vector<RegistryEntryPtr>& entries) const
    {
        if (folder.startsWith(m_root + "/devices/"))
            entries.push_back(std::make_shared<SysfsEntry>(m_root, folder));
    }
    [[nodiscard]] std::vector<RegistryEntryPtr> single(const QByteArray& folder) const
    {
        std::vector<RegistryEntryPtr> entries;
        append(folder, entries);
        return entries;
    }
    [[nodiscard]] std::vector<RegistryEntryPtr> linked(const char* links) const
    {
        std::vector<RegistryEntryPtr> entries;
        for (const QByteArray& name : namesIn(m_folder + links))
            if (const auto folder = realPath(m_folder + links + '/' + name))
                append(*folder, entries);
        return entries;
    }

    QByteArray m_root;
    QByteArray m_folder;
};

std::atomic<const DeviceRegistry*> s_registry = nullptr; // null: the kernel's

} // namespace

SysfsDeviceRegistry::SysfsDeviceRegistry(QByteArray root)
    : m_root(std::move(root))
{
}

RegistryEntryPtr SysfsDeviceRegistry::entryOfDevice(const QByteArray& name) const
{
    const QByteArray folderName = QByteArray(name).replace('/', '!');
    if (folderName.isEmpty() || folderName == "." || folderName == "..")
        return nullptr;
    const auto root = realPath(m_root);
    const auto folder = realPath(m_root + "/class/block/" + folderName);
    return root && folder ? std::make_shared<SysfsEntry>(*root, *folder) : nullptr;
}

const DeviceRegistry& deviceRegistry()
{
    static const SysfsDeviceRegistry s_kernels;
    const DeviceRegistry* const replacement = s_registry;
    return replacement ? *replacement : s_kernels;
}

void replaceDeviceRegistry(const DeviceRegistry* replacement)
{
    s_registry = replacement;
}

QByteArray nameOfBlockDevice(std::uint64_t device)
{
    const QByteArray link =
        "/sys/dev/block/" + QByteArray::number(::major(device)) + ':' + QByteArray::number(::minor(device));
    const auto folder = realPath(link);
    return folder ? deviceNameOf(*folder) : QByteArray();
}

} // namespace havrel::platform
