// What it costs to know an application: looking through the entries of all that is installed, beside merely
// reading the same files, and the questions that are then answered from memory.

#include "platform/x11/desktop_entries.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <system_error>

namespace tessarel::bench {

namespace {

namespace fs = std::filesystem;

constexpr int kEntries = 5000;
constexpr int kLanguages = 20;
constexpr int kSubfolders = 4;

/// A folder with entries like those that programs install, translations and all: 1.8 kB each.
class Folder {
public:
    Folder() {
        std::string name = (fs::temp_directory_path() / "tessarel-bench-XXXXXX").string();
        m_path = ::mkdtemp(name.data());
        for (int number = 0; number < kEntries; ++number)
            write(number);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder() {
        std::error_code failure;
        fs::remove_all(m_path, failure);
    }

    [[nodiscard]] const fs::path& path() const { return m_path; }

private:
    void write(int number) const {
        const std::string program = "program" + std::to_string(number);
        const int subfolder = number % (kSubfolders + 1); // 0: in the folder itself
        const fs::path folder = subfolder == 0 ? m_path : m_path / std::to_string(subfolder);
        fs::create_directories(folder);
        std::ofstream file(folder / ("org.example." + program + ".desktop"));
        file << "[Desktop Entry]\nType=Application\nName=" << program << '\n';
        for (int language = 0; language < kLanguages; ++language) {
            file << "Name[l" << language << "]=" << program << " in a language\n"
                 << "Comment[l" << language << "]=What it is good for, said in a language\n";
        }
        file << "Exec=" << program << " %U\nIcon=" << program << "\nStartupWMClass=" << program << '\n';
    }

    fs::path m_path;
};

const Folder& folder() {
    static const Folder folder;
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
        x11::DesktopEntries entries({path}, {"l7"});
        benchmark::DoNotOptimize(entries.identifier("program4999"));
    }
}
BENCHMARK(indexEntries)->Unit(benchmark::kMillisecond);

void identify(benchmark::State& state) {
    x11::DesktopEntries entries({folder().path()}, {"l7"});
    for (auto _ : state)
        benchmark::DoNotOptimize(entries.identifier("Program4999"));
}
BENCHMARK(identify);

void lookForChanges(benchmark::State& state) {
    x11::DesktopEntries entries({folder().path()}, {"l7"});
    entries.refresh();
    for (auto _ : state)
        entries.refresh();
}
BENCHMARK(lookForChanges);

void displayName(benchmark::State& state) {
    x11::DesktopEntries entries({folder().path()}, {"l7"});
    for (auto _ : state)
        benchmark::DoNotOptimize(entries.displayName("1-org.example.program1"));
}
BENCHMARK(displayName);

} // namespace

} // namespace tessarel::bench

BENCHMARK_MAIN();
