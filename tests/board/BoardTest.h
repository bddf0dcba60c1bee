// What the tests of the board files share: a board directory of their own, and the
// dialog over a settings record that was filled from a simulated target.

#pragma once

#include "board/jConfigureETM.h"
#include "platform/paths.h"
#include "testkit/TemporaryDirectory.h"
#include "tests/support/Session.h"

class BoardTest : public Session, protected TemporaryDirectory {
protected:
    BoardTest() {
        settings.SetTextAttribute(TA_BOARD_DIRECTORY, Path().c_str());
        host.TakeCalls();
    }

    /// Runs the dialog with a script; true if it ended with OK.
    bool Configure(HeadlessDisplay::Script script) {
        display.OnNextDialog(std::move(script));
        return jConfigureETM(nullptr).DoModal() == IDOK;
    }
    /// The longest name of a board file whose path begins with `directory`.
    static std::string LongestName(const std::string& directory) {
        return std::string(259 - directory.size() - 4, 'n') + ".mac";
    }
    std::string Selected() const { return settings.Working.BoardFile; }

    // The host has ports of 4, 8 and 16 bits, and two port modes.
    jTraceSettings& settings = control->Init(0) ? *g_Settings : throw LastError();
};

inline const std::string kMarker = ";[OrnithalWorksTraceInitFile]\r\n";
inline const std::string kGeneric = "Generic board - no trace init file";
