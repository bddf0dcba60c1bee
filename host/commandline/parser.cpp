#include "host/commandline/parser.h"

#include "host/commandline/actions.h"
#include "host/support/words.h"
#include "host/target/command.h"

namespace etmhost {

namespace {

using OptionList = std::vector<const CLI::Option*>;

// What an option takes, without what the library adds of its own.
std::string KindOf(const CLI::Option& option) {
    const std::string name = option.get_type_name();
    return option.get_items_expected_max() == 0 ? "" : name.substr(0, name.find(':'));
}

std::string ValueOf(const CLI::Option& option) {
    return option.get_positional() ? option.get_name(true, false) : KindOf(option);
}

ManualArgument ArgumentOf(const CLI::Option& option) {
    ManualArgument argument;
    for (const std::string& name : option.get_snames()) argument.names.push_back("-" + name);
    for (const std::string& name : option.get_lnames()) argument.names.push_back("--" + name);
    argument.value = ValueOf(option);
    argument.kind = KindOf(option);
    argument.meaning = option.get_description();
    argument.required = option.get_required();
    argument.many = option.get_expected_max() > 1;
    return argument;
}

ManualCommand CommandOf(const CLI::App& app) {
    ManualCommand command{app.get_name(), app.get_description(), {}, {}, {}};
    for (const CLI::Option* option : app.get_options())
        (option->get_positional() ? command.arguments : command.options)
            .push_back(ArgumentOf(*option));
    return command;
}

ManualSection FormsSection(const char* title, const std::vector<CommandForm>& forms,
                           const char* text) {
    ManualSection section{title, {}, text};
    for (const CommandForm& form : forms) section.rows.emplace_back(form.text, form.meaning);
    return section;
}

std::vector<ManualSection> LanguageSections() {
    return {
        FormsSection("Commands of the host's language", CommandForms(),
                     "Words count in any case. An ADDRESS is an expression such as 0x8000, main+4 "
                     "(with --symbols) or 4k-1. On a chip whose ETM has no address comparators "
                     "\"start\", \"stop\" and \"trigger\" take the number of a DWT comparator in "
                     "its place, which \"dwt\" has set."),
        FormsSection("Lines of a board file", BoardForms(),
                     "A command that begins with \"etm\" may stand there too, behind \"trace\"; "
                     "\";\" begins "
                     "a comment. A simulated board has no memory: nothing is written there.")};
}

std::vector<ManualSection> ProgramSections() {
    ManualSection statuses{"Exit status", {}, ""};
    for (const auto& [status, meaning] : kStatusMeanings)
        statuses.rows.emplace_back(std::to_string(status), meaning);
    return {{"Examples",
             {{"etmhost --chip cortex-m3 open", "The dialog, on a simulated Cortex-M3"},
              {"etmhost --state bench.json run enable start",
               "Two commands; the target stays in a file"},
              {"etmhost --remote openocd:6666 show", "What a real chip is and holds"}},
             ""},
            statuses};
}

// The options that may stand on a line with the commands that were read.
OptionList OptionsOf(const CLI::App& app) {
    OptionList options = app.get_options();
    for (const CLI::App* command : app.get_subcommands())
        for (const CLI::Option* option : command->get_options()) options.push_back(option);
    return options;
}

// Where a value stands: behind an option, or behind the command.
std::string Place(const CLI::App& app, const CLI::Option& option) {
    return option.get_positional() ? app.get_subcommands().front()->get_name() : option.get_name();
}

// The option that `text` names first, or null.
const CLI::Option* NamedIn(const std::string& text, const OptionList& options) {
    const CLI::Option* named = nullptr;
    size_t first = std::string::npos, length = 0;
    for (const CLI::Option* option : options) {
        const std::string name = option->get_name();
        const size_t at = text.find(name);
        if (at > first || (at == first && name.size() <= length) || at == std::string::npos)
            continue;
        named = option;
        first = at;
        length = name.size();
    }
    return named;
}

// Which of two options exclude or need each other, and how that is put.
std::string Conflict(const OptionList& options, const char* verb,
                     std::set<CLI::Option*> (*others)(const CLI::Option&), bool given) {
    for (const CLI::Option* option : options)
        for (const CLI::Option* other : others(*option))
            if (option->count() > 0 && (other->count() > 0) == given)
                return option->get_name() + verb + other->get_name();
    return "";
}

// What is wrong with `text`, which nobody takes; `literal`: it is no option, however it begins.
std::string Unexpected(const CLI::App& app, const std::string& text, bool literal,
                       const std::string& help) {
    const std::vector<CLI::App*> commands = app.get_subcommands();
    std::vector<std::string> names;
    if (!literal && text.size() > 1 && text[0] == '-') {
        const std::string name = text.substr(0, text.find('='));
        for (const CLI::Option* option : OptionsOf(app))
            for (const std::string& known : option->get_lnames()) names.push_back("--" + known);
        if (std::ranges::find(names, name) != names.end())
            return name + " stands behind the command that it is for";
        return "there is no option \"" + Escape(name) + "\"" +
               DidYouMean(name, names, "\"" + help + "\" lists those there are");
    }
    if (!commands.empty())
        return commands.front()->get_name() + ": \"" + Escape(text) + "\" is too much; \"" + help +
               "\" tells what it takes";
    return UnknownCommand(app, text);
}

} // namespace

std::string UnknownCommand(const CLI::App& app, const std::string& name) {
    std::vector<std::string> names;
    for (const CLI::App* command : app.get_subcommands({}))
        if (!command->get_group().empty()) names.push_back(command->get_name());
    return "there is no command \"" + Escape(name) + "\"" +
           DidYouMean(name, names, "\"etmhost --help\" lists those there are");
}

Manual ManualOf(const CLI::App& app, const std::string& version) {
    Manual manual{CommandOf(app), version, {}};
    manual.program.sections = ProgramSections();
    for (const CLI::App* command : app.get_subcommands({})) {
        if (command->get_group().empty()) continue;
        manual.commands.push_back(CommandOf(*command));
        if (command->get_name() == "run") manual.commands.back().sections = LanguageSections();
    }
    return manual;
}

std::string EmptyValue(const CLI::App& app) {
    for (const CLI::Option* option : OptionsOf(app)) {
        const std::string value = ValueOf(*option);
        if (value.empty() || option->get_expected_max() > 1) continue;
        for (const std::string& result : option->results())
            if (result.empty())
                return Place(app, *option) + ": a " + value + " is expected, not \"\"";
    }
    return "";
}

std::string Explain(const CLI::App& app, const CLI::ParseError& error,
                    const std::vector<std::string>& line) {
    const std::vector<CLI::App*> commands = app.get_subcommands();
    const std::string command = commands.empty() ? "" : commands.front()->get_name();
    const std::string help = "etmhost " + command + (command.empty() ? "" : " ") + "--help";
    const std::string more = "; \"" + help + "\" tells more";
    for (const std::string& extra : app.remaining(true)) {
        if (extra == "--") continue;
        const auto end = std::ranges::find(line, "--");
        return Unexpected(app, extra, std::find(line.begin(), end, extra) == end, help);
    }
    const std::string text = error.what();
    const OptionList options = OptionsOf(app);
    const CLI::Option* option = NamedIn(text, options);
    const std::string value = option != nullptr ? ValueOf(*option) : "";
    const std::string name = option != nullptr ? option->get_name() : "";
    const std::string type = error.get_name();
    std::string told;
    if (type == "RequiredError") {
        if (command.empty())
            return "a command is missing; \"etmhost open\" shows the dialog on a simulated chip, "
                   "\"" +
                   help + "\" tells the rest";
        told = command + " needs a " + value;
    } else if (type == "ExcludesError") {
        told = Conflict(
            options, " cannot stand beside ",
            [](const CLI::Option& one) { return one.get_excludes(); }, true);
    } else if (type == "RequiresError") {
        told = Conflict(
            options, " needs ", [](const CLI::Option& one) { return one.get_needs(); }, false);
    } else if (text.ends_with("flag override")) {
        told = "--" + text.substr(0, text.find(' ')) + " takes no value";
    } else if (option != nullptr && option->count() > 1 && type == "ArgumentMismatch") {
        told =
            name + " is given " + std::to_string(option->count()) + " times; it takes one " + value;
    } else if (option != nullptr && type == "ArgumentMismatch") {
        told = name + ": a " + value + " is missing behind it";
    } else if (option != nullptr && option->count() > 0) {
        told = name + ": a " + value + " is expected, not \"" + Escape(option->results().back()) +
               "\"";
    }
    return (told.empty() ? text : told) + more;
}

} // namespace etmhost
