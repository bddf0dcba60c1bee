// Session: the module on the headless display, with the recording host attached.

#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "frame/interfaces/IOrnAPIBase.h"
#include "frame/slots.h"
#include "settings/jTraceSettings.h"
#include "testkit/RecordingHost.h"
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
        host.Detach(*control);
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

    std::string LastError() { return RecordingHost::LastError(*control); }

    RecordingHost host;
    HeadlessDisplay display;
    IOrnKVETMCtrl* control = nullptr;
};
