// etmhost: a debugger host with simulated and real chips, to set up trace and to develop and try
// the module against.

#include <algorithm>
#include <iostream>
#include <optional>
#include <sstream>

#include "host/commandline/check.h"
#include "host/commandline/choose_chip.h"
#include "host/commandline/dry_run.h"
#include "host/commandline/outputs.h"
#include "host/commandline/parser.h"
#include "host/commandline/remote.h"
#include "host/commandline/screen.h"
#include "host/commandline/state_file.h"
#include "host/drive/windows.h"
#include "host/support/host_error.h"
#include "host/support/libraries.h"
#include "host/support/system.h"
#include "host/support/words.h"
#include "host/target/symbols.h"

namespace etmhost {

namespace {

struct Options {
    std::string chip = "arm926";
    std::string chipFile;
    std::string variant; // of the chip in that file
    std::string remote;
    std::vector<std::string> bases;
    uint16_t port = 0; // of the server
    bool once = false;
    bool isRemote = false;
    std::string state;
    std::string module;
    std::string symbols;
    std::string directory;
    std::vector<std::string> commands;
    DriveOptions drive;
    std::string recording;
    std::string targetOption; // one that chooses a target, or does something with it
    bool dark = false;
    std::vector<std::string> failures, delays;
    OutputOptions output;
    bool json = false;
    bool rules = false; // of the contract: list them
    std::string topic;  // of help
    std::string form;   // of the manual
};

std::filesystem::path ModuleFile(const Options& options) {
    if (!options.module.empty()) return ToPath(options.module);
    return LibraryFile("KVETMControl");
}

/// Gives nothing if there is no script, or an unreadable one, which it says.
std::optional<ReadyScript> PrepareScript(const std::string& command, const DriveOptions& options) {
    if (command == "drive") return ReadScript(options.script, std::cerr);
    if (command == "tour" && !TakesPictures())
        throw HostError("this build of etmhost has no tour: it was made without Qt");
    return OwnScript(command);
}

Status RunWithModule(const std::string& command, const Options& options,
                     const std::optional<ReadyScript>& script, SimulatedHost& host) {
    Screen screen;
    if (script)
        screen = PrepareDrivenScreen(options.drive, options.dark);
    else if (options.dark)
        screen = PrepareDarkScreen();
    const bool check = command == "check";
    LoadedModule module(check ? CheckReport::Checker() : ModuleFile(options));
    ModuleSession session(module.object(), module.path(), host);
    if (command == "open") return OpenDialog(session, host.events);
    if (script) {
        const auto open = [&] {
            return check ? WorkToBeChecked(session, host.events) : OpenDialog(session, host.events);
        };
        return Drive(open, host.events, *script, options.drive.pictures, std::cerr);
    }
    std::ostringstream out;
    const Status status = command == "apply"
                              ? Apply(session, host.events, out)
                              : InitBoardFile(session, host.events, options.directory, out);
    std::cout << (options.output.ForRun() ? Remarks(out.str()) : out.str());
    return status;
}

// The same behind the checker.
Status Check(const Options& options, const std::optional<ReadyScript>& script,
             SimulatedHost& host) {
    const LoadedModule module(ModuleFile(options)); // which is known to be one then
    const CheckReport report(module.path());
    const Status status = RunWithModule("check", options, script, host);
    return std::max(status, report.Print(std::cout));
}

// The lines that `run` gets from a person or another program.
std::vector<std::string> ReadCommands(std::istream& in) {
    std::vector<std::string> commands;
    for (std::string line; std::getline(in, line);) {
        if (line.ends_with('\r')) line.pop_back();
        if (!SkipBlanks(line).empty()) commands.push_back(line);
    }
    if (in.bad() || std::ferror(stdin) != 0) throw HostError("run: cannot read the standard input");
    return commands;
}

// Carries out a command that works on the target.
Status Work(const std::string& command, const Options& options,
            const std::optional<ReadyScript>& script, SimulatedHost& host) {
    const OutputOptions& output = options.output;
    if (output.dryRun) std::cout << Remarks(kDryRun) << std::flush;
    std::optional<BoardFilesBefore> files;
    if (output.dryRun)
        files.emplace(options.directory.empty()
                          ? std::filesystem::weakly_canonical(ModuleFile(options)).parent_path()
                          : ToPath(options.directory));
    std::optional<ChangesOf> changes;
    if (output.ForRun()) changes.emplace(host);
    std::optional<Watch> watch;
    if (output.watch) watch.emplace(host, output.journal);
    Status status = kDone;
    if (command == "run")
        status =
            RunCommands(host,
                        options.commands == std::vector<std::string>{"-"} ? ReadCommands(std::cin)
                                                                          : options.commands,
                        std::cout);
    else if (command == "check")
        status = Check(options, script, host);
    else
        status = RunWithModule(command, options, script, host);
    watch.reset();
    if (files)
        for (const std::string& file : files->WrittenSince())
            std::cout << Remarks("the board file \"" + file + "\" has been written");
    if (changes) std::cout << Remarks(changes->Tell(output.dryRun)) << std::flush;
    return status;
}

void CheckDirectory(const std::string& directory) {
    if (directory.empty()) return; // the module's
    const std::filesystem::path path = ToPath(directory);
    std::error_code error;
    if (!std::filesystem::is_directory(path, error))
        throw HostError("there is no directory \"" + Escape(directory) + "\"");
    if (std::filesystem::directory_iterator(path, error); error)
        throw HostError("cannot read directory \"" + Escape(directory) + "\"");
}

// The file is emptied at the beginning: it must not be one that is read.
void CheckJournalFile(const Options& options) {
    const std::string& name = options.output.journalFile;
    if (name.empty()) return;
    for (const std::string& read : {options.state, options.symbols, options.module,
                                    options.drive.script, options.recording}) {
        std::error_code error;
        if (!read.empty() && std::filesystem::equivalent(ToPath(name), ToPath(read), error))
            throw HostError("--journal-file \"" + Escape(name) + "\": this file is read");
    }
}

std::unique_ptr<SimulatedHost> MakeHost(const Options& options, const Chip& chip,
                                        record::EventStream& events) {
    Symbols symbols = options.symbols.empty() ? Symbols() : ReadSymbols(ToPath(options.symbols));
    if (options.isRemote)
        return MakeRemoteHost(options.remote, options.bases, std::move(symbols), events,
                              options.output.dryRun, std::cerr);
    try {
        return std::make_unique<SimulatedHost>(chip, std::move(symbols), events);
    } catch (const BusError& error) { // as of a real chip that makes no sense
        throw HostError("chip \"" + chip.name + "\": " + error.what());
    }
}

std::string ProgramName() {
    return std::string(kProgram) + " " ETMHOST_VERSION;
}

// Answers the module from a recording. The person is a script, the one that was recorded, or who
// sits at the screen.
Status RunReplay(const Options& options) {
    if (!options.targetOption.empty())
        throw HostError("replay: the recording stands in place of a target; " +
                        options.targetOption + " has no say beside it");
    const Recording recording = ReadRecording(ToPath(options.recording));
    std::optional<Script> script;
    if (!options.drive.script.empty()) {
        std::optional<ReadyScript> read =
            ReadScript(options.drive.script, std::cerr, !options.drive.pictures.empty());
        if (!read) return kBadInput;
        script = std::move(read->script);
    } else if (recording.script) {
        script = ParseScript(recording.script->name, recording.script->text);
        if (!script->errors.empty())
            throw HostError("\"" + Escape(recording.name) +
                            "\": the script in it is damaged: " + script->errors.front().text);
    }
    if (!options.drive.pictures.empty()) PreparePictures("replay", options.drive.pictures);
    CheckJournalFile(options);
    Outputs outputs(options.output, ProgramName());
    Screen screen;
    if (script)
        screen = PrepareDrivenScreen(options.drive, options.dark);
    else if (options.dark)
        screen = PrepareDarkScreen();
    LoadedModule module(ModuleFile(options));
    const Status status =
        ReplayWith(script ? &*script : nullptr, recording, module.object(), outputs.events(),
                   options.drive.pictures, std::cout, std::cerr);
    return outputs.Failed() ? kBadInput : status;
}

void TellUnmet(const Faults& faults, record::EventStream& events) {
    for (const std::string& sentence : faults.Unmet()) events.Note(sentence);
}

Status Run(const std::string& command, const Options& options) {
    if (command == "replay") return RunReplay(options);
    if (options.rules) return ListRules(std::cout);
    if (command == "chips") {
        const std::vector<Chip> own =
            options.chipFile.empty() ? std::vector<Chip>() : ReadChips(ToPath(options.chipFile));
        const std::span<const Chip> chips = own.empty() ? Chips() : own;
        return options.json ? ShowChipsJson(chips, std::cout) : ShowChips(chips, std::cout);
    }
    CheckDirectory(options.directory);
    if (command == "check" && options.isRemote)
        throw HostError(
            "a chip behind a debug server is not changed for a check; --chip chooses one");
    if (command == "serve" && options.isRemote)
        throw HostError("a chip behind a debug server cannot be served; --chip chooses one");
    std::optional<ReadyScript> script;
    if (command == "tour" || command == "drive" || command == "check") {
        script = PrepareScript(command, options.drive);
        if (!script) return kBadInput;
        if (!options.drive.pictures.empty()) PreparePictures(command, options.drive.pictures);
    }
    const Chip chip = ChooseChip(options.chip, options.chipFile, options.variant);
    CheckJournalFile(options);
    OutputOptions output = options.output;
    output.journal |= command == "tour";
    output.echo |= output.dryRun && command != "run"; // which says itself what it has carried out
    Outputs outputs(output, ProgramName());
    Faults faults(outputs.events());
    for (const std::string& text : options.failures) faults.Fail(text);
    for (const std::string& text : options.delays) faults.Delay(text);
    const std::unique_ptr<SimulatedHost> made = MakeHost(options, chip, outputs.events());
    SimulatedHost& host = *made;
    if (!options.failures.empty() || !options.delays.empty()) host.PutInFront(faults);
    TellTarget(host, output.dryRun);
    std::optional<StateFile> state;
    std::string failure; // why the last change could not be kept
    if (!options.state.empty()) {
        state.emplace(ToPath(options.state));
        state->Load(host);
    }
    if (state && !output.dryRun) {
        host.transaction = [&](const std::function<void()>& change) {
            try {
                state->Update(host, change);
                failure.clear();
            } catch (const HostError& error) {
                if (failure != error.what()) { // else it has been told
                    failure = error.what();
                    host.events.Note(failure);
                }
            }
        };
    }
    if (command == "show" ||
        command == "serve") { // which change nothing that would have to be kept
        const Status status = command == "serve"
                                  ? ServeChip(host, chip, options.port, options.once, std::cout)
                              : options.json ? ShowTargetJson(host, std::cout)
                                             : ShowTarget(host, std::cout);
        TellUnmet(faults, host.events);
        return outputs.Failed() ? kBadInput : status;
    }
    Status status = kDone;
    try {
        status = Work(command, options, script, host);
    } catch (...) {
        TellUnmet(faults, host.events);
        throw;
    }
    TellUnmet(faults, host.events);
    host.transaction([] {}); // the last try to keep what could not be kept before
    if (!failure.empty() || outputs.Failed()) return kBadInput;
    // What was set behind that never reached the chip.
    return status == kDone && !host.target.lost().empty() ? kFailed : status;
}

std::string Version() {
    constexpr std::pair<const char*, int32_t> kInterfaces[] = {
        {"IOrnAPIBase", ORN_API_BASE_VERSION},
        {"IOrnKVETMCtrl", ORN_KVETM_CTRL_VERSION},
        {"IOrnKVETMSupp", ORN_KVETM_SUPP_VERSION},
    };
    std::string version = ProgramName() + "\ninterfaces:";
    for (const auto& [name, number] : kInterfaces)
        version +=
            std::string(version.ends_with(':') ? " " : ", ") + name + " " + std::to_string(number);
    return version;
}

void DescribeDrive(CLI::App* drive, CLI::App* tour, DriveOptions& options) {
    drive
        ->add_option("SCRIPT", options.script,
                     "A file with one step on each line, such as 'click \"Start\"', 'type 1018 "
                     "\"0x1000\"', 'expect enabled apply', 'ok'; -: the standard input")
        ->required()
        ->type_name("FILE");
    drive->add_flag("--off-screen", options.offScreen,
                    "Show no windows, also where there is a screen");
    drive->add_option("--pictures", options.pictures, "Receives the pictures; made if missing")
        ->type_name("DIR");
    tour->add_option("DIR", options.pictures, "Receives the pictures; made if missing")
        ->required()
        ->type_name("DIR");
    tour->parse_complete_callback([&options] { options.offScreen = true; });
    for (CLI::App* command : {drive, tour}) {
        command->add_option("--font", options.font, "In the font FONT")->type_name("FONT");
        command->add_option("--scale", options.scale, "At FACTOR times the size, 0.5 to 4")
            ->type_name("FACTOR")
            ->check(CLI::Range(0.5, 4.0));
    }
}

// What is told while a command works on the target, and whether it really does.
void DescribeEvents(CLI::App& app, OutputOptions& options) {
    for (const char* name : {"open", "apply", "init-board", "drive", "tour"}) {
        app.get_subcommand(name)->add_flag(
            "--echo", options.echo,
            "Print what is sent as commands that \"etmhost run -\" takes, and at the end what has "
            "changed on the target");
    }
    for (const char* name : {"open", "apply", "init-board", "drive", "tour", "run"}) {
        app.get_subcommand(name)->add_flag(
            "--dry-run", options.dryRun,
            "Show what would be sent and would change, on a copy of the target: chip, state file "
            "and named settings stay. A board file that is created is written all the same");
    }
    for (const char* name : {"open", "init-board", "drive"}) {
        app.get_subcommand(name)->add_flag(
            "--watch", options.watch,
            "While the dialog is open, keep a line on the terminal: capture, fill, trigger, what "
            "was sent last, what was refused last");
    }
}

void DescribeReplay(CLI::App* replay, Options& options) {
    replay
        ->add_option("RECORDING", options.recording,
                     "A file of --journal-file, of this host or of another that was recorded")
        ->required()
        ->type_name("FILE");
    replay
        ->add_option("--drive", options.drive.script,
                     "A script for the person, as \"etmhost drive\" takes it. Without it the one "
                     "that was recorded, or else who sits at the screen")
        ->type_name("FILE");
    replay->add_flag("--off-screen", options.drive.offScreen,
                     "Show no windows, also where there is a screen");
    replay
        ->add_option("--pictures", options.drive.pictures,
                     "Receives the pictures of the script; made if missing. Without it none are "
                     "taken")
        ->type_name("DIR");
}

void DescribeFaults(CLI::App& app, Options& options) {
    for (const char* name :
         {"open", "apply", "init-board", "drive", "tour", "check", "run", "show"}) {
        CLI::App* command = app.get_subcommand(name);
        command
            ->add_option("--fail", options.failures,
                         "Have the host fail in calls such as GetValue, Command:enable=REASON or "
                         "GetValue:0@3, the third such call; may stand several times")
            ->type_name("CALLS[=REASON]")
            ->allow_extra_args(false);
        command
            ->add_option("--delay", options.delays,
                         "Have the host take its time for calls: Command:start=500ms, GetValue=2s; "
                         "may stand several times")
            ->type_name("CALLS=TIME")
            ->allow_extra_args(false);
    }
}

void Describe(CLI::App& app, Options& options) {
    app.require_subcommand(1);
    app.option_defaults()->disable_flag_override(); // "--dark=5" says nothing
    app.set_help_flag("-h,--help", "Print this help");
    app.set_version_flag("--version", Version, "Print the version");
    CLI::Option* chip = app.add_option("--chip", options.chip,
                                       "The chip to simulate, " + options.chip +
                                           " if none is named; \"etmhost chips\" lists them")
                            ->type_name("CHIP");
    CLI::Option* remote =
        app.add_option("--remote", options.remote,
                       "A real chip in place of a simulated one: openocd:[HOST:]PORT, the Tcl port "
                       "of an OpenOCD that runs (recommended), or gdb:[HOST:]PORT")
            ->type_name("SERVER")
            ->excludes(chip);
    CLI::Option* chipFile =
        app.add_option("--chip-file", options.chipFile,
                       "The chip to simulate as FILE describes it; docs/chips.md has the keys")
            ->type_name("FILE")
            ->excludes(chip)
            ->excludes(remote);
    app.add_option("--variant", options.variant,
                   "What the chip of --chip-file is with the option NAME of that file")
        ->type_name("NAME")
        ->needs(chipFile);
    app.add_option("--base", options.bases,
                   "Where a real chip has components that its ROM table does not list: "
                   "etm=ADDRESS, tpiu=, etb=, dwt=, or the table itself, rom=")
        ->type_name("NAME=ADDRESS")
        ->needs(remote);
    app.add_option("--state", options.state,
                   "Keep the simulated target and the named settings in FILE")
        ->type_name("FILE");
    app.add_option("--module", options.module,
                   "The module to load; usually the one beside this program")
        ->type_name("FILE");
    app.add_option("--symbols", options.symbols, "Take symbols for addresses from the ELF FILE")
        ->type_name("FILE");
    app.add_flag("--journal", options.output.journal,
                 "Print every call of the module to the host with its answer; of those that poll "
                 "the capture only the ones with news");
    app.add_option("--journal-file", options.output.journalFile,
                   "Write every call between host and module to FILE, as JSON lines; "
                   "docs/etmhost.md has the keys")
        ->type_name("FILE");
    app.add_flag("--dark", options.dark, "Show windows in dark colours");
    app.parse_complete_callback([&app, &options, remote] {
        options.isRemote = remote->count() > 0;
        for (const char* name : {"--chip", "--chip-file", "--remote", "--state", "--symbols"})
            if (app.get_option(name)->count() > 0) options.targetOption = name;
    });

    const auto command = [&app](const char* name, const char* text) {
        CLI::App* sub = app.add_subcommand(name, text);
        sub->fallthrough(); // the options above may stand behind the command too
        return sub;
    };
    for (CLI::App* sub : {command("chips", "List the chips"),
                          command("show", "Print what the target is and holds")})
        sub->add_flag("--json", options.json,
                      "As JSON, for programs; docs/etmhost.md has the keys");
    command("run", "Carry out commands of the host's language on the target")
        ->add_option("COMMAND", options.commands,
                     "Commands such as 'etm pc=all', each an argument of its own; -: those on the "
                     "lines of the standard input. # begins a remark")
        ->required()
        ->type_name("LANGUAGE");
    command("open", "Show the dialog");
    CLI::App* serve = command(
        "serve", "Offer the simulated chip to OpenOCD, as an adapter of the kind remote_bitbang");
    serve
        ->add_option("--port", options.port,
                     "The port to listen at, up to 65535; 0: any that is free")
        ->type_name("PORT");
    serve->add_flag("--once", options.once, "End behind the first caller");
    command("apply", "Send the module's settings to the target");
    command("init-board", "Settle the board file, and ask for it if need be")
        ->add_option("--directory", options.directory,
                     "Where board files are; usually the directory of the module")
        ->type_name("DIR");
    DescribeDrive(
        command("drive", "Let a script work at the dialog; docs/driving.md tells its form"),
        command("tour",
                "Go through the dialog off-screen, take pictures and print the conversation"),
        options.drive);
    DescribeReplay(command("replay", "Answer the module from a recording, and tell the first call "
                                     "that differs"),
                   options);
    DescribeEvents(app, options.output);
    CLI::App* check = command(
        "check", "Hold this host to the rules of the contract: the module runs behind the checker");
    check->add_flag("--rules", options.rules, "List the rules, with a sentence each");
    check->parse_complete_callback([&options] { options.drive.offScreen = TakesPictures(); });
    DescribeFaults(app, options);
    command("help", "Tell about a command")
        ->add_option("COMMAND", options.topic, "The command; without one, about the program")
        ->type_name("COMMANDS");
    command("describe", "Print the manual page or the completion for bash")
        ->group("") // for whoever installs the program
        ->add_option("FORM", options.form, "man or bash")
        ->required();
}

// The values of the command line that are known when a completion is made.
KnownValues Values() {
    KnownValues values = {{"CHIP", NamesOf(Chips())},
                          {"SERVER", {"openocd:", "gdb:"}},
                          {"NAME=ADDRESS", {"rom=", "etm=", "tpiu=", "etb=", "dwt="}},
                          {"LANGUAGE", {}}};
    std::vector<std::string>& commands = values.back().second;
    for (const CommandForm& form : CommandForms())
        commands.push_back(
            form.text.substr(0, form.text.find_first_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ")));
    return values;
}

Status Help(const CLI::App& app, const std::string& command) {
    const size_t width = std::clamp<size_t>(TerminalWidth() > 0 ? TerminalWidth() : 80, 40, 100);
    std::cout << HelpText(ManualOf(app, ETMHOST_VERSION), command, width);
    return kDone;
}

Status PrintManual(const CLI::App& app, const std::string& form) {
    const Manual manual = ManualOf(app, ETMHOST_VERSION);
    if (form != "man" && form != "bash")
        throw HostError("describe: man or bash is expected, not \"" + form + "\"");
    std::cout << (form == "man" ? ManualPage(manual) : BashCompletion(manual, Values()));
    return kDone;
}

Status RunCommandLine(int argc, char** argv) {
    Options options;
    CLI::App app(
        "A debugger host with simulated and real chips, which loads and drives the trace module.",
        kProgram);
    Describe(app, options);
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForVersion& version) {
        std::cout << version.what() << '\n';
        return kDone;
    } catch (const CLI::CallForHelp&) {
        const std::vector<CLI::App*> commands = app.get_subcommands();
        return Help(app, commands.empty() ? "" : commands.front()->get_name());
    } catch (const CLI::ParseError& error) {
        throw HostError(Explain(app, error, {argv, argv + argc}));
    }
    // As an unset variable of a shell gives it: nobody means that.
    if (const std::string empty = EmptyValue(app); !empty.empty()) throw HostError(empty);
    const std::string command = app.get_subcommands().front()->get_name();
    if (command == "describe") return PrintManual(app, options.form);
    if (command != "help") return Run(command, options);
    const auto isTopic = [&](const CLI::App* sub) { return sub->get_name() == options.topic; };
    if (!options.topic.empty() && std::ranges::none_of(app.get_subcommands({}), isTopic))
        throw HostError(UnknownCommand(app, options.topic));
    return Help(app, options.topic);
}

Status Main(int argc, char** argv) {
    OutliveReaders();
    const Status status = RunCommandLine(argc, argv);
    std::cout.flush();
    // Whoever reads a pipe may have read enough.
    if (!std::cout && !OutputIsPipe()) throw HostError("cannot write to the standard output");
    return status;
}

} // namespace

} // namespace etmhost

int main(int argc, char** argv) {
    try {
        return etmhost::Main(argc, argv);
    } catch (const std::exception& error) {
        etmhost::PrintRefusal(std::cerr, etmhost::kProgram, error.what());
        return etmhost::kBadInput;
    }
}
