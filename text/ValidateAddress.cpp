#include "text/ValidateAddress.h"

#include <string>

#include "frame/interfaces/IOrnTraceClient.h"
#include "frame/slots.h"
#include "text/TxtScan.h"
#include "toolkit/CWnd.h"

namespace {

bool Refuse(CWnd* parent, const char* text) {
    if (parent != nullptr) parent->MessageBox(text, "Cannot validate address", MB_ICONHAND);
    return false;
}

bool IsIntegerConstant(const char* text) {
    TxtScan scan(text, -1);
    const int32_t kind = scan.GetToken();
    return (kind == TK_DECIMAL || kind == TK_INTEGER) && scan.GetToken() == TK_END;
}

} // namespace

bool ValidateAddress(CWnd* parent, const char* text) {
    const std::string entry = text != nullptr ? text : "";
    const size_t start = entry.find_first_not_of(" \t\n\v\f\r");
    if (start == std::string::npos) return Refuse(parent, "Address entry is empty");

    const std::string address = entry.substr(start);
    const auto asks = [](const char* action, const char* argument) {
        return g_TraceClient->Action(action, argument) != 0;
    };
    const bool hostEvaluates = g_TraceClient != nullptr && asks("CheckAction", "Eval");
    const bool valid = hostEvaluates ? asks(("Eval " + address).c_str(), nullptr)
                                     : IsIntegerConstant(address.c_str());
    return valid || Refuse(parent, address.c_str());
}
