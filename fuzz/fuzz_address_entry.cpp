// Any text as an address entry, judged without a host. What is accepted is a
// number with a digit or a character constant in it.

#include <string>

#include "fuzz/target.h"
#include "text/ValidateAddress.h"

static void AddressEntry(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const std::string entry = text.c_str(); // up to its NUL
    const bool valid = ValidateAddress(nullptr, text.c_str());
    Require(!valid || entry.find_first_of("0123456789$'") != std::string::npos);
    Require(valid == ValidateAddress(nullptr, (" " + entry).c_str()));
}

static const FuzzTarget kAddressEntry("fuzz_address_entry", AddressEntry);
