// SPDX-License-Identifier: MIT

#include "platform/xdg/applications/command_line.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tessarel::xdg {
namespace {

using Words = std::vector<std::string>;

TEST(CommandLineTest, AnExecValueIsSplitIntoWords) {
    EXPECT_EQ(execWords("edit --new %F"), (Words{"edit", "--new", "%F"}));
    EXPECT_EQ(execWords("  edit   a  "), (Words{"edit", "a"}));
    EXPECT_EQ(execWords(R"("/opt/my editor/edit" "" a"b c"d)"), (Words{"/opt/my editor/edit", "", "ab cd"}));
    EXPECT_EQ(execWords(R"("say \"hi\" \\ \$HOME")"), (Words{R"(say "hi" \ $HOME)"}));
    EXPECT_EQ(execWords(R"("not closed)"), (Words{"not closed"}));
    EXPECT_EQ(execWords(R"("ends with \)"), (Words{R"(ends with \)"}));
    EXPECT_EQ(execWords(""), Words{});
}

TEST(CommandLineTest, TheFirstWordIsTheProgram) {
    EXPECT_EQ(programOf({"edit", "--new"}), "edit");
    EXPECT_EQ(programOf({"/opt/edit"}), "/opt/edit");
    EXPECT_EQ(programOf({}), "");
}

TEST(CommandLineTest, EnvAndItsAssignmentsAreSkipped) {
    EXPECT_EQ(programOf({"env", "-i", "LANG=C", "A=", "edit", "B=1"}), "edit");
    EXPECT_EQ(programOf({"/usr/bin/env", "python3", "/opt/a.py"}), "/opt/a.py");
    EXPECT_EQ(programOf({"env", "LANG=C"}), "");
}

TEST(CommandLineTest, AnInterpreterRunsItsScript) {
    EXPECT_EQ(programOf({"python3", "/usr/bin/idle", "-n"}), "/usr/bin/idle");
    EXPECT_EQ(programOf({"/usr/bin/python3.11", "-u", "-W", "ignore", "a.py"}), "a.py");
    EXPECT_EQ(programOf({"wish8.6", "/usr/bin/gitk", "--", "-x"}), "/usr/bin/gitk");
    EXPECT_EQ(programOf({"/bin/bash", "-e", "run"}), "run");
    EXPECT_EQ(programOf({"perl", "-w", "a.pl"}), "a.pl");
    EXPECT_EQ(programOf({"gjs-console", "/opt/a.js"}), "/opt/a.js");
}

TEST(CommandLineTest, AnInterpreterRunsItsModuleArchiveOrClass) {
    EXPECT_EQ(programOf({"python3", "-m", "idlelib", "x"}), "idlelib");
    EXPECT_EQ(programOf({"java", "-Xmx1g", "-jar", "/opt/a.jar", "x"}), "/opt/a.jar");
    EXPECT_EQ(programOf({"java", "-cp", "/opt/a.jar:/opt/b.jar", "org.example.Main"}), "org.example.Main");
    EXPECT_EQ(programOf({"java", "--module", "a/org.example.Main"}), "a/org.example.Main");
}

TEST(CommandLineTest, CodeOnTheCommandLineIsNoProgram) {
    EXPECT_EQ(programOf({"python3", "-c", "import x"}), "");
    EXPECT_EQ(programOf({"sh", "-c", "exec edit", "sh"}), "");
    EXPECT_EQ(programOf({"perl", "-e", "1"}), "");
}

TEST(CommandLineTest, AnInterpreterAloneIsNoProgram) {
    EXPECT_EQ(programOf({"python3"}), "");
    EXPECT_EQ(programOf({"python3", "-"}), "");
    EXPECT_EQ(programOf({"python3", "%F"}), "");
    EXPECT_EQ(programOf({"python3", "-m"}), "");
    EXPECT_EQ(programOf({"java", "-cp"}), "");
}

TEST(CommandLineTest, AnInterpreterIsRecognizedWithItsVersion) {
    for (const char* name : {"python3.11", "Python3", "wish", "wish8.6", "java", "tclsh8.7", "perl5.36-2"})
        EXPECT_TRUE(isInterpreter(name)) << name;
    for (const char* name : {"", "pythonedit", "javaws", "wishlist", "idle", "shell"})
        EXPECT_FALSE(isInterpreter(name)) << name;
}

TEST(CommandLineTest, TheFileNameFollowsTheLastSlash) {
    EXPECT_EQ(fileName("/usr/bin/edit"), "edit");
    EXPECT_EQ(fileName("edit"), "edit");
    EXPECT_EQ(fileName("/opt/"), "");
}

} // namespace
} // namespace tessarel::xdg
