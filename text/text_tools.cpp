#include "text/text_tools.h"

#include <cstring>

#include "platform/compare.h"

char* CopyBounded(char* dst, size_t size, const char* src) {
    if (dst == nullptr || size == 0) return dst;
    std::strncpy(dst, src != nullptr ? src : "", size - 1);
    dst[size - 1] = '\0';
    return dst;
}

const char* FindNoCase(const char* text, const char* pattern) {
    if (text == nullptr || pattern == nullptr || *pattern == '\0') return nullptr;
    const size_t length = std::strlen(pattern);
    for (; *text != '\0'; ++text)
        if (CompareNoCaseN(text, pattern, length) == 0) return text;
    return nullptr;
}

void CutAtChar(char* text, char ch) {
    if (text == nullptr) return;
    if (char* const found = std::strchr(text, ch)) *found = '\0';
}
