// SPDX-License-Identifier: MIT

#include "platform/xdg/applications/login_item.h"

#include "platform/xdg/applications/desktop_entry.h"
#include "platform/xdg/applications/installed_applications.h"
#include "platform/xdg/file_preferences.h"
#include "platform/xdg/home_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gio/gdesktopappinfo.h>
#include <iterator>
#include <optional>
#include <pwd.h>
#include <stdexcept>
#include <string>
#include <string_view>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tessarel::xdg {
namespace {

namespace fs = std::filesystem;
using Status = LoginItemPort::Status;
using testing::HasSubstr;

/// Drops root's privileges while it exists.
class OrdinaryUser {
public:
    OrdinaryUser() {
        constexpr uid_t kNobody = 65534;
        if (::geteuid() == 0 && ::seteuid(kNobody) != 0)
            throw std::runtime_error("cannot become an ordinary user");
    }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;
    ~OrdinaryUser() { EXPECT_EQ(::seteuid(::getuid()), 0); }
};

/// Sets the file size limit to zero while it exists, which makes writes fail as on a full disk.
class NoRoomForFiles {
public:
    NoRoomForFiles() {
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        rlimit none = m_before;
        none.rlim_cur = 0;
        ::setrlimit(RLIMIT_FSIZE, &none);
    }
    NoRoomForFiles(const NoRoomForFiles&) = delete;
    NoRoomForFiles& operator=(const NoRoomForFiles&) = delete;
    ~NoRoomForFiles() {
        ::setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler); // NOLINT(cert-err33-c)
    }

private:
    rlimit m_before{};
    void (*m_handler)(int) = std::signal(SIGXFSZ, SIG_IGN);
};

class LoginItemTest : public testing::Test {
protected:
    LoginItemTest() {
        std::string pattern = fs::temp_directory_path() / "tessarel-login-XXXXXX";
        if (::mkdtemp(pattern.data()) == nullptr)
            throw std::runtime_error("no temporary folder");
        folder = pattern;
        fs::permissions(folder, fs::perms::owner_all | fs::perms::group_exec | fs::perms::others_exec);
    }
    ~LoginItemTest() override { fs::remove_all(folder); }

    [[nodiscard]] XdgLoginItem::Setup setup() const {
        return {.configHome = folder / "config",
                .configFolders = {folder / "first", folder / "second"},
                .program = program,
                .name = "Tessarel",
                .desktops = {"ubuntu", "GNOME"}};
    }

    [[nodiscard]] fs::path entry() const { return folder / "config/autostart/tessarel.desktop"; }

