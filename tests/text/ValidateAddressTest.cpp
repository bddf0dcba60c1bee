// Address entries, accepted and refused.

#include "text/ValidateAddress.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

#include "frame/slots.h"
#include "tests/support/RecordingHost.h"
#include "toolkit/CWinApp.h"
#include "toolkit/headless/HeadlessDisplay.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class Address : public ::testing::Test {
protected:
    Address() { AfxGetApp()->UseDisplay(&display); }
    ~Address() override { AfxGetApp()->UseDisplay(nullptr); }

    bool Validate(const char* text) {
        display.ClearLog();
        return ValidateAddress(&page, text);
    }

    RecordingHost host;
    HeadlessDisplay display;
    CWnd page;
};

TEST_F(Address, IsOneIntegerConstantWhereTheHostDoesNotEvaluate) {
    for (const bool attached : {false, true}) {
        if (attached) host.AttachSlots();
        for (const char* entry : {"0x1000", "4096", "1000h", "$1000", "4k", "0b101", "'AB'", "  12",
                                  "12 \t", "12 // why", "4294967296"}) {
            EXPECT_TRUE(Validate(entry)) << entry;
            EXPECT_THAT(display.Log(), IsEmpty()) << entry;
        }
        for (const char* entry : {"main", " -4", "1.5", "0x", "\n1 2 ", "12abc", "\"12\"", "//"}) {
            EXPECT_FALSE(Validate(entry)) << entry;
            const size_t blanks = std::strspn(entry, " \n");
            EXPECT_THAT(display.Boxes(),
                        ElementsAre(std::string("[Cannot validate address] ") + (entry + blanks)));
            EXPECT_FALSE(ValidateAddress(nullptr, entry)) << entry;
        }
    }
}

TEST_F(Address, IsWhatTheHostTakesWhereItEvaluates) {
    host.AttachSlots();
    host.evaluates = true;
    host.validExpressions = {"main+4", "end "};
    EXPECT_TRUE(Validate(" \t\n\v\f\rmain+4"));
    EXPECT_TRUE(Validate("end "));
    EXPECT_THAT(display.Log(), IsEmpty());
    EXPECT_FALSE(Validate(" 0x1000"));
    EXPECT_THAT(display.Boxes(), ElementsAre("[Cannot validate address] 0x1000"));
    EXPECT_THAT(host.TakeCalls(),
                ElementsAre("Action(CheckAction,Eval)", "Action(Eval main+4,null)",
                            "Action(CheckAction,Eval)", "Action(Eval end ,null)",
                            "Action(CheckAction,Eval)", "Action(Eval 0x1000,null)"));
}

TEST_F(Address, IsNotEmpty) {
    host.AttachSlots();
    host.evaluates = true;
    for (const char* entry : {static_cast<const char*>(nullptr), "", " \t\r\n\v\f"}) {
        EXPECT_FALSE(Validate(entry));
        EXPECT_THAT(display.Boxes(),
                    ElementsAre("[Cannot validate address] Address entry is empty"));
        EXPECT_FALSE(ValidateAddress(nullptr, entry));
    }
    EXPECT_THAT(host.TakeCalls(), IsEmpty());
}

} // namespace
