// Any text as a number or a yes of the capability report.

#include <cstdint>
#include <cstdlib>
#include <string>

#include "settings/ReadCapabilities.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string value(reinterpret_cast<const char*>(data), size);
    for (const std::string& report : {value, "label" + value, "label:" + value}) {
        int32_t field = 4711;
        if (!ScanNumber(report.c_str(), "label", &field) && field != 4711) std::abort();
        field = 4711;
        const bool read = ScanYesNo(report.c_str(), "label", &field);
        if (read ? field != 0 && field != 1 : field != 4711) std::abort();
    }
    return 0;
}
