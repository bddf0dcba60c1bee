#include "check/texts.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <vector>

#include "check/system.h"

namespace hostcheck {

namespace {

constexpr size_t kPage = 4096;
constexpr size_t kLongest = size_t{16} << 20;
constexpr char kUsedAgain = '\xDD';

// Neither on the stack nor from the heap: what is read may lie where both are free.
char g_Page[kPage];
std::mutex g_PageMutex;

/// Writes over the stack below the caller, as the next calls would.
void UseStackAgain() {
    volatile char below[kPage * 2];
    for (size_t i = 0; i < sizeof below; ++i) below[i] = kUsedAgain;
}

/// Writes over blocks of the heap that a text of `length` may have had, if they are free.
void UseHeapAgain(size_t length) {
    constexpr size_t kStep = 16;
    char* blocks[64];
    size_t count = 0;
    for (size_t size = length + 1; size <= 2 * length + 2 * kStep && count < std::size(blocks);
         size += std::max(kStep, length / 16)) {
        char* const block = static_cast<char*>(std::malloc(size));
        if (block == nullptr) break;
        std::memset(block, kUsedAgain, size);
        blocks[count++] = block;
    }
    volatile char used = 0; // else nobody would see that they were written to
    for (size_t i = 0; i < count; ++i) used = static_cast<volatile char*>(blocks[i])[length];
    static_cast<void>(used);
    while (count > 0) std::free(blocks[--count]);
}

} // namespace

std::optional<std::string> CopyText(const char* text) {
    std::string copy;
    const std::lock_guard lock(g_PageMutex);
    while (copy.size() < kLongest) {
        const char* const at = text + copy.size();
        const size_t inPage = kPage - reinterpret_cast<uintptr_t>(at) % kPage;
        const size_t count = ReadMemory(at, g_Page, inPage);
        const size_t length = strnlen(g_Page, count);
        copy.append(g_Page, length);
        if (length < count) return copy;
        if (count < inPage) break;
    }
    return std::nullopt;
}

std::string Quote(std::string_view text) {
    constexpr size_t kLine = 100;
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string quoted = "\"";
    for (const char c : text.substr(0, kLine)) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '\n')
            quoted += "\\n";
        else if (c == '\r')
            quoted += "\\r";
        else if (byte < ' ' || byte == 0x7F)
            quoted += std::string("\\x") + kDigits[byte >> 4] + kDigits[byte & 15];
        else
            quoted += c;
    }
    return quoted + (text.size() > kLine ? "...\"" : "\"");
}

KeptText::State KeptText::Take(const char* text, bool thorough) {
    m_Taken = text != nullptr;
    m_At = nullptr;
    if (!m_Taken) return State::Fine;
    std::optional<std::string> copy = CopyText(text);
    m_Copy = copy.value_or("");
    if (!copy) return State::Bad;
    m_At = text;
    if (!thorough) return State::Fine;
    UseStackAgain();
    UseHeapAgain(m_Copy.size());
    if (Compare() == State::Fine) return State::Fine;
    m_At = nullptr;
    return State::Gone;
}

KeptText::State KeptText::Release() {
    const State state = Compare();
    m_At = nullptr;
    return state;
}

KeptText::State KeptText::Compare() const {
    if (m_At == nullptr) return State::Fine;
    const std::lock_guard lock(g_PageMutex);
    for (size_t done = 0; done <= m_Copy.size();) { // the NUL too
        const size_t size = std::min(kPage, m_Copy.size() + 1 - done);
        if (ReadMemory(m_At + done, g_Page, size) != size) return State::Gone;
        if (std::memcmp(g_Page, m_Copy.c_str() + done, size) != 0) return State::Changed;
        done += size;
    }
    return State::Fine;
}

} // namespace hostcheck
