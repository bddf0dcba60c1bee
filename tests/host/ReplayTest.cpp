#include "host/replay/Replay.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/module/module_session.h"
#include "host/record/json_lines.h"
#include "host/support/host_error.h"
#include "tests/support/built.h"

using ::testing::HasSubstr;
using ::testing::StartsWith;

namespace etmhost {
namespace {

using Lines = std::vector<std::string>;

struct LineWriter final : record::EventWriter {
    void Write(const record::Event& event) override { lines.push_back(record::ToJsonLine(event)); }
    Lines lines;
};

std::string Joined(const Lines& lines) {
    std::string text;
    for (const std::string& line : lines) text += line + "\n";
    return text;
}

/// In the first line that holds `at`, `to` stands in place of `from`; of the whole line if that is
/// empty. What is edited loses its sum, unless somebody forgot about it.
struct Edit {
    const char *at, *from, *to;
    bool forgotten = false;
};

/// Returns the number of the line.
size_t Change(Lines& lines, const Edit& edit) {
    for (size_t index = 0; index < lines.size(); ++index) {
        std::string& line = lines[index];
        if (line.find(edit.at) == line.npos) continue;
        if (!edit.forgotten) line = line.substr(0, line.find(",\"sum\"")) + "}";
        if (*edit.from != '\0')
            line.replace(line.find(edit.from), std::string(edit.from).size(), edit.to);
        else if (*edit.to != '\0')
            line = edit.to;
        else
            lines.erase(lines.begin() + static_cast<std::ptrdiff_t>(index));
        return index + 1;
    }
    ADD_FAILURE() << "there is no line with " << edit.at;
    return 0;
}

class OneSession : public ::testing::Test {
protected:
    OneSession()
        : module(std::filesystem::path(built::kEtmhost)
                     .replace_filename(std::string("KVETMControl") + LibraryExtension())) {
        LineWriter writer;
        record::EventStream events;
        events.Add(writer);
        events.Tell("begin", {{"format", record::kFormat}, {"program", "a test"}});
        SimulatedHost host(*FindChip("cortex-m3"), {}, events);
        ModuleSession(module.object(), module.path(), host).Apply();
        recorded = writer.lines;
    }

    /// Returns "LINE: expected X, got Y" of the first difference, or that of what is refused.
    std::string Replayed(const Lines& lines) {
        LineWriter writer;
        record::EventStream events;
        events.Add(writer);
        try {
            const Recording recording = ParseRecording("r", Joined(lines));
            Replay replay(recording, module.object(), events);
            replay.Run();
            played = writer.lines;
            if (!recording.altered.empty())
                return std::to_string(recording.altered.front()) + ": altered";
            if (!replay.difference()) return "";
            const auto& [line, expected, got] = *replay.difference();
            return std::to_string(line) + ": expected " + expected + ", got " + got;
        } catch (const HostError& error) {
            EXPECT_THAT(error.what(), StartsWith("r:"));
            return error.what() + 2;
        }
    }

    LoadedModule module;
    Lines recorded, played;
};

// Whatever became of it, the module is at rest again behind each row.
TEST_F(OneSession, IsNamedByTheFirstLineThatDiffers) {
    const struct {
        std::vector<Edit> edits;
        const char* text; ///< behind the number of the last line that was edited
    } rows[] = {
        {{}, nullptr},
        // As other hosts may have it.
        {{{"\"begin\"", "\"format\":1", "\"more\":[1],\"format\": 1"}}, nullptr},
        {{{"\"name\":\"IOrnTraceClient\"},", "", ""}, {"\"IOrnTraceClient\",\"object\"", "", ""}},
         "the end of IOrnKVETMCtrl.AttachInterface, but no call runs"},
        {{{"\"object\":\"IOrnEmu\"}", "\"object\":\"IOrnEmu\"}", "\"object\":null}"}}, nullptr},
        {{{"\"id\":16777220", "\"return\":true", "\"return\":2"}}, nullptr},
        {{{"\"capability\"", "\"report\":\"E", "\"report\":[255,0],\"x\":\"E"}},
         "IOrnVETMTrace.Command: it has no result \"x\""},
        {{{"\"GetSettingsLine\",\"arguments\":{\"index\":1", "",
           "{\"direction\":\"toHost\",\"phase\":\"call\",\"object\":\"IOrnVETMTrace\","
           "\"operation\":"
           "\"GetSettingsLine\",\"arguments\":{\"index\":1}}\n"
           "{\"direction\":\"toModule\",\"phase\":\"call\",\"object\":\"IOrnKVETMCtrl\","
           "\"operation\":\"Init\",\"arguments\":{\"option\":0}}\n"
           "{\"direction\":\"toModule\",\"phase\":\"return\",\"object\":\"IOrnKVETMCtrl\","
           "\"operation\":\"Init\",\"results\":{\"return\":false}}\n"
           "{\"direction\":\"toHost\",\"phase\":\"return\",\"object\":\"IOrnVETMTrace\","
           "\"operation\":\"GetSettingsLine\",\"results\":{\"return\":\"ETM DATA = none\"}}"}},
         nullptr},
        // What the module asks, and what it answers.
        {{{"\"id\":16777236", "16777236", "3"}}, "expected GetValue 0x3, got GetValue 0x1000014"},
        {{{"\"capability\"", "\"stream\":true", "\"stream\":false"}},
         "expected Command \"capability\", got Command \"capability\" stream not null"},
        {{{"\"id\":5", "", ""}}, "expected Command \"capability\", got GetValue 0x5"},
        {{{"\"operation\":\"Init\",\"results\"", "true", "false"}},
         "expected Init -> no, got Init -> yes"},
        {{{"\"return\":\"IOrnXTrace\"", "IOrnXTrace", "IOrnYTrace"}},
         "expected GetRequiredName -> \"IOrnYTrace\", got GetRequiredName -> \"IOrnXTrace\""},
        {{{"ETM DATA", "none", "all", true}}, "altered"},
    };
    for (const auto& [edits, text] : rows) {
        Lines lines = recorded;
        size_t line = 0;
        for (const Edit& edit : edits) line = Change(lines, edit);
        SCOPED_TRACE(edits.empty() ? "" : edits.back().at);
        EXPECT_EQ(Replayed(lines), text == nullptr ? "" : std::to_string(line) + ": " + text);
    }
    EXPECT_EQ(Replayed(recorded), "");
    std::erase_if(recorded, [](const std::string& line) {
        return line.find("\"direction\":\"host\"") != line.npos;
    });
    EXPECT_EQ(Joined(played), Joined(recorded)) << "a replay is recorded as what it replays";
    recorded.resize(40);
    EXPECT_THAT(Replayed(recorded), HasSubstr("a recording begins with \"begin\""));
}

} // namespace
} // namespace etmhost
