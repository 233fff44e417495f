// SPDX-License-Identifier: MIT
#include "platform/blkid_library.h"

#include <cstddef>
#include <memory>

#include <blkid/blkid.h>
#include <dlfcn.h>

namespace havrel::platform {
namespace {

/// The functions that are used here; all of them or none.
class Library
{
public:
    [[nodiscard]] static const Library& loaded()
    {
        static const Library s_library;
        return s_library;
    }

    [[nodiscard]] bool isThere() const { return m_isThere; }

    decltype(&::blkid_new_probe_from_filename) newProbe = nullptr;
    decltype(&::blkid_free_probe) freeProbe = nullptr;
    decltype(&::blkid_probe_enable_superblocks) enableSuperblocks = nullptr;
    decltype(&::blkid_probe_set_superblocks_flags) setSuperblocksFlags = nullptr;
    decltype(&::blkid_do_safeprobe) safeProbe = nullptr;
    decltype(&::blkid_probe_lookup_value) lookUp = nullptr;

private:
    Library()
        : m_handle(::dlopen("libblkid.so.1", RTLD_NOW | RTLD_LOCAL))
    {
        m_isThere = m_handle != nullptr && find("blkid_new_probe_from_filename", newProbe) &&
                    find("blkid_free_probe", freeProbe) && find("blkid_probe_enable_superblocks", enableSuperblocks) &&
                    find("blkid_probe_set_superblocks_flags", setSuperblocksFlags) &&
                    find("blkid_do_safeprobe", safeProbe) && find("blkid_probe_lookup_value", lookUp);
    }

    template<class Function>
    [[nodiscard]] bool find(const char* name, Function& function) const
    {
        function = reinterpret_cast<Function>(::dlsym(m_handle, name));
        return function != nullptr;
    }

    void* m_handle; // never closed: the functions are used to the end
    bool m_isThere = false;
};

QByteArray valueOf(const Library& library, blkid_probe probe, const char* name)
{
    const char* value = nullptr;
    if (library.lookUp(probe, name, &value, nullptr) != 0 || value == nullptr)
        return {};
    return {value};
}

} // namespace

DeviceTags tagsOfDevice(const QByteArray& device)
{
    const Library& library = Library::loaded();
    if (!library.isThere())
        return {};
    const std::unique_ptr<blkid_struct_probe, decltype(library.freeProbe)> probe(library.newProbe(device.constData()),
                                                                                 library.freeProbe);
    if (!probe)
        return {};
    library.enableSuperblocks(probe.get(), 1);
    library.setSuperblocksFlags(probe.get(), BLKID_SUBLKS_UUID | BLKID_SUBLKS_LABEL);
    if (library.safeProbe(probe.get()) != 0) // nothing, or more than one thing
        return {};
    return {valueOf(library, probe.get(), "UUID"), valueOf(library, probe.get(), "LABEL")};
}

} // namespace havrel::platform
