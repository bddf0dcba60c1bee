// jString: a small growing string that lets its users write into its buffer.
//
// GetBuffer and At hand out access to the characters; the text may be longer or
// shorter afterwards. From then on the length counts as not known, and the next
// operation that needs it measures the text anew.

#pragma once

#include <cstdint>

class jString {
public:
    /// The value of Length that means "not known". A text of exactly this length
    /// is measured each time.
    static constexpr uint32_t kUnknownLength = 65535;

    jString();
    ~jString();
    jString(const jString&) = delete;
    jString& operator=(const jString&) = delete;

    /// Becomes a copy of `text`; null: empty. REQUIRES: `text` lies outside the
    /// string's own buffer.
    void Assign(const char* text);

    /// Adds a copy of `text`; null: nothing. The buffer grows to the next multiple
    /// of 8 and no further: whoever appends often reserves ahead. Returns the
    /// string itself. REQUIRES: `text` lies outside the string's own buffer.
    jString& Append(const char* text);

    /// Makes the buffer fit a text of `length` characters, or the present text if
    /// that is longer; it may shrink. Returns the number of characters that fit.
    uint32_t Reserve(uint32_t length);

    uint32_t GetLength();

    /// One character; at or beyond the end the terminating NUL.
    char& At(uint32_t index);

    /// The text; remains valid until the next Assign, Append or Reserve.
    char* GetBuffer();

    char* Data;        // owned, never null, always terminated
    uint32_t Length;   // or kUnknownLength
    uint32_t Capacity; // bytes at Data, a multiple of 8, above the length

private:
    void Reallocate(uint32_t capacity, uint32_t keep);
};
