// SPDX-License-Identifier: MIT

#include "program/report.h"

#include <cstdio>

namespace tessarel {

void say(const std::string& line) {
    std::fprintf(stderr, "tessarel: %s\n", line.c_str());
}

int print(const std::string& text) {
    const std::string line = text + '\n';
    if (std::fwrite(line.data(), 1, line.size(), stdout) == line.size() && std::fflush(stdout) == 0)
        return static_cast<int>(CommandExit::Done);
    return report(CommandExit::Failed, "cannot write to the standard output");
}

int report(CommandExit exit, const std::string& text) {
    if (exit == CommandExit::Done && !text.empty())
        return print(text);
    if (exit != CommandExit::Done)
        say(text);
    return static_cast<int>(exit);
}

int report(const SentCommand& sent) {
    switch (sent.outcome) {
    case SentCommand::Outcome::Answered:
        return report(static_cast<CommandExit>(sent.answer.exitCode), sent.answer.text);
    case SentCommand::Outcome::NoDesktop:
        return report(CommandExit::Failed, sent.answer.text);
    case SentCommand::Outcome::NoReceiver:
        return report(CommandExit::NotRunning, "Tessarel does not run on this display");
    case SentCommand::Outcome::NoAnswer:
        break;
    }
    return report(CommandExit::Failed, "Tessarel does not answer");
}

} // namespace tessarel
