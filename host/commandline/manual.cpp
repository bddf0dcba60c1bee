#include "host/commandline/manual.h"

#include <algorithm>
#include <set>
#include <sstream>

namespace etmhost {

namespace {

constexpr size_t kWidestLeft = 28; // a longer text has a line of its own

using Row = std::pair<std::string, std::string>;

// `text` with blanks between its words turned into line ends where lines would become longer than
// `width`, and `indent` blanks ahead of all lines but the first.
std::string Wrapped(const std::string& text, size_t indent, size_t width) {
    std::istringstream words(text);
    std::string wrapped;
    size_t column = indent;
    for (std::string word; words >> word;) {
        if (wrapped.empty()) {
            column = indent;
        } else if (column + 1 + word.size() > width) {
            wrapped += "\n" + std::string(indent, ' ');
            column = indent;
        } else {
            wrapped += ' ';
            ++column;
        }
        wrapped += word;
        column += word.size();
    }
    return wrapped;
}

std::string Rows(const std::vector<Row>& rows, size_t width) {
    size_t left = 0;
    for (const auto& [name, meaning] : rows)
        if (name.size() <= kWidestLeft) left = std::max(left, name.size());
    std::string text;
    for (const auto& [name, meaning] : rows) {
        const size_t column = left + 4;
        text += "  " + name;
        text += name.size() > left ? "\n" + std::string(column, ' ')
                                   : std::string(column - 2 - name.size(), ' ');
        text += Wrapped(meaning, column, width) + "\n";
    }
    return text;
}

std::string NameOf(const ManualArgument& argument) {
    std::string name;
    for (const std::string& one : argument.names) name += (name.empty() ? "" : ", ") + one;
    if (argument.value.empty()) return name;
    return name + (name.empty() ? "" : " ") + argument.value +
           (argument.many && name.empty() ? "..." : "");
}

std::vector<Row> RowsOf(const std::vector<ManualArgument>& arguments) {
    std::vector<Row> rows;
    for (const ManualArgument& argument : arguments)
        rows.emplace_back(NameOf(argument), argument.meaning);
    return rows;
}

std::vector<Row> RowsOf(const std::vector<ManualCommand>& commands) {
    std::vector<Row> rows;
    for (const ManualCommand& command : commands) rows.emplace_back(command.name, command.meaning);
    return rows;
}

std::string UsageOf(const Manual& manual, const ManualCommand& command) {
    const bool whole = &command == &manual.program;
    std::string usage = manual.program.name;
    if (!whole) usage += " " + command.name;
    usage += " [OPTIONS]";
    if (whole) usage += " COMMAND";
    for (const ManualArgument& argument : command.arguments)
        usage += argument.required ? " " + NameOf(argument) : " [" + NameOf(argument) + "]";
    return usage;
}

const ManualCommand& Find(const Manual& manual, const std::string& name) {
    for (const ManualCommand& command : manual.commands)
        if (command.name == name) return command;
    return manual.program;
}

// --- The page for man ---

std::string Roff(const std::string& text) {
    std::string escaped;
    for (const char c : text) {
        if ((c == '.' || c == '\'') && (escaped.empty() || escaped.back() == '\n'))
            escaped += "\\&"; // else it would be a request
        escaped += c == '\\' ? "\\e" : c == '-' ? "\\-" : c == '\'' ? "\\(aq" : std::string(1, c);
    }
    return escaped;
}

std::string Upper(std::string text) {
    for (char& c : text)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    return text;
}

// A paragraph, in lines that are easy to read as they are.
std::string RoffText(const std::string& text) {
    return Roff(Wrapped(text, 0, 72)) + "\n";
}

std::string RoffRows(const std::vector<Row>& rows) {
    std::string text;
    for (const auto& [name, meaning] : rows)
        text += ".TP\n.B " + Roff(name) + "\n" + RoffText(meaning);
    return text;
}

std::string RoffSection(const char* macro, const ManualSection& section) {
    std::string text = std::string(macro) + " \"" + Roff(section.title) + "\"\n";
    text += RoffRows(section.rows);
    if (!section.text.empty())
        text += (section.rows.empty() ? "" : ".PP\n") + RoffText(section.text);
    return text;
}

// --- Completion ---

std::string BashQuoted(const std::string& text) {
    std::string quoted = "'";
    for (const char c : text) quoted += c == '\'' ? "'\\''" : std::string(1, c);
    return quoted + "'";
}

std::string OptionNames(const std::vector<ManualArgument>& options) {
    std::string names;
    for (const ManualArgument& option : options)
        for (const std::string& name : option.names) names += (names.empty() ? "" : " ") + name;
    return names;
}

} // namespace

std::string HelpText(const Manual& manual, const std::string& name, size_t width) {
    const ManualCommand& command = Find(manual, name);
    const bool whole = &command == &manual.program;
    std::string text = Wrapped("Usage: " + UsageOf(manual, command), 0, width) + "\n\n" +
                       Wrapped(command.meaning + (whole ? "" : "."), 0, width) + "\n";
    const auto part = [&](const std::string& title, const std::vector<Row>& rows) {
        if (!rows.empty()) text += "\n" + title + ":\n" + Rows(rows, width);
    };
    part("Arguments", RowsOf(command.arguments));
    if (whole) part("Commands", RowsOf(manual.commands));
    part("Options", RowsOf(command.options));
    for (const ManualSection& section : command.sections) {
        part(section.title, section.rows);
        if (!section.text.empty()) text += "\n" + Wrapped(section.text, 0, width) + "\n";
    }
    const std::string& program = manual.program.name;
    text += "\n" +
            Wrapped(whole ? "\"" + program + " help COMMAND\" tells about a command."
                          : "The options of \"" + program + " --help\" may stand here too.",
                    0, width) +
            "\n";
    return text;
}

std::string ManualPage(const Manual& manual) {
    const ManualCommand& program = manual.program;
    std::string page = ".TH " + Upper(program.name) + " 1 \"\" \"" + program.name + " " +
                       manual.version + "\" \"User Commands\"\n.SH NAME\n" + program.name +
                       " \\- debugger host with simulated and real chips\n.SH SYNOPSIS\n.B " +
                       Roff(UsageOf(manual, program)) + "\n.SH DESCRIPTION\n" +
                       RoffText(program.meaning) +
                       ".SH OPTIONS\nThey may stand ahead of the command "
                       "and behind it.\n" +
                       RoffRows(RowsOf(program.options)) + ".SH COMMANDS\n";
    for (const ManualCommand& command : manual.commands) {
        page += ".SS " + Roff(UsageOf(manual, command)) + "\n" + RoffText(command.meaning + ".") +
                RoffRows(RowsOf(command.arguments));
        for (const ManualArgument& option : command.options)
            if (option.names.front() != "-h") page += RoffRows(RowsOf(std::vector{option}));
        for (const ManualSection& section : command.sections)
            page += ".PP\n" + RoffSection(".B", section);
    }
    for (ManualSection section : program.sections) {
        section.title = Upper(section.title);
        page += RoffSection(".SH", section);
    }
    return page;
}

std::string BashCompletion(const Manual& manual, const KnownValues& values) {
    static constexpr struct {
        const char *name, *text;
    } kScripts[] = {
#include "completion.inc"
    };
    std::string kinds, commands, names;
    std::vector<ManualArgument> options = manual.program.options;
    for (const ManualCommand& command : manual.commands) {
        options.insert(options.end(), command.options.begin(), command.options.end());
        const std::string kind = command.arguments.empty() ? "" : command.arguments.front().kind;
        commands += "    " + command.name +
                    ") options+=" + BashQuoted(" " + OptionNames(command.options)) +
                    " kind=" + BashQuoted(kind) + " ;;\n";
        names += " " + command.name;
    }
    std::set<std::string> seen;
    for (const ManualArgument& option : options)
        for (const std::string& name : option.names)
            if (!option.value.empty() && seen.insert(name).second)
                kinds += "    " + name + ") echo " + BashQuoted(option.kind) + " ;;\n";
    std::string known;
    for (const auto& [kind, list] : values) {
        known += "    " + kind + ") printf '%s\\n'";
        for (const std::string& value : list) known += " " + BashQuoted(value);
        known += " ;;\n";
    }
    return "# Completion of etmhost's command line for bash; the program has made it.\n\n"
           "_etmhost_options=" +
           BashQuoted(OptionNames(manual.program.options)) +
           "\n\n# The kind of value that an option takes.\n_etmhost_kind() {\n  case $1 in\n" +
           kinds +
           "  esac\n}\n\n# Options and arguments of a command.\n_etmhost_of() {\n  case $1 in\n" +
           commands +
           "  esac\n}\n\n# The values of a kind, one a line.\n_etmhost_values() {\n  case $1 in\n" +
           "    COMMANDS) printf '%s\\n'" + names + " ;;\n" + known +
           "    FONT) fc-list : family 2>/dev/null | sed 's/,.*//' | sort -u ;;\n  esac\n}\n\n" +
           kScripts[0].text;
}

} // namespace etmhost
