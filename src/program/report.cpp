// SPDX-License-Identifier: MIT

#include "program/report.h"

#include <cstdio>

namespace tessarel {

void say(const std::string& line) {
    std::fprintf(stderr, "tessarel: %s\n", line.c_str());
}

int report(CommandExit exit, const std::string& text) {
    if (exit != CommandExit::Done)
        say(text);
    else if (!text.empty())
        std::fprintf(stdout, "%s\n", text.c_str());
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
