// What the tests of the board files share: a board directory of their own, a
// settings record filled from a simulated target, and the dialog without a screen.

#pragma once

#include <gmock/gmock.h>

#include <chrono>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <utility>

#include "board/jConfigureETM.h"
#include "frame/slots.h"
#include "settings/jTraceSettings.h"
#include "tests/support/RecordingHost.h"
#include "toolkit/CWinApp.h"
#include "toolkit/headless/HeadlessDisplay.h"

class BoardTest : public testing::Test {
protected:
    BoardTest() {
        const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
        directory = std::filesystem::temp_directory_path() / ("boards" + std::to_string(now));
        EXPECT_TRUE(std::filesystem::create_directory(directory));
        host.AttachSlots();
        g_Settings = &settings;
        AfxGetApp()->UseDisplay(&display);
        settings.SetTextAttribute(TA_BOARD_DIRECTORY, directory.string().c_str());
        EXPECT_TRUE(settings.ReadFromTarget());
        host.TakeCalls();
    }

    ~BoardTest() override {
        EXPECT_THAT(display.ScriptErrors(), testing::IsEmpty());
        EXPECT_EQ(display.OpenWindows(), 0);
        AfxGetApp()->UseDisplay(nullptr);
        g_Settings = nullptr;
        std::filesystem::remove_all(directory);
    }

    std::string PathOf(const std::string& name) const { return (directory / name).string(); }
    std::string Write(const std::string& name, const std::string& bytes) const {
        std::ofstream(PathOf(name), std::ios::binary) << bytes;
        return PathOf(name);
    }
    static std::string Read(const std::string& path) {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    /// Runs the dialog with a script; true if it ended with OK.
    bool Configure(HeadlessDisplay::Script script) {
        display.OnNextDialog(std::move(script));
        return jConfigureETM(nullptr).DoModal() == IDOK;
    }
    std::string Selected() const { return settings.Working.BoardFile; }

    std::filesystem::path directory;
    RecordingHost host; // ports of 4, 8 and 16 bits, two port modes
    HeadlessDisplay display;
    jTraceSettings settings;
};

inline const std::string kMarker = ";[OrnithalWorksTraceInitFile]\r\n";
inline const std::string kGeneric = "Generic board - no trace init file";
