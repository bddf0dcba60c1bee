// jKVETMCtrl::Open: the life of the "ETM Control" sheet inside one host call.

#include <memory>
#include <new>

#include "frame/guard.h"
#include "frame/interfaces/IOrnVETMTrace.h"
#include "frame/jKVETMCtrl.h"
#include "frame/slots.h"
#include "pages/jControlPage.h"
#include "pages/jDWTPage.h"
#include "pages/jMainPropSheet.h"
#include "pages/jStatusPage.h"
#include "pages/jTPIUPage.h"
#include "pages/jTriggerPage.h"
#include "settings/jTraceSettings.h"
#include "toolkit/CWinApp.h"

namespace {

constexpr const char* kNoWindow = "Error while creating main window";

struct Pages {
    jControlPage control;
    jTriggerPage trigger;
    jStatusPage status;
    jDWTPage dwt;   // not a tab
    jTPIUPage tpiu; // not a tab
};

/// The sheet and its pages, taken down on every way out of Open.
struct OpenedSheet {
    std::unique_ptr<jMainPropSheet> sheet;
    std::unique_ptr<Pages> pages;

    ~OpenedSheet() {
        sheet.reset();
        g_MainSheet = nullptr;
        g_ControlPage = nullptr;
        g_SheetOpen = 0;
        g_BoardQueryPending = 0; // a sheet that closed early leaves no question to the next one
        pages.reset();
    }
};

} // namespace

bool jKVETMCtrl::OpenSheet() {
    LastError.clear();
    if (g_API == nullptr) return Fail("IOrnAPI interface is not attached");
    if (g_VETMTrace == nullptr) return Fail("IOrnVETM interface is not attached");
    if (g_Settings == nullptr) return Fail("No memory");
    if (!g_Settings->ReadFromTarget()) return Fail("Cannot read ETM/Trace settings from target");
    g_Ctrl = this; // an Init that could not read the target left it unset

    std::string reason;
    if (!AfxGetApp()->GetDisplay().Prepare(reason))
        return Fail(std::string(kNoWindow) + ": " + reason);
    OpenedSheet opened;
    opened.sheet.reset(new (std::nothrow) jMainPropSheet("ETM Control", nullptr, 0));
    if (!opened.sheet) return Fail(kNoWindow);
    g_MainSheet = opened.sheet.get();
    opened.pages = std::make_unique<Pages>();
    opened.sheet->AddPage(&opened.pages->control);
    opened.sheet->AddPage(&opened.pages->trigger);
    opened.sheet->AddPage(&opened.pages->status);
    g_SheetOpen = 1;
    g_ControlPage = &opened.pages->control;
    opened.sheet->DoModal();
    return true;
}

/// Open, called from inside the sheet: asks for the board file alone.
bool jKVETMCtrl::OpenInsideSheet() {
    std::string reason;
    if (!AfxGetApp()->GetDisplay().Prepare(reason)) return false; // say, another thread
    if (!g_ControlPage->RunConfigureDialog() || g_ConfigAccepted == 0) return false;
    g_Settings->ApplyToTarget();
    return true;
}
