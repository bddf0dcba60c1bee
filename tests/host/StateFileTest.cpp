#include "host/state_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/host_error.h"
#include "tests/support/TemporaryDirectory.h"

using ::testing::HasSubstr;
using ::testing::ThrowsMessage;

namespace etmhost {
namespace {

// A host, with what `path` says of it.
struct LoadedHost {
    LoadedHost(const char* chip, const std::string& path)
        : host(*FindChip(chip), {}, Journal()), file(path) {
        file.Load(host);
    }

    SimulatedHost host;
    StateFile file;
};

TEST(StateFile, EverythingSurvives) {
    const TemporaryDirectory directory;
    const std::string path = directory.PathOf("state.json");
    LoadedHost first("arm926", path);
    TargetState& state = first.host.target.state;
    state = {
        .control = 0x30F,
        .triggerCount = 4294967295u,
        .macro = "\xF6.mac", // not UTF-8
        .pinsReady = true,
        .trace = {PcTrace::Range, "main", "main+\"4\"", DataTrace::All, "1", "2", "\x80", 4, true},
        .capture = {true, true, true, 7, 8, 9}};
    first.host.settings["KVETM"]["BoardFile"] = "caf\xE9/x.mac";
    first.host.settings["other"]["key"] = "";
    first.file.Save(first.host);

    LoadedHost other("arm7", path);
    EXPECT_EQ(other.host.target.state, Target(*FindChip("arm7")).state) << "a target of its own";
    EXPECT_EQ(other.host.settings, first.host.settings) << "the settings are common";
    other.host.target.state.control = 1;
    other.file.Save(other.host);

    LoadedHost again("arm926", path);
    EXPECT_EQ(again.host.target.state, state);
    EXPECT_EQ(again.host.settings, first.host.settings);

    // No write can succeed any more, and none is tried without need.
    const std::string before = directory.Read("state.json");
    std::filesystem::create_directory(path + ".new");
    again.file.Save(again.host);
    again.host.target.state.control = 3;
    EXPECT_THAT([&] { again.file.Save(again.host); },
                ThrowsMessage<HostError>(HasSubstr("cannot write")));
    EXPECT_EQ(directory.Read("state.json"), before);
}

TEST(StateFile, DamageIsReportedAndTheFileStaysAsItIs) {
    const TemporaryDirectory directory;
    const std::string path = directory.PathOf("state.json");
    LoadedHost whole("arm7", path);
    whole.host.settings["KVETM"]["BoardFile"] = "x";
    whole.file.Save(whole.host);
    const std::string sound = directory.Read("state.json");
    std::vector<std::string> damaged = {"", "[]", "\xFF\xFE", sound + "x",
                                        std::string(1000000, '[')};
    const auto damage = [&](const std::string& part, const std::string& other) {
        damaged.push_back(std::string(sound).replace(sound.find(part), part.size(), other));
    };
    damage("state 1", "state 2");
    damage("\"etmhost state 1\"", "7");
    damage("targets", "goals");
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
