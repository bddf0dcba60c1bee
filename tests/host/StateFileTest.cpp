#include "host/commandline/state_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

#include "host/support/host_error.h"
#include "testkit/TemporaryDirectory.h"

using ::testing::HasSubstr;
using ::testing::ThrowsMessage;

namespace etmhost {
namespace {

// A host, with what `path` says of it.
struct LoadedHost {
    LoadedHost(const char* chip, const std::string& file_path)
        : path(file_path), host(*FindChip(chip)), file(path) {
        file.Load(host);
    }

    const std::string path;
    SimulatedHost host;
    StateFile file;
};

TEST(StateFile, EverythingSurvives) {
    const TemporaryDirectory directory;
    const std::string path = directory.PathOf("state.json");
    LoadedHost first("arm926", path);
    TargetState& state = first.host.target.state;
    state = {.control = 0x30F,
             .triggerCount = 4294967295u,
             .macro = "\xF6.mac", // not UTF-8
             .pinsReady = true,
             .trace = {PcTrace::Range, "main", "main+\"4\"", DataTrace::All, "1", "2", "\x80", 4,
                       true, true, true},
             .capture = {true, true, true, 7, 8, 9},
             .registers = {{0x40, 0xFFFFFFFF}},
             .dwt = {{1, 0x8000}}};
    first.host.settings["KVETM"]["BoardFile"] = "caf\xE9/x.mac";
    first.host.settings["other"]["key"] = "";
    first.file.Update(first.host);

    LoadedHost other("arm7", path);
    EXPECT_EQ(other.host.target.state, Target(*FindChip("arm7")).state) << "a target of its own";
    EXPECT_EQ(other.host.settings, first.host.settings) << "the settings are common";
    other.host.target.state.control = 1;
    other.file.Update(other.host);

    LoadedHost again("arm926", path);
    EXPECT_EQ(again.host.target.state, state);

    // What has gone from the host goes from the file, and does not come back from it.
    again.file.Update(again.host, [&again] {
        again.host.target.state.registers.clear();
        again.host.target.state.dwt.clear();
    });
    again.file.Update(again.host);
    LoadedHost without("arm926", path);
    EXPECT_TRUE(without.host.target.state.registers.empty());
    EXPECT_TRUE(without.host.target.state.dwt.empty());

    // No write can succeed any more, and none is tried without need.
    const std::string before = directory.Read("state.json");
    std::filesystem::create_directory(path + ".lock");
    again.file.Update(again.host);
    again.host.target.state.control = 3;
    EXPECT_THAT([&] { again.file.Update(again.host); },
                ThrowsMessage<HostError>(HasSubstr("cannot write")));
    EXPECT_EQ(directory.Read("state.json"), before);
    std::filesystem::remove(path + ".lock");
    again.file.Update(again.host);
    EXPECT_EQ(LoadedHost("arm926", path).host.target.state.control, 3u) << "made up for";
}

TEST(StateFile, SeveralProgramsLoseNothing) {
    const TemporaryDirectory directory;
    const std::string path = directory.PathOf("state.json");
    LoadedHost one("arm926", path), two("arm926", path);
    for (LoadedHost* host : {&one, &two, &one}) { // the last writer wins
        const uint32_t bits = host == &one ? 4 : 16;
        host->file.Update(host->host, [&] { host->host.target.state.trace.portSize = bits; });
        EXPECT_EQ(LoadedHost("arm926", path).host.target.state.trace.portSize, bits);
    }

    // Each counts in a place of its own; all count together in the trigger count.
    constexpr uint32_t kTimes = 100;
    uint32_t Capture::*const places[] = {&Capture::steps, &Capture::captured, &Capture::remaining};
    const auto count = [&path](uint32_t Capture::*place) {
        LoadedHost program("arm926", path);
        TargetState& state = program.host.target.state;
        for (uint32_t time = 0; time < kTimes; ++time)
            program.file.Update(program.host, [&] {
                ++(state.capture.*place);
                ++state.triggerCount;
                program.host.settings["times"][std::to_string(time)] = "counted";
            });
    };
    std::vector<std::thread> programs;
    for (const auto place : places) programs.emplace_back(count, place);
    const uint32_t before = one.host.target.state.triggerCount;
    for (std::thread& program : programs) program.join();
    LoadedHost last("arm926", path);
    const TargetState& state = last.host.target.state;
    for (const auto place : places) EXPECT_EQ(state.capture.*place, kTimes);
    EXPECT_EQ(state.triggerCount, before + std::size(places) * kTimes);
    EXPECT_EQ(last.host.settings["times"].size(), kTimes);
    using Entries = std::filesystem::directory_iterator;
    EXPECT_EQ(std::distance(Entries(directory.Path()), Entries()), 1) << "nothing stays behind";
}

TEST(StateFile, DamageIsReportedAndTheFileStaysAsItIs) {
    const TemporaryDirectory directory;
    const std::string path = directory.PathOf("state.json");
    LoadedHost whole("arm7", path);
    whole.host.settings["KVETM"]["BoardFile"] = "x";
    whole.file.Update(whole.host);
    const std::string sound = directory.Read("state.json");
    std::vector<std::string> damaged = {"", "[]", "\xFF\xFE", sound + "x",
                                        std::string(1000000, '[')};
    const auto damage = [&](const std::string& part, const std::string& other) {
        damaged.push_back(std::string(sound).replace(sound.find(part), part.size(), other));
    };
    damage("state 1", "state 2");
    damage("\"etmhost state 1\"", "7");
    damage("macro", "micro");
    for (const char* text : {"5", "[1,\"c\"]"}) damage("\"x\"", text);
    for (const char* pc : {"5", "-1", "4294967297"}) damage("pc\": 1", std::string("pc\": ") + pc);
    for (const std::string& content : damaged) {
        SCOPED_TRACE(content.substr(0, 1000));
        directory.Write("state.json", content);
        EXPECT_THAT([&] { LoadedHost("arm7", path); },
                    ThrowsMessage<HostError>(HasSubstr("state.json\" is damaged: ")));
        EXPECT_EQ(directory.Read("state.json"), content);
    }
}

} // namespace
} // namespace etmhost
