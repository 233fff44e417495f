// SPDX-License-Identifier: MIT
// Directories against the plain system calls and std::filesystem: reading, walking, sorting, letting go.
#include "fs/directory.h"

#include "bench/medians.h"
#include "foundation/name_order.h"
#include "fs/path.h"

#include <QString>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <malloc.h>
#include <sys/stat.h>
#include <unistd.h>

namespace havrel {
namespace {

constexpr int kRounds = 5;
constexpr int kEntries = 100000;
constexpr int kFolders = 2000;
constexpr int kFilesInEach = 99;

/// A folder that goes with its contents.
class Tree
{
public:
    Tree()
    {
        std::string name = (std::filesystem::temp_directory_path() / "havrel-bench-XXXXXX").string();
        if (::mkdtemp(name.data()) == nullptr)
            std::exit(1);
        m_root = name;
    }
    ~Tree() { std::filesystem::remove_all(m_root); }
    Tree(const Tree&) = delete;
    Tree& operator=(const Tree&) = delete;

    [[nodiscard]] std::string folder(const std::string& name) const
    {
        std::filesystem::create_directories(m_root / name);
        return (m_root / name).string();
    }

private:
    std::filesystem::path m_root;
};

void fill(const std::string& folder, int count)
{
    const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    for (int i = 0; i < count; ++i)
        ::close(
            ::openat(descriptor, ("picture " + std::to_string(i * 7919LL % count)).c_str(), O_CREAT | O_WRONLY, 0644));
    ::close(descriptor);
}

/// The plain loop: as many calls as we make, and nothing kept.
template<class Visit>
void plainly(const std::string& folder, Visit visit)
{
    alignas(8) static std::array<char, 16384> s_buffer;
    const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    for (ssize_t length = 0; (length = ::getdents64(descriptor, s_buffer.data(), s_buffer.size())) > 0;)
        for (char* next = s_buffer.data(); next < s_buffer.data() + length;) {
            auto* entry = static_cast<dirent64*>(static_cast<void*>(next));
            next += entry->d_reclen;
            visit(descriptor, entry->d_name);
        }
    ::close(descriptor);
}

void plainStatus(int folder, const char* name)
{
    struct statx status;
    (void)::statx(folder, name, AT_SYMLINK_NOFOLLOW, STATX_BASIC_STATS | STATX_BTIME, &status);
}

std::shared_ptr<JNDirectory> directoryAt(const std::string& path)
{
    return JNDirectory::withPathObject(JNPath::withCPath(QByteArray::fromStdString(path)));
}

/// Both in turn, so that what else the machine does hits both alike.
void compare(const char* what, const std::function<void()>& ours, const std::function<void()>& theirs)
{
    std::vector<double> ratios;
    std::vector<double> times;
    for (int round = 0; round < kRounds; ++round) {
        const double peer = milliseconds(theirs);
        const double own = milliseconds(ours);
        ratios.push_back(own / peer);
        times.push_back(own);
    }
    std::sort(ratios.begin(), ratios.end());
    std::sort(times.begin(), times.end());
    std::printf("%-62s %6.2f  (%.1f ms)\n", what, ratios.at(kRounds / 2), times.at(kRounds / 2));
}

void reading(const std::string& folder)
{
    compare(
        "100,000 entries with attributes / getdents64 + statx",
        [&] { directoryAt(folder)->lazyDirectoryRead(); },
        [&] { plainly(folder, plainStatus); });
    compare(
        "100,000 entries, names and types / getdents64",
        [&] { directoryAt(folder)->lazyDirectoryRead(EntryDetail::NamesAndTypes); },
        [&] { plainly(folder, [](int, const char*) {}); });
    compare(
        "100,000 entries with size / std::filesystem::directory_iterator",
        [&] { directoryAt(folder)->lazyDirectoryRead(); },
        [&] {
            std::vector<std::filesystem::directory_entry> entries;
            for (const auto& each : std::filesystem::directory_iterator(folder)) {
                (void)each.file_size();
                (void)each.last_write_time();
                entries.push_back(each);
            }
        });
}

void memory(const std::string& folder)
{
    const auto before = ::mallinfo2().uordblks;
    const auto directory = directoryAt(folder);
    directory->lazyDirectoryRead();
    const auto bytes = ::mallinfo2().uordblks - before;
    std::printf("%-62s %6.1f  bytes\n", "memory of an entry with attributes", double(bytes) / directory->count());
}

std::uint64_t walk(JNDirectory& directory)
{
    std::uint64_t sum = 0;
    for (const JNFileInfoPtr& each : directory) {
        sum += static_cast<std::uint64_t>(each->modifiedTimeSpec().tv_sec) + each->attrs().logicalSize;
        if (const auto folder = each->asDirectory())
            sum += walk(*folder);
    }
    return sum;
}

void walking(const Tree& tree)
{
    for (int i = 0; i < kFolders; ++i)
        fill(tree.folder("tree/" + std::to_string(i)), kFilesInEach);
    const std::string root = tree.folder("tree");
    std::atomic<std::uint64_t> sum = 0;
    const auto ours = [&] { sum += walk(*directoryAt(root)); };
    compare("walk of 200,000 items / recursive_directory_iterator", ours, [&] {
        for (const auto& each : std::filesystem::recursive_directory_iterator(root))
            if (each.is_regular_file())
                sum += each.file_size() + static_cast<std::uint64_t>(each.last_write_time().time_since_epoch().count());
    });
    const std::string find = "find " + root + " -printf '%p %s %T@\\n' > /dev/null";
    compare("walk of 200,000 items / find -printf", ours, [&] { (void)!std::system(find.c_str()); });
}

void sorting(const std::string& folder)
{
    std::vector<QString> names;
    for (const JNFileInfoPtr& each : *directoryAt(folder))
        names.push_back(each->name());
    const auto directory = directoryAt(folder);
    std::vector<double> ratios;
    for (int round = 0; round < kRounds; ++round) {
        auto copy = names;
        directory->flushDirectoryContents();
        directory->lazyDirectoryRead();
        const double peer = milliseconds([&copy] {
            std::stable_sort(copy.begin(), copy.end(), [](const QString& one, const QString& other) {
                return finderLikeCompare(one, other) < 0;
            });
        });
        ratios.push_back(milliseconds([&directory] { directory->sort(); }) / peer);
    }
    std::sort(ratios.begin(), ratios.end());
    std::printf("%-62s %6.2f\n", "sorting 100,000 entries by name / std::stable_sort", ratios.at(kRounds / 2));
}

void lettingGo()
{
    const auto parent = JNPath::withCPath("/somewhere");
    EntryList list;
    for (int i = 0; i < 1000000; ++i)
        list.append(JNFileInfo::withDirEntry("entry of usual length", DT_REG, parent));
    const double pause = milliseconds([&list] { list = EntryList(); });
    std::printf("%-62s %6.2f  ms\n", "pause of whoever lets go of 1,000,000 entries", pause);
}

} // namespace
} // namespace havrel

int main()
{
    (void)std::setvbuf(stdout, nullptr, _IOLBF, 0); // it takes minutes
    const havrel::Tree tree;
    const std::string folder = tree.folder("wide");
    havrel::fill(folder, havrel::kEntries);
    havrel::reading(folder);
    havrel::memory(folder);
    havrel::sorting(folder);
    havrel::walking(tree);
    havrel::lettingGo();
    return 0;
}
