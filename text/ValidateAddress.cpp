#include "text/ValidateAddress.h"

#include <string>

#include "frame/interfaces/IOrnTraceClient.h"
#include "frame/slots.h"
#include "text/TxtScan.h"
#include "toolkit/CWnd.h"

static bool Refuse(CWnd* parent, const char* text) {
    if (parent) parent->MessageBox(text, "Cannot validate address", MB_ICONHAND);
    return false;
}

static bool IsIntegerConstant(const char* text) {
    TxtScan scan(text, -1);
    const int32_t kind = scan.GetToken();
    return (kind == TK_DECIMAL || kind == TK_INTEGER) && scan.GetToken() == TK_END;
}

bool ValidateAddress(CWnd* parent, const char* text) {
    const std::string entry = text ? text : "";
    const size_t start = entry.find_first_not_of(" \t\n\v\f\r");
    if (start == std::string::npos) return Refuse(parent, "Address entry is empty");

    const std::string address = entry.substr(start);
    const bool hostEvaluates = g_TraceClient && g_TraceClient->Action("CheckAction", "Eval");
    const bool valid = hostEvaluates ? g_TraceClient->Action(("Eval " + address).c_str(), nullptr)
                                     : IsIntegerConstant(address.c_str());
    return valid || Refuse(parent, address.c_str());
}
