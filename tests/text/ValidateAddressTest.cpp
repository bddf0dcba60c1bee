// Address entries, accepted and refused.

#include "text/ValidateAddress.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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
        struct Row {
            const char* entry;
            const char* box;
        };
        for (const Row& row : {Row{"main", "main"}, Row{" -4", "-4"}, Row{"1.5", "1.5"},
                               Row{"0x", "0x"}, Row{"\n1 2 ", "1 2 "}, Row{"12abc", "12abc"},
                               Row{"\"12\"", "\"12\""}, Row{"//", "//"}}) {
            EXPECT_FALSE(Validate(row.entry)) << row.entry;
            EXPECT_THAT(display.Boxes(),
                        ElementsAre(std::string("[Cannot validate address] ") + row.box));
            EXPECT_FALSE(ValidateAddress(nullptr, row.entry)) << row.entry;
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
