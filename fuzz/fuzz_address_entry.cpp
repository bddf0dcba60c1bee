// Any text as an address entry, judged without a host. What is accepted is a
// number with a digit or a character constant in it.

#include <cstdint>
#include <cstdlib>
#include <string>

#include "text/ValidateAddress.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const std::string entry = text.c_str(); // up to its NUL
    const bool valid = ValidateAddress(nullptr, text.c_str());
    if (valid && entry.find_first_of("0123456789$'") == std::string::npos) std::abort();
    if (valid != ValidateAddress(nullptr, (" " + entry).c_str())) std::abort();
    return 0;
}
