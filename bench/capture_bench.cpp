// SPDX-License-Identifier: MIT
// What a capture of 10,000 small files costs through the engine, beside restic called by hand with the same files: the
// first capture into a fresh repository, and a second one of files that have not changed. The peers take turns, each
// with repositories of its own; figures are wall-clock medians.
//
// usage: capture_bench [ROUNDS]
#include "components/archive_file.h"
#include "components/archive_key.h"
#include "components/capture_engine.h"
#include "platform/item_removal.h"
#include "platform/program_lines.h"
#include "platform/programs.h"
#include "platform/replaced_file.h"

#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <vector>

namespace havrel {
namespace {

constexpr int kFiles = 10'000;
constexpr int kFilesInFolder = 250;
constexpr int kRounds = 7;

double millisecondsFor(const std::function<void()>& work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

double median(std::vector<double> samples)
{
    const auto middle = samples.begin() + static_cast<std::ptrdiff_t>(samples.size() / 2);
    std::nth_element(samples.begin(), middle, samples.end());
    return *middle;
}

void require(bool holds, const char* otherwise)
{
    if (holds)
        return;
    std::fprintf(stderr, "%s\n", otherwise);
    std::exit(1);
}

void makeFiles(const QByteArray& root)
{
    for (int i = 0; i < kFiles; ++i) {
        const QByteArray folder = root + '/' + QByteArray::number(i / kFilesInFolder);
        const QByteArray text = "file " + QByteArray::number(i) + QByteArray(i % 2000, 'x');
        QFile file(QString::fromUtf8(folder + '/' + QByteArray::number(i)));
        require(platform::makeFolders(folder, 0755) == 0 && file.open(QIODevice::WriteOnly) &&
                    file.write(text) == text.size(),
                "cannot make the files");
    }
}

void captureByHand(const ArchiveFile& archive, const QByteArray& items)
{
    const platform::ProgramEnd end =
        platform::runForLines({.program = platform::programOfName("restic"),
                               .arguments = {"--repo",
                                             archive.repository,
                                             "--password-file",
                                             keyFileOf(archive.identifier),
                                             "backup",
                                             "--json",
                                             items}},
                              [](platform::OutputStream, const QByteArray&) { return platform::Proceed::Yes; });
    require(end.status == 0, "restic has failed");
}

void captureByEngine(const ArchiveFile& archive, const QByteArray& items)
{
    const CaptureSummary summary = engineOf(archive)->capture({items}, {});
    require(summary.problems.isEmpty(), "the engine has left items out");
}

/// A peer, and how long its captures took.
struct Peer
{
    void (*capture)(const ArchiveFile& archive, const QByteArray& items);
    std::vector<double> first = {};
    std::vector<double> unchanged = {};
};

void play(Peer& peer, const QByteArray& root)
{
    const ArchiveFile archive = ArchiveFile::of(QStringLiteral("restic"), root + "/repository", {});
    makeKeyFile(archive.identifier);
    engineOf(archive)->makeRepository();
    peer.first.push_back(millisecondsFor([&] { peer.capture(archive, root + "/items"); }));
    peer.unchanged.push_back(millisecondsFor([&] { peer.capture(archive, root + "/items"); }));
    require(platform::removeItem(archive.repository) == 0, "cannot remove the repository");
}

void report(const char* title, const std::vector<double>& hand, const std::vector<double>& engine)
{
    std::printf("%-34s by hand %7.0f ms   engine %7.0f ms   ratio %.2f\n",
                title,
                median(hand),
                median(engine),
                median(engine) / median(hand));
}

void run(int rounds)
{
    const QTemporaryDir folder;
    const QByteArray root = folder.path().toUtf8();
    qputenv("XDG_DATA_HOME", root + "/data");
    qputenv("XDG_CACHE_HOME", root + "/cache");
    makeFiles(root + "/items");
    Peer hand{captureByHand};
    Peer engine{captureByEngine};
    for (int i = 0; i < rounds; ++i) {
        play(i % 2 == 0 ? hand : engine, root);
        play(i % 2 == 0 ? engine : hand, root);
    }
    report("10,000 files, first capture", hand.first, engine.first);
    report("10,000 files, nothing has changed", hand.unchanged, engine.unchanged);
}

} // namespace
} // namespace havrel

int main(int argc, char** argv)
{
    havrel::run(argc > 1 ? std::atoi(argv[1]) : havrel::kRounds);
    return 0;
}
