// SPDX-License-Identifier: MIT

#include "support/entry_folder.h"

#include <fstream>
#include <string>

namespace tessarel::bench {

namespace {

constexpr int kLanguages = 20;
constexpr int kSubfolders = 4;

} // namespace

EntryFolder::EntryFolder(int count) {
    for (int number = 0; number < count; ++number)
        write(number);
}

void EntryFolder::write(int number) const {
    const std::string program = "program" + std::to_string(number);
    const int subfolder = number % (kSubfolders + 1); // 0 is the folder itself
    const std::filesystem::path folder = subfolder == 0 ? m_path : m_path / std::to_string(subfolder);
    std::filesystem::create_directories(folder);
    std::ofstream file(folder / ("org.example." + program + ".desktop"));
    file << "[Desktop Entry]\nType=Application\nName=" << program << '\n';
    for (int language = 0; language < kLanguages; ++language) {
        file << "Name[l" << language << "]=" << program << " in a language\n"
             << "Comment[l" << language << "]=What it is good for, said in a language\n";
    }
    file << "Exec=" << program << " %U\nIcon=" << program << "\nStartupWMClass=" << program << '\n';
}

} // namespace tessarel::bench
