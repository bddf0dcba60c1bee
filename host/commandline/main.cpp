// etmhost: a debugger host with simulated and real chips, to set up trace and to develop and try
// the module against.

#include <CLI/CLI.hpp>
#include <iostream>
#include <optional>

#include "host/commandline/remote.h"
#include "host/commandline/screen.h"
#include "host/commandline/state_file.h"
#include "host/drive/windows.h"
#include "host/support/host_error.h"
#include "host/target/symbols.h"

namespace etmhost {

namespace {

struct Options {
    std::string chip = "arm926";
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
    bool dark = false;
    bool journal = false;
};

std::filesystem::path ToPath(const std::string& text) {
    if (const auto path = NativePath(text)) return *path;
    throw HostError("\"" + text + "\" is no file name");
}

std::filesystem::path ModuleFile(const Options& options) {
    if (!options.module.empty()) return ToPath(options.module);
    return ExecutableFile().replace_filename(std::string("KVETMControl") + LibraryExtension());
}

/// Gives nothing if there is no script, or an unreadable one, which it says.
std::optional<Script> PrepareScript(const std::string& command, const DriveOptions& options) {
    if (command != "tour") return ReadScript(options.script, std::cerr);
    if (!TakesPictures())
        throw HostError("this build of etmhost has no tour: it was made without Qt");
    return TourScript();
}

Status RunWithModule(const std::string& command, const Options& options,
                     const std::optional<Script>& script, SimulatedHost& host) {
    Screen screen;
    if (script)
        screen = PrepareDrivenScreen(options.drive, options.dark);
    else if (options.dark)
        screen = PrepareDarkScreen();
    LoadedModule module(ModuleFile(options));
    ModuleSession session(module.object(), module.path(), host);
    if (command == "apply") return Apply(session, host, std::cout, std::cerr);
    if (command == "init-board")
        return InitBoardFile(session, host, options.directory, std::cout, std::cerr);
    if (script) return Drive(session, host, *script, options.drive.pictures, std::cerr);
    return OpenDialog(session, host, std::cerr);
}

std::unique_ptr<SimulatedHost> MakeHost(const Options& options, const Journal& journal) {
    Symbols symbols = options.symbols.empty() ? Symbols() : ReadSymbols(ToPath(options.symbols));
    if (options.isRemote)
        return MakeRemoteHost(options.remote, options.bases, std::move(symbols), journal,
                              std::cerr);
    const Chip* chip = FindChip(options.chip);
    if (chip == nullptr) {
        throw HostError("there is no chip \"" + options.chip +
                        "\"; \"etmhost chips\" lists those there are");
    }
    return std::make_unique<SimulatedHost>(*chip, std::move(symbols), journal);
}

Status Run(const std::string& command, const Options& options) {
    if (command == "chips") return ShowChips(std::cout);
    if (command == "serve" && options.isRemote)
        throw HostError("a chip behind a debug server cannot be served; --chip chooses one");
    std::optional<Script> script;
    if (command == "tour" || command == "drive") {
        script = PrepareScript(command, options.drive);
        if (!script) return kBadInput;
        if (!options.drive.pictures.empty()) PreparePictures(command, options.drive.pictures);
    }
    const bool journal = options.journal || command == "tour";
    const std::unique_ptr<SimulatedHost> made =
        MakeHost(options, Journal(journal ? &std::cout : nullptr, &std::cerr));
    SimulatedHost& host = *made;
    std::optional<StateFile> state;
    std::string failure; // why the last change could not be kept
    if (!options.state.empty()) {
        state.emplace(ToPath(options.state));
        state->Load(host);
        host.transaction = [&](const std::function<void()>& change) {
            try {
                state->Update(host, change);
                failure.clear();
            } catch (const HostError& error) {
                if (failure != error.what()) { // else it has been told
                    failure = error.what();
                    PrintRefusal(std::cerr, kProgram, failure);
                }
            }
        };
    }
    if (command == "show") return ShowTarget(host, std::cout);
    if (command == "serve")
        return ServeChip(host, *FindChip(options.chip), options.port, options.once, std::cout);
    Status status = kDone;
    if (command == "run")
        status = RunCommands(host, options.commands, std::cout);
    else
        status = RunWithModule(command, options, script, host);
    host.transaction([] {}); // the last try to keep what could not be kept before
    if (!failure.empty()) return kBadInput;
    // What was set behind that never reached the chip.
    return status == kDone && !host.target.lost().empty() ? kFailed : status;
}

void DescribeDrive(CLI::App* drive, CLI::App* tour, DriveOptions& options) {
    drive
        ->add_option("SCRIPT", options.script,
                     "A file with one step on each line, such as 'click \"Start\"', 'type 1018 "
                     "\"0x1000\"', 'expect enabled apply', 'ok'; -: the standard input")
        ->required()
        ->type_name("");
    drive->add_flag("--off-screen", options.offScreen,
                    "Show no windows, also where there is a screen");
    drive->add_option("--pictures", options.pictures, "Receives the pictures; made if missing")
        ->type_name("DIR");
    tour->add_option("DIR", options.pictures, "Receives the pictures; made if missing")
        ->required()
        ->type_name("");
    tour->parse_complete_callback([&options] { options.offScreen = true; });
    for (CLI::App* command : {drive, tour}) {
        command->add_option("--font", options.font, "In the font NAME")->type_name("NAME");
        command->add_option("--scale", options.scale, "At FACTOR times the size")
            ->type_name("FACTOR")
            ->check(CLI::Range(0.5, 4.0));
    }
}

void Describe(CLI::App& app, Options& options) {
    app.require_subcommand(1);
    app.option_defaults()->always_capture_default();
    CLI::Option* chip =
        app.add_option("--chip", options.chip, "The chip to simulate")->type_name("NAME");
    app.option_defaults()->always_capture_default(false);
    CLI::Option* remote =
        app.add_option("--remote", options.remote,
                       "A real chip in place of a simulated one: openocd:[HOST:]PORT, the Tcl port "
                       "of an OpenOCD that runs (recommended), or gdb:[HOST:]PORT")
            ->type_name("SERVER")
            ->excludes(chip);
    app.parse_complete_callback([&options, remote] { options.isRemote = remote->count() > 0; });
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
    app.add_flag("--journal", options.journal,
                 "Print every call of the module to the host with its answer; of those that poll "
                 "the capture only the ones with news");
    app.add_flag("--dark", options.dark, "Show windows in dark colours");

    const auto command = [&app](const char* name, const char* text) {
        CLI::App* sub = app.add_subcommand(name, text);
        sub->fallthrough(); // the options above may stand behind the command too
        return sub;
    };
    command("chips", "List the chips");
    command("show", "Print what the target is and holds");
    command("run", "Carry out commands of the host's language on the target")
        ->add_option("COMMAND", options.commands, "Commands such as 'etm pc=all'")
        ->required()
        ->type_name("");
    command("open", "Show the dialog");
    CLI::App* serve = command(
        "serve", "Offer the simulated chip to OpenOCD, as an adapter of the kind remote_bitbang");
    serve->add_option("--port", options.port, "The port to listen at; 0: any that is free")
        ->type_name("NUMBER");
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
}

Status Main(int argc, char** argv) {
    Options options;
    CLI::App app(
        "A debugger host with simulated and real chips, which loads and drives the trace module.",
        "etmhost");
    Describe(app, options);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        if (app.get_subcommands().empty() && !app.remaining().empty()) {
            const std::string first = app.remaining().front();
            throw HostError("there is no " + std::string(first[0] == '-' ? "option" : "command") +
                            " \"" + first + "\"; \"etmhost --help\" lists those there are");
        }
        if (error.get_exit_code() != 0) throw HostError(error.what());
        app.exit(error); // help was asked for
        return kDone;
    }
    const Status status = Run(app.get_subcommands().front()->get_name(), options);
    std::cout.flush();
    if (!std::cout) throw HostError("cannot write to the standard output");
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
