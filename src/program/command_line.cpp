// SPDX-License-Identifier: MIT

#include "program/command_line.h"

#include "app/command.h"
#include "model/config.h"
#include "program/report.h"
#include "qt_values/text.h"

#include <QCommandLineParser>
#include <QString>
#include <QStringList>

#include <algorithm>
#include <cstddef>

namespace tessarel {

namespace {

/// Returns the words of a form with what follows them, as in "pause on|off|toggle".
std::string usage(const CommandForm& form) {
    std::string text = form.words;
    if (form.choices.empty())
        return form.placeholder.empty() ? text : text + " " + form.placeholder;
    char separator = ' ';
    for (const std::string& choice : form.choices) {
        text += separator + choice;
        separator = '|';
    }
    return text;
}

/// Returns the first option that `parser` has rejected: it is unknown, or it has a value, which none takes.
QString rejectedOption(const QCommandLineParser& parser, const QStringList& arguments) {
    if (const QStringList unknown = parser.unknownOptionNames(); !unknown.isEmpty())
        return unknown.first();
    const auto option = std::find_if(arguments.begin(), arguments.end(), [](const QString& argument) {
        return argument.startsWith(QLatin1Char('-')) && argument.contains(QLatin1Char('='));
    });
    return option == arguments.end() ? QString()
                                     : option->sliced(option->startsWith(QLatin1String("--")) ? 2 : 1);
}

CommandLine wrong(const std::string& problem) {
    say(problem + "; see \"tessarel --help\"");
    return {static_cast<int>(CommandExit::Wrong), {}};
}

} // namespace

std::string helpText() {
    const std::vector<CommandForm> forms = commandForms();
    std::size_t width = 0;
    for (const CommandForm& form : forms)
        width = std::max(width, usage(form).size());
    std::string text = "Usage: tessarel [COMMAND]\n"
                       "Without a command, starts Tessarel, or shows the settings of the copy that runs.\n"
                       "\n"
                       "Commands, for the copy that runs on this display:\n";
    for (const CommandForm& form : forms) {
        std::string line = usage(form);
        line.resize(width, ' ');
        text += "  " + line + "  " + form.description + "\n";
    }
    return text + "\n"
                  "Options:\n"
                  "  -h, --help     Print this text\n"
                  "  -v, --version  Print the version\n"
                  "\n"
                  "Exit codes: 0 done, 1 no answer, 2 wrong words, 3 no copy runs, 4 nothing to do.";
}

CommandLine readCommandLine(int argumentCount, char** arguments) {
    QStringList all;
    for (int i = 0; i < argumentCount; ++i)
        all.append(QString::fromLocal8Bit(arguments[i]));
    QCommandLineParser parser;
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    const QCommandLineOption help(QStringList{QStringLiteral("h"), QStringLiteral("help")});
    const QCommandLineOption version(QStringList{QStringLiteral("v"), QStringLiteral("version")});
    const QCommandLineOption json(QStringLiteral("json"));
    parser.addOptions({help, version, json});
    if (!parser.parse(all))
        return wrong("there is no option \"" + rejectedOption(parser, all).toStdString() + "\"");
    if (parser.isSet(help))
        return {print(helpText()), {}};
    if (parser.isSet(version))
        return {print("tessarel " + std::string(Config::version)), {}};
    CommandLine line;
    for (const QString& word : parser.positionalArguments())
        line.words.push_back(word.toStdString());
    if (parser.isSet(json))
        line.words.emplace_back("--json");
    if (line.words.empty())
        return line;
    const ParsedCommand parsed = parseCommand(line.words);
    return parsed.command ? line : wrong(parsed.problem);
}

} // namespace tessarel
