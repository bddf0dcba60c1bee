// A whole read of the settings, and an apply of all that was read. The first bytes
// are the values by id; what follows is the settings text, line by line, and the
// capability report too.

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "frame/slots.h"
#include "fuzz/target.h"
#include "settings/jTraceSettings.h"
#include "testkit/SilentTrace.h"

namespace {

struct FuzzedTrace final : SilentTrace {
    OrnBool GetValue(uint32_t id, uint32_t* value) override {
        *value = words[id % std::size(words)];
        return 1;
    }
    const char* GetSettingsLine(uint32_t index) override {
        return index < lines.size() ? lines[index].c_str() : nullptr;
    }

    uint32_t words[8] = {};
    std::vector<std::string> lines;
};

} // namespace

static void SettingsText(const uint8_t* data, size_t size) {
    FuzzedTrace host;
    const size_t head = std::min(size, sizeof host.words);
    std::copy(data, data + head, reinterpret_cast<uint8_t*>(host.words));
    host.report.assign(reinterpret_cast<const char*>(data) + head, size - head);
    for (size_t start = 0; start <= host.report.size();) {
        const size_t end = std::min(host.report.find('\n', start), host.report.size());
        host.lines.push_back(host.report.substr(start, end - start));
        start = end + 1;
    }
    g_VETMTrace = &host;

    jTraceSettings settings;
    Require(settings.ReadFromTarget() && !settings.IsModified());
    for (int32_t id = TA_PORT_SIZE; id <= TA_CONTEXT_ID_SIZE; ++id) {
        char text[64];
        uint32_t value = 0;
        for (int32_t index = 0; index < settings.GetChoiceCount(id); ++index)
            Require(settings.GetChoice(id, index, text, sizeof text, value));
    }
    settings.Snapshot = jTraceState();
    Require(settings.ApplyToTarget() && !settings.IsModified());
    g_VETMTrace = nullptr;
}

static const FuzzTarget kSettingsText("fuzz_settings_text", SettingsText);
