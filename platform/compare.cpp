#include "platform/compare.h"

#include <cstdint>

namespace {

int SmallLetter(char ch) {
    return ch >= 'A' && ch <= 'Z' ? ch - 'A' + 'a' : static_cast<unsigned char>(ch);
}

} // namespace

int CompareNoCase(const char* left, const char* right) {
    return CompareNoCaseN(left, right, SIZE_MAX);
}

int CompareNoCaseN(const char* left, const char* right, size_t length) {
    if (left == nullptr) left = "";
    if (right == nullptr) right = "";
    for (size_t i = 0; i < length; ++i) {
        const int difference =
            left[i] != right[i] ? SmallLetter(left[i]) - SmallLetter(right[i]) : 0;
        if (difference != 0 || left[i] == '\0') return difference;
    }
    return 0;
}
