// SPDX-License-Identifier: MIT

#include "platform/xdg/applications/program_names.h"

#include "platform/xdg/applications/command_line.h"
#include "platform/xdg/ascii.h"
#include "platform/xdg/small_file.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <functional>
#include <iterator>
#include <string_view>
#include <tuple>
#include <utility>

namespace tessarel::xdg {

namespace fs = std::filesystem;

namespace {

using Entries = std::vector<const InstalledApplication*>;

bool isTk(std::string_view windowClass) {
    const std::string name = lowered(windowClass);
    return name == "tk" || name == "toplevel";
}

/// Returns whether all programs of a toolkit or interpreter use this half of WM_CLASS. Java names windows
/// after a class of its own where it does not find the main class.
bool isGeneric(std::string_view half) {
    constexpr std::array kPrefixes = {"java-", "javax-", "jdk-", "sun-", "com-sun-"};
    const std::string name = lowered(half);
    return name.empty() || isTk(name) || isInterpreter(name) ||
           std::ranges::any_of(kPrefixes, [&](const char* prefix) { return name.starts_with(prefix); });
}

/// Returns the identifier that an announced id means: some programs announce the file of their entry.
std::string entryOf(std::string_view announced) {
    constexpr std::string_view kSuffix = ".desktop";
    std::string_view name = fileName(announced);
    if (name.ends_with(kSuffix))
        name.remove_suffix(kSuffix.size());
    return std::string(name);
}

bool isScript(const fs::path& file) {
    return readStart(file, 2) == "#!";
}

/// Returns the names that are neither empty nor `identifier`, each only once.
std::vector<std::string> withoutRepeats(const std::vector<std::string>& names, std::string_view identifier) {
    std::vector<std::string> result;
    std::ranges::copy_if(names, std::back_inserter(result), [&](const std::string& name) {
        return !name.empty() && name != identifier && std::ranges::find(result, name) == result.end();
    });
    return result;
}

/// The search for the program of one window.
class Search {
public:
    Search(InstalledApplications& entries, const WindowNames& window,
           const std::function<ProcessFacts()>& readFacts)
        : m_entries(entries), m_window(window), m_readFacts(readFacts) {
        if (!isGeneric(window.windowClass))
            m_class = window.windowClass;
        // Tk names the instance after the widget.
        const bool isOfTk = isTk(window.windowClass);
        if (!isOfTk && !isGeneric(window.instance))
            m_instance = window.instance;
    }

    [[nodiscard]] std::optional<ProgramNames> names() {
        const InstalledApplication* entry = findEntry();
        ProgramNames names{entry ? entry->identifier : withoutEntry(), {}};
        if (names.identifier.empty())
            return std::nullopt;
        names.others = otherNames(names.identifier);
        return names;
    }

private:
    [[nodiscard]] const InstalledApplication* findEntry() {
        for (const auto evidence : {&Search::announced, &Search::sandboxed, &Search::namingInstance,
                                    &Search::ofClass, &Search::ofInstance, &Search::ofProgram}) {
            if (const InstalledApplication* entry = (this->*evidence)())
                return entry;
        }
        return nullptr;
    }

    [[nodiscard]] const InstalledApplication* announced() {
        for (const std::string& announced : m_window.announced) {
            if (const auto* entry = m_entries.named(entryOf(announced)))
                return entry;
        }
        return nullptr;
    }

    [[nodiscard]] const InstalledApplication* sandboxed() {
        const auto& sandbox = facts().sandbox;
        if (!sandbox)
            return nullptr;
        const InstalledApplication* const main = m_entries.named(sandbox->entry);
        for (const std::string& half : {m_class, m_instance}) {
            Entries found = m_entries.ofClass(half);
            std::erase_if(found, [&](const InstalledApplication* entry) {
                return entry != main && !entry->identifier.starts_with(sandbox->prefix);
            });
            if (const auto* entry = best(found, half))
                return entry;
        }
        return main;
    }

