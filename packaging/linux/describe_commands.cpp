// SPDX-License-Identifier: MIT

#include "app/command.h"
#include "model/config.h"

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace tessarel {

namespace {

std::string joined(const std::vector<std::string>& words, std::string_view separator) {
    std::string text;
    for (const std::string& word : words)
        text.append(text.empty() ? "" : separator).append(word);
    return text;
}

std::vector<std::string> firstWords() {
    std::vector<std::string> words;
    for (const CommandForm& form : commandForms())
        words.push_back(form.words);
    return words;
}

/// Returns `text` with every `what` preceded by a backslash.
std::string escaped(std::string_view text, char what) {
    std::string result;
    for (const char letter : text)
        result.append(letter == what ? "\\" : "").push_back(letter);
    return result;
}

/// Escapes hyphens, which are dashes for the formatter otherwise.
std::string roff(std::string_view text) {
    return escaped(text, '-');
}

std::string manualPage() {
    std::string page = ".TH TESSAREL 1 \"\" \"Tessarel " + std::string(Config::version) + "\"\n" +
                       R"(.SH NAME
tessarel \- move windows into zones that you design
.SH SYNOPSIS
.B tessarel
.RI [ COMMAND ]
.SH DESCRIPTION
Without a command, starts Tessarel, or shows the settings of the copy that runs on this display.
.PP
With a command, sends it to the copy that runs on this display, and returns when the windows are in their place.
Write
.B \-\-
before the name of a layout that begins with a dash.
.SH COMMANDS
)";
    for (const CommandForm& form : commandForms()) {
        page += ".TP\n.B " + roff(form.words) + "\n";
        if (!form.choices.empty())
            page.insert(page.size() - 1, " " + joined(form.choices, "|"));
        else if (!form.placeholder.empty())
            page.insert(page.size() - 1, " \\fI" + form.placeholder + "\\fP");
        page += roff(form.description) + ".\n";
    }
    page += R"(.SH OPTIONS
.TP
.BR \-h ", " \-\-help
Print a summary and exit.
.TP
.BR \-v ", " \-\-version
Print the version and exit.
.SH EXIT STATUS
.TP
.B 0
The command has done something.
.TP
.B 1
Tessarel does not answer, cannot start, or cannot write its output.
.TP
.B 2
There is no such command or option.
.TP
.B 3
Tessarel does not run on this display.
.TP
.B 4
There was nothing to do; the reason is written to standard error.
.SH FILES
.TP
.I ~/.config/tessarel/tessarel.settings.v1.json
The settings; below
.B $XDG_CONFIG_HOME
if that is set. Copies of a document that could not be read are beside it; their names end in
.IR .rejected .
.TP
.I ~/.config/autostart/tessarel.desktop
The start at login, if it is wanted; below
.B $XDG_CONFIG_HOME
if that is set.
.TP
.I ~/.local/share/kwin/effects/tessarel_*
How KWin reports the keys that are held during a drag, on KDE Plasma; below
.B $XDG_DATA_HOME
if that is set.
)";
    return page;
}

std::string bashCompletion() {
    std::string text = "# Completion of tessarel for bash.\n"
                       "_tessarel() {\n"
                       "    local words=\n"
                       "    case ${COMP_WORDS[1]}/$COMP_CWORD in\n"
                       "    */1) words=\"" +
                       joined(firstWords(), " ") + " --help --version\" ;;\n";
    for (const CommandForm& form : commandForms()) {
        if (!form.choices.empty())
            text += "    " + form.words + "/2) words=\"" + joined(form.choices, " ") + "\" ;;\n";
    }
    return text + "    list/3) words=--json ;;\n"
                  "    layout/2)\n"
                  "        local name\n"
                  "        COMPREPLY=()\n"
                  "        while IFS= read -r name; do\n"
                  "            printf -v name %q \"$name\" # what is inserted is read by bash again\n"
                  "            [[ $name != \"${COMP_WORDS[2]}\"* ]] || COMPREPLY+=(\"$name\")\n"
                  "        done < <(tessarel list layouts 2>/dev/null)\n"
                  "        return\n"
                  "        ;;\n"
                  "    esac\n"
                  "    COMPREPLY=($(compgen -W \"$words\" -- \"${COMP_WORDS[COMP_CWORD]}\"))\n"
                  "}\n"
                  "complete -F _tessarel tessarel\n";
}

std::string zshCompletion() {
    std::string text = "#compdef tessarel\n"
                       "# Completion of tessarel for zsh.\n"
                       "local -a commands layouts\n"
                       "case $CURRENT in\n"
                       "2)\n"
                       "    commands=(\n";
    for (const CommandForm& form : commandForms())
        text += "        '" + form.words + ":" + escaped(form.description, ':') + "'\n";
    text += "    )\n"
            "    _describe command commands\n"
            "    _arguments '--help[Print a summary]' '--version[Print the version]'\n"
            "    ;;\n"
            "3)\n"
            "    case $words[2] in\n"
            "    layout)\n"
            "        layouts=(${(f)\"$(tessarel list layouts 2>/dev/null)\"})\n"
            "        compadd -a layouts\n"
            "        ;;\n";
    for (const CommandForm& form : commandForms()) {
        if (!form.choices.empty())
            text += "    " + form.words + ") compadd " + joined(form.choices, " ") + " ;;\n";
    }
    return text + "    esac\n"
                  "    ;;\n"
                  "4) [[ $words[2] != list ]] || compadd -- --json ;;\n"
                  "esac\n";
}

std::string fishCompletion() {
    std::string text = "# Completion of tessarel for fish.\n"
                       "complete -c tessarel -f\n"
                       "complete -c tessarel -s h -l help -d 'Print a summary'\n"
                       "complete -c tessarel -s v -l version -d 'Print the version'\n";
    for (const CommandForm& form : commandForms()) {
        text += "complete -c tessarel -n __fish_use_subcommand -a " + form.words + " -d '" +
                escaped(form.description, '\'') + "'\n";
        if (!form.choices.empty())
            text += "complete -c tessarel -n '__fish_seen_subcommand_from " + form.words + "' -a '" +
                    joined(form.choices, " ") + "'\n";
    }
    return text + "complete -c tessarel -n '__fish_seen_subcommand_from layout' "
                  "-a '(tessarel list layouts 2>/dev/null)'\n"
                  "complete -c tessarel -n '__fish_seen_subcommand_from list' -l json -d 'Print as JSON'\n";
}

} // namespace

} // namespace tessarel

/// describe_commands man|bash|zsh|fish: prints the manual page, or the completion for a shell.
int main(int argumentCount, char** arguments) {
    const std::string_view format = argumentCount == 2 ? arguments[1] : "";
    std::string text;
    if (format == "man")
        text = tessarel::manualPage();
    else if (format == "bash")
        text = tessarel::bashCompletion();
    else if (format == "zsh")
        text = tessarel::zshCompletion();
    else if (format == "fish")
        text = tessarel::fishCompletion();
    else
        std::fputs("usage: describe_commands man|bash|zsh|fish\n", stderr);
    return !text.empty() && std::fwrite(text.data(), 1, text.size(), stdout) == text.size() ? EXIT_SUCCESS
                                                                                            : EXIT_FAILURE;
}
