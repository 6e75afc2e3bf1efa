// SPDX-License-Identifier: MIT

// Measures how long it takes to index the desktop entries of all installed applications, compared with only
// reading the same files, and how long lookups in the index take.

#include "platform/xdg/applications/installed_applications.h"
#include "support/entry_folder.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

namespace tessarel::bench {

namespace {

namespace fs = std::filesystem;

constexpr int kEntries = 5000;

const EntryFolder& folder() {
    static const EntryFolder folder(kEntries);
    ::setenv("LANGUAGE", "l7", 1); // of which the entries have translations
    return folder;
}

struct CloseFile {
    void operator()(std::FILE* file) const { (void)std::fclose(file); }
};

void readFilesOnce(benchmark::State& state) {
    const fs::path& path = folder().path();
    std::string content(std::size_t{64} * 1024, '\0');
    for (auto _ : state) {
        for (const auto& entry : fs::recursive_directory_iterator(path)) {
            if (!entry.is_regular_file())
                continue;
            const std::unique_ptr<std::FILE, CloseFile> file(std::fopen(entry.path().c_str(), "rb"));
            benchmark::DoNotOptimize(std::fread(content.data(), 1, content.size(), file.get()));
        }
    }
}
BENCHMARK(readFilesOnce)->Unit(benchmark::kMillisecond);

void indexEntries(benchmark::State& state) {
    const fs::path& path = folder().path();
    for (auto _ : state) {
        xdg::InstalledApplications entries({path});
        benchmark::DoNotOptimize(entries.ofClass("program4999"));
    }
}
BENCHMARK(indexEntries)->Unit(benchmark::kMillisecond);

void identify(benchmark::State& state) {
    xdg::InstalledApplications entries({folder().path()});
    for (auto _ : state)
        benchmark::DoNotOptimize(entries.ofClass("Program4999"));
}
BENCHMARK(identify);

void lookForChanges(benchmark::State& state) {
    xdg::InstalledApplications entries({folder().path()});
    entries.refresh();
    for (auto _ : state)
        entries.refresh();
}
BENCHMARK(lookForChanges);

void displayName(benchmark::State& state) {
    xdg::InstalledApplications entries({folder().path()});
    for (auto _ : state)
        benchmark::DoNotOptimize(entries.displayName("1-org.example.program1"));
}
BENCHMARK(displayName);

} // namespace

} // namespace tessarel::bench

BENCHMARK_MAIN();
