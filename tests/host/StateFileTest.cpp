#include "host/state_file.h"

#include <gtest/gtest.h>

#include "host/host_error.h"
#include "tests/host/TemporaryDirectory.h"

namespace etmhost {
namespace {

// What the HostError of `action` says; empty if there was none.
template <class Action> std::string ErrorOf(Action action) {
    try {
        action();
    } catch (const HostError& error) {
        return error.what();
    }
    return {};
}

// A host, with what `file` says of it.
struct LoadedHost {
    LoadedHost(const char* chip, const std::filesystem::path& path)
        : host(*FindChip(chip), {}, Journal()), file(path) {
        file.Load(host);
    }

    SimulatedHost host;
    StateFile file;
};

TEST(StateFile, EverythingSurvives) {
    const TemporaryDirectory directory;
    const std::filesystem::path path = directory.path / "state.json";
    LoadedHost first("arm926", path);
    TargetState& state = first.host.target.state;
    state = {
        .control = 0x30F,
        .triggerCount = 4294967295u,
        .macro = "b\xF6"
                 "ard.mac", // not UTF-8
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
}

TEST(StateFile, DamageIsReportedAndTheFileStaysAsItIs) {
    const TemporaryDirectory directory;
    const std::string target = R"({"control":0,"triggerCount":0,"macro":"","pinsReady":false,)"
                               R"("trace":{"pc":PC,"pcBegin":"","pcEnd":"","data":0,)"
                               R"("dataBegin":"","dataEnd":"","trigger":"","portSize":4,)"
                               R"("halfRate":false},"capture":{"running":false,"ended":false,)"
                               R"("triggered":false,"steps":0,"captured":0,"remaining":0}})";
    const auto withPc = [&target](const std::string& pc) {
        std::string text = target;
        return R"({"format":"etmhost state 1","settings":{},"targets":{"arm7":)" +
               text.replace(text.find("PC"), 2, pc) + "}}";
    };
    const std::string sound = directory.Write("sound.json", withPc("1"));
    EXPECT_EQ(ErrorOf([&] { LoadedHost("arm7", sound); }), "");
    const std::string rows[] = {
        "",
        "{",
        "[]",
        "null",
        "\xFF\xFE",
        "{\"format\":\"etmhost state 2\",\"settings\":{},\"targets\":{}}",
        "{\"format\":7,\"settings\":{},\"targets\":{}}",
        "{\"format\":\"etmhost state 1\",\"settings\":{}}",
        "{\"format\":\"etmhost state 1\",\"settings\":{\"a\":{\"b\":5}},\"targets\":{}}",
        "{\"format\":\"etmhost state "
        "1\",\"settings\":{\"a\":{\"b\":[1,256,\"c\"]}},\"targets\":{}}",
        "{\"format\":\"etmhost state 1\",\"settings\":{},\"targets\":{\"arm7\":{}}}",
        withPc("5"),
        withPc("-1"),
        withPc("1.5"),
        withPc("4294967297"),
        withPc("\"all\""),
        withPc("1") + "x",
        std::string(1000000, '['),
    };
    for (const std::string& content : rows) {
        SCOPED_TRACE(content.substr(0, 200));
        const std::string path = directory.Write("state.json", content);
        const std::string error = ErrorOf([&] { LoadedHost("arm7", path); });
        EXPECT_NE(error.find("state.json\" is damaged: "), std::string::npos) << error;
        EXPECT_EQ(directory.Read("state.json"), content);
    }
}

TEST(StateFile, FailedWriteKeepsTheOldFile) {
    const TemporaryDirectory directory;
    const std::filesystem::path path = directory.path / "state.json";
    LoadedHost loaded("arm7", path);
    loaded.host.target.state.control = 1;
    loaded.file.Save(loaded.host);
    const std::string before = directory.Read("state.json");
    std::filesystem::create_directory(directory.path / "state.json.new"); // in the way
    loaded.host.target.state.control = 3;
    EXPECT_NE(ErrorOf([&] { loaded.file.Save(loaded.host); }).find("cannot write"),
              std::string::npos);
    EXPECT_EQ(directory.Read("state.json"), before);
}

TEST(StateFile, UnchangedStateIsNotWritten) {
    const TemporaryDirectory directory;
    const std::filesystem::path path = directory.path / "state.json";
    LoadedHost first("arm7", path);
    first.host.target.state.control = 1;
    first.file.Save(first.host);
    std::filesystem::create_directory(directory.path / "state.json.new"); // no write can succeed
    LoadedHost second("arm7", path);
    EXPECT_EQ(ErrorOf([&] { second.file.Save(second.host); }), "");
}

TEST(StateFile, OnlyRegularFilesInExistingDirectories) {
    const TemporaryDirectory directory;
    EXPECT_NE(ErrorOf([&] { StateFile file(directory.path); }).find("cannot read"),
              std::string::npos);
    EXPECT_NE(ErrorOf([&] { StateFile file(directory.path / "no" / "x"); }).find("directory"),
              std::string::npos);
}

} // namespace
} // namespace etmhost
