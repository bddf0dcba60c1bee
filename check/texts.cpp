#include "check/texts.h"

#include <algorithm>
#include <atomic>
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
// Neither on the stack nor from the heap: what is read may lie where both are free.
char g_Page[kPage];
std::mutex g_PageMutex;

/// Returns whether `text` lies where the stack of the operation was that has returned.
bool IsOnDeadStack(const char* text, const void* frame) {
    constexpr uintptr_t kDepth = 128 * 1024; // further off may lie something else
    const auto end = reinterpret_cast<uintptr_t>(frame), at = reinterpret_cast<uintptr_t>(text);
    return at < end && end - at < kDepth;
}

/// Writes over blocks of the heap that a text of `length` may have had, if they are free.
void UseHeapAgain(size_t length, char with) {
    constexpr size_t kStep = 16;
    char* blocks[64];
    size_t count = 0;
    for (size_t size = length + 1; size <= 2 * length + 2 * kStep && count < std::size(blocks);
         size += std::max(kStep, length / 16)) {
        char* const block = static_cast<char*>(std::malloc(size));
        if (block == nullptr) break;
        std::memset(block, with, size);
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
    for (size_t most = 128; copy.size() < kLongest; most = kPage) { // usually it is short
        const char* const at = text + copy.size();
        const size_t size = std::min(most, kPage - reinterpret_cast<uintptr_t>(at) % kPage);
        const size_t count = ReadMemory(at, g_Page, size);
        const size_t length = strnlen(g_Page, count);
        copy.append(g_Page, length);
        if (length < count) return copy;
        if (count < size) break;
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

KeptText::State KeptText::Take(const char* text, const void* frame, bool thorough) {
    m_Taken = text != nullptr;
    m_At = nullptr;
    if (!m_Taken) return State::Fine;
    if (!thorough) {
        m_Copy = text;
        return State::Fine;
    }
    std::optional<std::string> copy = CopyText(text);
    m_Copy = copy.value_or("KVETMHostCheck: this text cannot be read");
    if (!copy) return State::Bad;
    if (IsOnDeadStack(text, frame)) return State::Gone;
    m_At = text;
    // What the last time left behind may be the text.
    static std::atomic<char> with('\xDD');
    UseHeapAgain(m_Copy.size(), with);
    with = static_cast<char>(with ^ '\xFF');
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
