// PeerScanner: the tokenizer's work as a generated scanner does it, to compare with.
//
// It takes the same tokens apart and copies their texts too, but looks less closely at
// malformed ones. PeerScanner.re is what re2c generates it from.

#pragma once

#include <cstddef>
#include <cstdint>

class PeerScanner {
public:
    void Init(const char* text);
    int32_t GetToken();

    union {
        int32_t Integer;
        double Float;
    } Value;
    char Text[2048];
    int32_t Kind;
    int32_t Line;
    int32_t Column;
    const unsigned char* TokenStart;

private:
    int32_t Take(int32_t kind, const unsigned char* begin, const unsigned char* end);
    int32_t TakeHex(const unsigned char* begin, const unsigned char* end);
    int32_t TakeQuoted(int32_t kind);

    const unsigned char* m_Cursor;
    const unsigned char* m_LineStart;
};
