// The host's command language. The first byte chooses the chip; the lines up to an empty one are
// commands, and what follows is a board file that is run at the end.

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <sstream>

#include "fuzz/target.h"
#include "host/target/command.h"

using namespace etmhost;

namespace {

/// Requires `refusal` to be lines for a person: "COMMAND: REASON" without a control character.
void CheckRefusal(std::string_view command, const Refusal& refusal) {
    if (!refusal) return;
    Require(!refusal->empty());
    std::ostringstream out;
    PrintRefusal(out, command, *refusal);
    const std::string lines = out.str();
    Require(std::count(lines.begin(), lines.end(), '\n') ==
            std::count(refusal->begin(), refusal->end(), '\n') + 1);
    for (const char c : lines) Require(c == '\n' || (c & 0xE0) != 0);
}

/// Writes `text` into the file `descriptor`, which may hold something.
void Fill(int descriptor, std::string_view text) {
    Require(ftruncate(descriptor, 0) == 0);
    Require(pwrite(descriptor, text.data(), text.size(), 0) == static_cast<ssize_t>(text.size()));
}

} // namespace

static void HostCommands(const uint8_t* data, size_t size) {
    if (size == 0) return;
    static const int board = memfd_create("board", 0);
    static const Symbols symbols = {{"main", 0x8000}, {"a.b", 1}};
    Target target(Chips()[data[0] % Chips().size()], symbols);
    CommandLanguage language(target, symbols);
    std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
    while (!text.empty() && text.front() != '\n') {
        const std::string_view command = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(command.size() + 1, text.size()));
        const TargetState before = target.state;
        std::ostringstream stream;
        const Refusal refusal = language.Execute(command, &stream);
        CheckRefusal(command, refusal);
        // One line, unless a board file was run, which may have gone a part of its way.
        if (refusal && target.state.macro.empty())
            Require(target.state == before && refusal->find('\n') == refusal->npos);
    }
    Fill(board, text);
    const std::string macro = "macro /proc/self/fd/" + std::to_string(board);
    CheckRefusal(macro, language.Execute(macro, nullptr));

    Require((target.state.control & ~0x33Fu) == 0); // the bits that the contract names
    const std::vector<uint32_t> ports = PortSizes(target.hardware().portSizes);
    Require(std::find(ports.begin(), ports.end(), target.Settings().portSize) != ports.end());
    for (int step = 0; step < 20; ++step) target.Poll();
    Require(target.state.capture.captured <= target.hardware().capacity);
    // The settings lines are commands that the target takes, but for their spaces.
    for (const std::string& line : target.SettingsLines()) Require(line.starts_with("ETM "));
}

static const FuzzTarget kHostCommands("fuzz_host_commands", HostCommands);