    /// A window of one web application, for example, has the class of its browser and an instance of its own.
    [[nodiscard]] const InstalledApplication* namingInstance() {
        Entries found = m_entries.ofClass(m_instance);
        std::erase_if(found,
                      [this](const InstalledApplication* entry) { return entry->windowClass != m_instance; });
        return best(found, m_instance);
    }

    [[nodiscard]] const InstalledApplication* ofClass() { return best(m_entries.ofClass(m_class), m_class); }

    [[nodiscard]] const InstalledApplication* ofInstance() {
        return best(m_entries.ofClass(m_instance), m_instance);
    }

    [[nodiscard]] const InstalledApplication* ofProgram() {
        for (const std::string& name : facts().names) {
            Entries found = m_entries.startedBy(name);
            std::erase_if(found,
                          [this](const InstalledApplication* entry) { return !startsProcess(*entry); });
            if (const auto* entry = best(found, name))
                return entry;
        }
        return nullptr;
    }

    /// Returns the entry that fits best to windows called `name`; null if there is none. The last criterion
    /// only makes the choice permanent.
    [[nodiscard]] const InstalledApplication* best(const Entries& entries, std::string_view name) {
        if (entries.size() < 2)
            return entries.empty() ? nullptr : entries.front();
        const std::string wanted = lowered(name);
        const auto rank = [&](const InstalledApplication* entry) {
            return std::tuple(!entry->isOffered, !startsProcess(*entry),
                              lowered(entry->windowClass) != wanted, lowered(entry->identifier) != wanted,
                              std::string_view(entry->identifier));
        };
        return *std::ranges::min_element(entries, {}, rank);
    }

    /// Returns whether the entry starts the program of the window's process: the same file, or a script with
    /// the name of the program, which such a script usually starts.
    [[nodiscard]] bool startsProcess(const InstalledApplication& entry) {
        return std::ranges::any_of(entry.programs, [this](const std::string& program) {
            const fs::path file = fileStartedBy(program);
            if (!file.empty() && file == facts().file)
                return true;
            const bool isNamesake =
                std::ranges::find(facts().names, lowered(fileName(program))) != facts().names.end();
            return isNamesake && (file.empty() || isScript(file));
        });
    }

    [[nodiscard]] std::string withoutEntry() {
        if (!m_class.empty())
            return m_class;
        if (!m_window.announced.empty())
            return m_window.announced.front();
        return facts().program.empty() ? m_window.windowClass : facts().program;
    }

    /// Returns the names that earlier versions gave to the program, and those of the other entries for its
    /// class. If another half of WM_CLASS or the program decided, entries for the class are those of other
    /// programs.
    [[nodiscard]] std::vector<std::string> otherNames(const std::string& identifier) {
        std::vector<std::string> names = m_window.announced;
        const Entries ofClass = m_entries.ofClass(m_window.windowClass);
        const bool isOfClass = std::ranges::any_of(
            ofClass, [&](const InstalledApplication* entry) { return entry->identifier == identifier; });
        if (isOfClass) {
            for (const InstalledApplication* entry : ofClass)
                names.push_back(entry->identifier);
        }
        if (isOfClass || ofClass.empty())
            names.push_back(m_window.windowClass);
        return withoutRepeats(names, identifier);
    }

    [[nodiscard]] const ProcessFacts& facts() {
        if (!m_facts)
            m_facts = m_readFacts();
        return *m_facts;
    }

    InstalledApplications& m_entries;
    const WindowNames& m_window;
    const std::function<ProcessFacts()>& m_readFacts;
    std::optional<ProcessFacts> m_facts;
    // The halves of WM_CLASS that are evidence; empty where they are not.
    std::string m_class;
    std::string m_instance;
};

} // namespace

std::optional<ProgramNames> programNames(InstalledApplications& entries, const WindowNames& window,
                                         const std::function<ProcessFacts()>& facts) {
    return Search(entries, window, facts).names();
}

} // namespace tessarel::xdg
