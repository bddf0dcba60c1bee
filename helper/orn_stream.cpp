#include "frame/interfaces/orn_stream.h"

#include <limits>
#include <ostream>

#if defined(_WIN32)
#define EXPORTED __declspec(dllexport)
#else
#define EXPORTED __attribute__((visibility("default")))
#endif

extern "C" EXPORTED uint8_t orn_stream_write(void* stream, const char* bytes, size_t size) {
    constexpr auto most = static_cast<size_t>(std::numeric_limits<std::streamsize>::max());
    if (stream == nullptr || bytes == nullptr || size > most) return 0;
    try { // a stream may be told to throw
        auto& report = *static_cast<std::ostream*>(stream);
        return static_cast<uint8_t>(report.write(bytes, static_cast<std::streamsize>(size)).good());
    } catch (...) {
        return 0;
    }
}