    static void put(const fs::path& file, std::string_view content) {
        fs::create_directories(file.parent_path());
        std::ofstream(file) << content;
    }
    static std::string read(const fs::path& file) {
        std::ifstream stream(file);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    void putOwn(std::string_view lines) const {
        put(entry(), "[Desktop Entry]\nType=Application\nExec=sh\n" + std::string(lines) + "\n");
    }
    void putForAllUsers(std::string_view where, std::string_view lines) const {
        put(folder / where / "autostart/tessarel.desktop",
            "[Desktop Entry]\nType=Application\nExec=sh\n" + std::string(lines) + "\n");
    }

    fs::path folder;
    fs::path program = "/usr/bin/env"; // any that is installed
};

TEST_F(LoginItemTest, IsNotRegisteredAtFirst) {
    EXPECT_EQ(XdgLoginItem(setup()).status(), Status::NotRegistered);
}

TEST_F(LoginItemTest, RegisteringCreatesTheFoldersAndTheEntry) {
    XdgLoginItem item(setup());

    EXPECT_EQ(item.registerItem(), std::nullopt);

    EXPECT_EQ(item.status(), Status::Enabled);
    EXPECT_EQ(read(entry()), "[Desktop Entry]\nType=Application\nName=Tessarel\nExec=/usr/bin/env\n"
                             "Terminal=false\nX-GNOME-Autostart-enabled=true\n");
}

TEST_F(LoginItemTest, TheEntryIsReadableByEverybodyAndNoOtherFileIsLeft) {
    ASSERT_EQ(XdgLoginItem(setup()).registerItem(), std::nullopt);

    EXPECT_EQ(fs::status(entry()).permissions(), fs::perms::owner_read | fs::perms::owner_write |
                                                     fs::perms::group_read | fs::perms::others_read);
    EXPECT_EQ(std::distance(fs::directory_iterator(entry().parent_path()), fs::directory_iterator()), 1);
}

TEST_F(LoginItemTest, RegisteringAgainReplacesTheProgramOfTheEntry) {
    ASSERT_EQ(XdgLoginItem(setup()).registerItem(), std::nullopt);
    program = "/bin/sh";

    ASSERT_EQ(XdgLoginItem(setup()).registerItem(), std::nullopt);

    EXPECT_THAT(read(entry()), HasSubstr("\nExec=/bin/sh\n"));
    EXPECT_THAT(read(entry()), testing::Not(HasSubstr("/usr/bin")));
}

TEST_F(LoginItemTest, UnregisteringRemovesTheEntry) {
    XdgLoginItem item(setup());
    ASSERT_EQ(item.registerItem(), std::nullopt);

    EXPECT_EQ(item.unregisterItem(), std::nullopt);

    EXPECT_EQ(item.status(), Status::NotRegistered);
    EXPECT_FALSE(fs::exists(entry()));
}

TEST_F(LoginItemTest, UnregisteringWithoutAnEntrySucceeds) {
    XdgLoginItem item(setup());

    EXPECT_EQ(item.unregisterItem(), std::nullopt);
    put(folder / "config", "a file where the folder would be");
    EXPECT_EQ(item.unregisterItem(), std::nullopt);
}

TEST_F(LoginItemTest, ALargeEntryCountsByItsStart) {
    const std::string text(std::size_t{300} * 1024, 'x');
    for (const std::string& large : {"#" + text, "X-" + text + "=1", "X-Text=1\n#" + text}) {
        putOwn(large);
        EXPECT_EQ(XdgLoginItem(setup()).status(), Status::Enabled) << large.substr(0, 10);
    }
    putForAllUsers("first", "#" + text);
    putOwn("Hidden=true\n#" + text);
    EXPECT_EQ(XdgLoginItem(setup()).status(), Status::NotRegistered) << "it hides the one for all users";
    fs::remove(entry());
    EXPECT_EQ(XdgLoginItem(setup()).status(), Status::Enabled) << "the one for all users";
}

TEST_F(LoginItemTest, APipeInPlaceOfTheEntryIsIgnored) {
    fs::create_directories(entry().parent_path());
    ASSERT_EQ(::mkfifo(entry().c_str(), 0600), 0);
    putForAllUsers("first", "");

    EXPECT_EQ(XdgLoginItem(setup()).status(), Status::Enabled);
}

TEST_F(LoginItemTest, ADisabledEntryIsNotRegistered) {
    for (const char* no :
         {"Hidden=true", "X-GNOME-Autostart-enabled=false", "Hidden = true ",
          "X-GNOME-Autostart-enabled=false\r", "X-GNOME-Autostart-enabled=true\nHidden=true"}) {
        putOwn(no);
        EXPECT_EQ(XdgLoginItem(setup()).status(), Status::NotRegistered) << no;
    }
}

TEST_F(LoginItemTest, AnEntryThatIsNotDisabledIsRegistered) {
    for (const char* yes : {"", "Hidden=false", "X-GNOME-Autostart-enabled=true", "#Hidden=true",
                            "X-Hidden=true", "[Desktop Action quit]\nHidden=true"}) {
        putOwn(yes);
        EXPECT_EQ(XdgLoginItem(setup()).status(), Status::Enabled) << yes;
    }
}

TEST_F(LoginItemTest, AnEntryThatStartsNothingIsNotRegistered) {
    const std::string gone = (folder / "gone").string();
    const std::string plain = (folder / "not executable").string();
    put(plain, "text");
    for (const std::string& lines :
         {std::string(), std::string("Exec="), "Exec=" + gone, std::string("Exec=no-such-program-anywhere"),
          "Exec=\"" + plain + "\"", "Exec=" + folder.string(), "Exec=nice -n 0 " + gone,
          "Exec=sh\nTryExec=" + gone, std::string("Exec=sh\nTryExec=no-such-program-anywhere")}) {
        put(entry(), "[Desktop Entry]\nType=Application\n" + lines + "\n");
        EXPECT_EQ(XdgLoginItem(setup()).status(), Status::NotRegistered) << lines;
    }
    put(entry(), "");
    EXPECT_EQ(XdgLoginItem(setup()).status(), Status::NotRegistered) << "an empty file";
}

TEST_F(LoginItemTest, AnEntryWhoseProgramsExistIsRegistered) {
    for (const char* lines : {"Exec=sh --login", "Exec=/bin/sh", "Exec=sh\nTryExec=sh",
                              "Exec=sh\nTryExec=", "Exec=sh\nTryExec=/bin/sh", "Exec=nice -n 0 sh"}) {
        put(entry(), std::string("[Desktop Entry]\nType=Application\n") + lines + "\n");
        EXPECT_EQ(XdgLoginItem(setup()).status(), Status::Enabled) << lines;
    }
}

TEST_F(LoginItemTest, AnEntryForOtherDesktopsIsNotRegistered) {
    for (const char* no : {"OnlyShowIn=XFCE;MATE;", "OnlyShowIn=XFCE", "NotShowIn=GNOME;", "NotShowIn=ubuntu",
                           "OnlyShowIn=GNOME\nNotShowIn=ubuntu"}) {
        putOwn(no);
        EXPECT_EQ(XdgLoginItem(setup()).status(), Status::NotRegistered) << no;
    }
    for (const char* yes : {"OnlyShowIn=GNOME;", "OnlyShowIn=XFCE;ubuntu", "NotShowIn=XFCE;",
                            "OnlyShowIn=", "OnlyShowIn=ubuntu\nNotShowIn=GNOME"}) {
        putOwn(yes);
        EXPECT_EQ(XdgLoginItem(setup()).status(), Status::Enabled) << yes;
    }
}

TEST_F(LoginItemTest, AnUnknownDesktopStartsOnlyEntriesForAllDesktops) {
    auto unknown = setup();
    unknown.desktops.clear();

    putOwn("NotShowIn=GNOME;");
    EXPECT_EQ(XdgLoginItem(unknown).status(), Status::Enabled);
    putOwn("OnlyShowIn=GNOME;");
    EXPECT_EQ(XdgLoginItem(unknown).status(), Status::NotRegistered);
}

TEST_F(LoginItemTest, RegisteringRepairsAnEntryThatStartsNothing) {
    for (const char* broken : {"OnlyShowIn=XFCE;", "NotShowIn=GNOME;", "TryExec=no-such-program-anywhere"}) {
        putOwn(broken);
        XdgLoginItem item(setup());
        ASSERT_EQ(item.status(), Status::NotRegistered) << broken;

        EXPECT_EQ(item.registerItem(), std::nullopt);

        EXPECT_EQ(item.status(), Status::Enabled) << broken;
    }
}

TEST_F(LoginItemTest, AnEntryForAllUsersWhoseProgramIsGoneIsNotRegistered) {
    putForAllUsers("first", "TryExec=no-such-program-anywhere");

    EXPECT_EQ(XdgLoginItem(setup()).status(), Status::NotRegistered);
}

/// Fixture: GLib, through which many sessions start their entries.
class LoginItemStartTest : public LoginItemTest, public testing::WithParamInterface<const char*> {
protected:
    /// Starts the program of the entry as a session does. Returns false if GLib rejects the entry.
    [[nodiscard]] bool startEntry() const {
        GDesktopAppInfo* const application = g_desktop_app_info_new_from_filename(entry().c_str());
        if (application == nullptr)
            return false;
        const bool started = g_app_info_launch(G_APP_INFO(application), nullptr, nullptr, nullptr) == TRUE;
        g_object_unref(application);
        return started;
    }
};

TEST_P(LoginItemStartTest, TheProgramIsStartedWhateverItsPath) {
    program = folder / GetParam();
    put(program, "#!/bin/sh\nprintf '%s' \"$#$0\" >'" + (folder / "started").string() + "'\n");
    ::chmod(program.c_str(), 0755);
    ASSERT_EQ(::mkfifo((folder / "started").c_str(), 0600), 0);
    XdgLoginItem item(setup());
    ASSERT_EQ(item.registerItem(), std::nullopt);
    EXPECT_EQ(item.status(), Status::Enabled);

    ASSERT_TRUE(startEntry()) << read(entry());

    EXPECT_EQ(read(folder / "started"), "0" + program.string()) << read(entry());
    fs::remove(program);
    EXPECT_EQ(item.status(), Status::NotRegistered);
}

INSTANTIATE_TEST_SUITE_P(All, LoginItemStartTest,
                         testing::Values("plain", "with blank", "100%", "100%u/of%%it", "a=b/5%",
                                         "\"quoted\" $HOME `x` \\ 5%", "semi;colon", "~tilde#%f"));

TEST_F(LoginItemTest, AnEntryDisabledByTheDesktopIsNoticedAtOnce) {
    XdgLoginItem item(setup());
    ASSERT_EQ(item.registerItem(), std::nullopt);

    putOwn("X-GNOME-Autostart-enabled=false");

    EXPECT_EQ(item.status(), Status::NotRegistered);
}

TEST_F(LoginItemTest, AnEntryForAllUsersCountsUntilTheUserHasOne) {
    XdgLoginItem item(setup());

    putForAllUsers("second", "");
    EXPECT_EQ(item.status(), Status::Enabled);
    putOwn("Hidden=true");
    EXPECT_EQ(item.status(), Status::NotRegistered);
}

TEST_F(LoginItemTest, TheFirstEntryForAllUsersDecides) {
    putForAllUsers("first", "Hidden=true");
    putForAllUsers("second", "");

    EXPECT_EQ(XdgLoginItem(setup()).status(), Status::NotRegistered);
}

TEST_F(LoginItemTest, UnregisteringHidesAnEntryForAllUsers) {
    XdgLoginItem item(setup());
    putForAllUsers("first", "");

    EXPECT_EQ(item.unregisterItem(), std::nullopt);

    EXPECT_EQ(item.status(), Status::NotRegistered);
    EXPECT_EQ(read(entry()), "[Desktop Entry]\nType=Application\nName=Tessarel\nHidden=true\n");
    EXPECT_EQ(item.registerItem(), std::nullopt);
    EXPECT_EQ(item.status(), Status::Enabled);
}

TEST_F(LoginItemTest, AnUnwritableFolderGivesAReadableError) {
    fs::create_directories(entry().parent_path());
    ::chmod(entry().parent_path().c_str(), 0555);
    const OrdinaryUser user;
    XdgLoginItem item(setup());

    const auto failure = item.registerItem();

    EXPECT_EQ(failure,
              "The folder " + entry().parent_path().string() + " cannot be written to: Permission denied.");
    EXPECT_EQ(item.status(), Status::NotRegistered);
}

TEST_F(LoginItemTest, AFolderThatCannotBeCreatedGivesAReadableError) {
    ::chmod(folder.c_str(), 0555);
    const OrdinaryUser user;

    EXPECT_EQ(XdgLoginItem(setup()).registerItem(),
              "The folder " + entry().parent_path().string() + " cannot be created: Permission denied.");
}

TEST_F(LoginItemTest, AFileInPlaceOfTheFolderGivesAReadableError) {
    put(entry().parent_path(), "a file");

    EXPECT_EQ(XdgLoginItem(setup()).registerItem(),
              "The folder " + entry().parent_path().string() + " cannot be created: Not a directory.");
    EXPECT_EQ(read(entry().parent_path()), "a file");
}

TEST_F(LoginItemTest, AFolderInPlaceOfTheEntryGivesAReadableError) {
    fs::create_directories(entry());
    XdgLoginItem item(setup());

    EXPECT_EQ(item.registerItem(), "The file " + entry().string() + " cannot be written: Is a directory.");
    EXPECT_EQ(item.unregisterItem(), "The file " + entry().string() + " cannot be removed: Is a directory.");

    EXPECT_EQ(item.status(), Status::NotRegistered);
    EXPECT_EQ(std::distance(fs::directory_iterator(entry().parent_path()), fs::directory_iterator()), 1);
}

TEST_F(LoginItemTest, AFullDiskGivesAReadableErrorAndKeepsTheOldEntry) {
    putOwn("Hidden=true");
    const std::string before = read(entry());
    XdgLoginItem item(setup());
    std::optional<std::string> failure;
    {
        const NoRoomForFiles full;
        failure = item.registerItem();
    }

    EXPECT_EQ(failure, "The file " + entry().string() + " cannot be written: File too large.");
    EXPECT_EQ(read(entry()), before);
    EXPECT_EQ(std::distance(fs::directory_iterator(entry().parent_path()), fs::directory_iterator()), 1);
}

TEST_F(LoginItemTest, AUserWithoutAHomeFolderHasNoEntry) {
    auto homeless = setup();
    homeless.configHome.clear();
    fs::current_path(folder);
    put(folder / "autostart/tessarel.desktop", "[Desktop Entry]\nType=Application\nExec=sh\n");
    XdgLoginItem item(homeless);

    EXPECT_EQ(item.status(), Status::NotRegistered);
    EXPECT_EQ(item.registerItem(), "There is no home folder.");
    EXPECT_EQ(item.unregisterItem(), std::nullopt);

    EXPECT_TRUE(fs::exists(folder / "autostart/tessarel.desktop")) << "it is in the working directory";
    putForAllUsers("first", "");
    EXPECT_EQ(item.status(), Status::Enabled);
    EXPECT_EQ(item.unregisterItem(), "There is no home folder.");
    fs::current_path("/");
}

TEST_F(LoginItemTest, AnUnreadableEntryIsNotRegistered) {
    putOwn("");
    ::chmod(entry().c_str(), 0);
    const OrdinaryUser user;

    EXPECT_EQ(XdgLoginItem(setup()).status(), Status::NotRegistered);
}

class LoginItemEnvironmentTest : public LoginItemTest {
protected:
    static constexpr std::array kVariables = {"HOME", "XDG_CONFIG_HOME", "XDG_CONFIG_DIRS",
                                              "XDG_CURRENT_DESKTOP"};

