// Session: the module on the headless display, with the recording host attached.
//
//     class Stories : public Session {};
//     TEST_F(Stories, OkSendsWhatDiffers) {
//         host.values[0] = 0x1;
//         OpenAnd([&] {
//             display.Click(1002);
//             display.Click(IDOK);
//         });
//         EXPECT_THAT(host.TakeChanges(), ElementsAre("SetValue(0x0,0x5)"));
//     }

#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "frame/interfaces/IOrnAPIBase.h"
#include "frame/slots.h"
#include "settings/jTraceSettings.h"
#include "tests/support/RecordingHost.h"
#include "toolkit/CWinApp.h"
#include "toolkit/headless/HeadlessDisplay.h"

class Session : public ::testing::Test {
protected:
    Session() {
        AfxGetApp()->UseDisplay(&display);
        OrnDLL()->SetModulePath("/opt/debugger/KVETMControl.so");
        control = static_cast<IOrnKVETMCtrl*>(OrnDLL()->CreateRowObject(0));
        host.Attach(*control);
    }

    ~Session() override {
        for (int32_t i = 0; i < control->GetRequiredCount(); ++i)
            control->DetachInterface(control->GetRequiredName(i));
        OrnDLL()->DestroyRowObject(0, control);
        AfxGetApp()->UseDisplay(nullptr);
        EXPECT_THAT(display.ScriptErrors(), ::testing::IsEmpty());
        EXPECT_EQ(display.OpenWindows(), 0);
    }

    /// Init if that has not happened yet, then Open with `script` for the sheet.
    bool OpenAnd(HeadlessDisplay::Script script) {
        if (g_Settings == nullptr && !control->Init(0)) ADD_FAILURE() << LastError();
        host.TakeCalls();
        display.OnNextDialog(std::move(script));
        return control->Open();
    }

    std::string LastError() {
        char text[260];
        control->GetLastError(text, sizeof text);
        return text;
    }

    RecordingHost host;
    HeadlessDisplay display;
    IOrnKVETMCtrl* control = nullptr;
};
