#include "pages/CheckComparatorIndex.h"

#include <cctype>

#include "toolkit/CWnd.h"

namespace {

const char* SkipSpace(const char* text) {
    while (std::isspace(static_cast<unsigned char>(*text)) != 0) ++text;
    return text;
}

} // namespace

bool CheckComparatorIndex(CWnd& owner, const char* text) {
    text = SkipSpace(text);
    if (*text == '\0') {
        owner.MessageBox("Address entry is empty", "Cannot validate address", MB_ICONHAND);
        return false;
    }
    if (*text >= '0' && *text <= '3' && *SkipSpace(text + 1) == '\0') return true;
    owner.MessageBox("DWT comparator index (0..3) must be used instead of address",
                     "Incorrect DWT comparator", MB_ICONHAND);
    return false;
}