    LoginItemEnvironmentTest() {
        for (std::size_t i = 0; i < kVariables.size(); ++i) {
            if (const char* value = std::getenv(kVariables[i]))
                before[i] = value;
            ::unsetenv(kVariables[i]);
        }
    }
    ~LoginItemEnvironmentTest() override {
        for (std::size_t i = 0; i < kVariables.size(); ++i) {
            ::unsetenv(kVariables[i]);
            if (before[i])
                ::setenv(kVariables[i], before[i]->c_str(), 1);
        }
    }

    std::array<std::optional<std::string>, kVariables.size()> before;
};

TEST_F(LoginItemEnvironmentTest, TheConfigFoldersComeFromTheEnvironment) {
    ::setenv("XDG_CONFIG_HOME", "/conf", 1);
    ::setenv("XDG_CONFIG_DIRS", "/a::relative:/b", 1);

    const auto own = XdgLoginItem::ofThisProgram("Tessarel");

    EXPECT_EQ(own.configHome, "/conf");
    EXPECT_THAT(own.configFolders, testing::ElementsAre("/a", "/b"));
}

TEST_F(LoginItemEnvironmentTest, TheNamesOfTheDesktopComeFromTheEnvironment) {
    ::setenv("XDG_CURRENT_DESKTOP", "ubuntu:GNOME", 1);

    EXPECT_THAT(XdgLoginItem::ofThisProgram("Tessarel").desktops, testing::ElementsAre("ubuntu", "GNOME"));
}

TEST_F(LoginItemEnvironmentTest, WithoutVariablesTheDefaultFoldersAreUsed) {
    ::setenv("HOME", "/home/somebody", 1);
    ::setenv("XDG_CONFIG_HOME", "relative/is/ignored", 1);

    const auto own = XdgLoginItem::ofThisProgram("Tessarel");

    EXPECT_EQ(own.configHome, "/home/somebody/.config");
    EXPECT_THAT(own.configFolders, testing::ElementsAre("/etc/xdg"));
}

TEST_F(LoginItemEnvironmentTest, WithoutHomeTheEntryIsInTheHomeOfThePasswordDatabase) {
    const fs::path home = ::getpwuid(::getuid())->pw_dir;
    for (const char* none : {"", "relative"}) {
        ::setenv("HOME", none, 1);
        EXPECT_EQ(XdgLoginItem::ofThisProgram("Tessarel").configHome, home / ".config") << none;
    }
    ::unsetenv("HOME");

    EXPECT_EQ(XdgLoginItem::ofThisProgram("Tessarel").configHome, home / ".config");
    EXPECT_EQ(FilePreferences::userFolder(), home / ".config/tessarel");
    EXPECT_THAT(InstalledApplications::folders(), testing::Contains(home / ".local/share/applications"));
    settleHome();
    EXPECT_EQ(std::getenv("HOME"), home);
}

TEST_F(LoginItemEnvironmentTest, TheProgramIsTheRunningExecutable) {
    const auto own = XdgLoginItem::ofThisProgram("Tessarel");

    EXPECT_TRUE(own.program.is_absolute());
    EXPECT_TRUE(fs::equivalent(own.program, "/proc/self/exe"));
}

class CommandOfTest : public LoginItemTest {
protected:
    /// Creates an executable file below the prefix, and returns its path.
    [[nodiscard]] fs::path program(const fs::path& name) const {
        const fs::path file = folder / "prefix" / name;
        fs::create_directories(file.parent_path());
        std::ofstream(file) << "#!/bin/sh\n";
        fs::permissions(file, fs::perms::owner_all);
        return file;
    }
};

TEST_F(CommandOfTest, AnInstalledProgramIsStartedByItsLauncher) {
    const fs::path launcher = program("bin/tessarel");

    EXPECT_EQ(commandOf(program("libexec/tessarel/tessarel")), launcher);
}

TEST_F(CommandOfTest, WithoutALauncherTheProgramIsStartedItself) {
    const fs::path installed = program("libexec/tessarel/tessarel");
    EXPECT_EQ(commandOf(installed), installed);

    fs::permissions(program("bin/tessarel"), fs::perms::owner_read);
    EXPECT_EQ(commandOf(installed), installed);
}

TEST_F(CommandOfTest, AProgramThatANewerVersionHasReplacedIsStartedByItsOldName) {
    const fs::path installed = program("libexec/tessarel/tessarel");
    const fs::path replaced = installed.string() + " (deleted)";
    EXPECT_EQ(commandOf(replaced), installed);

    const fs::path launcher = program("bin/tessarel");
    EXPECT_EQ(commandOf(replaced), launcher);
}

TEST_F(CommandOfTest, TheNameOfAProgramMayEndAsThatOfAReplacedOne) {
    const fs::path odd = program("tessarel (deleted)");

    EXPECT_EQ(commandOf(odd), odd);
}

TEST_F(CommandOfTest, AProgramElsewhereIsStartedItself) {
    const fs::path launcher = program("bin/tessarel");

    for (const char* const name : {"build/tessarel/tessarel", "libexec/other/tessarel", "tessarel"})
        EXPECT_EQ(commandOf(program(name)), folder / "prefix" / name);
}

} // namespace
} // namespace tessarel::xdg
