// Address entries, accepted and refused.

#include "text/ValidateAddress.h"

#include "tests/support/Session.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class Address : public Session {
protected:
    bool Validate(const char* text) {
        display.ClearLog();
        return ValidateAddress(&page, text);
    }
    CWnd page;
};

TEST_F(Address, IsOneIntegerConstantWhereTheHostDoesNotEvaluate) {
    for (const bool attached : {true, false}) {
        if (!attached) control->DetachInterface("IOrnTraceClient");
        for (const char* entry : {"0x1000", "4096", "'AB'", "  12", "12 \t", "12 // why"}) {
            EXPECT_TRUE(Validate(entry)) << entry;
            EXPECT_THAT(display.Log(), IsEmpty()) << entry;
        }
        for (const char* entry : {"main", "-4", "1.5", "0x", "1 2 ", "\"12\"", "//"}) {
            EXPECT_FALSE(Validate(entry)) << entry;
            EXPECT_THAT(display.Boxes(),
                        ElementsAre(std::string("[Cannot validate address] ") + entry));
            EXPECT_FALSE(ValidateAddress(nullptr, entry)) << entry;
        }
    }
}

TEST_F(Address, IsWhatTheHostTakesWhereItEvaluates) {
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
    for (const char* entry : {static_cast<const char*>(nullptr), "", " \t\r\n\v\f"}) {
        EXPECT_FALSE(Validate(entry));
        EXPECT_THAT(display.Boxes(),
                    ElementsAre("[Cannot validate address] Address entry is empty"));
    }
    EXPECT_THAT(host.TakeCalls(), IsEmpty());
}

} // namespace
