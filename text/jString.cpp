#include "text/jString.h"

#include <cstring>

namespace {

uint32_t Round8(uint32_t value) {
    return (value + 7) / 8 * 8;
}

} // namespace

jString::jString() : Data(new char[Round8(9)]), Length(0), Capacity(Round8(9)) {
    Data[0] = '\0';
}

jString::~jString() {
    delete[] Data;
}

void jString::Assign(const char* text) {
    if (text == nullptr) text = "";
    const auto length = static_cast<uint32_t>(std::strlen(text));
    if (length >= Capacity) Reallocate(Round8(length + 9), 0);
    std::memcpy(Data, text, length + 1);
    Length = length;
}

jString& jString::Append(const char* text) {
    if (text == nullptr) return *this;
    const uint32_t length = GetLength();
    const auto added = static_cast<uint32_t>(std::strlen(text));
    if (Capacity <= length + added) Reserve(length + added);
    std::memcpy(Data + length, text, added + 1);
    Length = length + added;
    return *this;
}

uint32_t jString::Reserve(uint32_t length) {
    const uint32_t present = GetLength();
    if (length < present) length = present;
    if (Capacity != length + 1) Reallocate(Round8(length + 1), present + 1);
    return Capacity - 1;
}

uint32_t jString::GetLength() {
    if (Length == kUnknownLength) Length = static_cast<uint32_t>(std::strlen(Data));
    return Length;
}

char& jString::At(uint32_t index) {
    const uint32_t length = GetLength();
    Length = kUnknownLength;
    return Data[index < length ? index : length];
}

char* jString::GetBuffer() {
    Length = kUnknownLength;
    return Data;
}

void jString::Reallocate(uint32_t capacity, uint32_t keep) {
    char* const data = new char[capacity];
    std::memcpy(data, Data, keep);
    delete[] Data;
    Data = data;
    Capacity = capacity;
}
