// One of the fuzz targets. Several are one program, compiled and linked once, which is the target
// by whose name it is called.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>

struct FuzzTarget {
    /// Takes `size` bytes at `data`, whatever they are, and aborts where something doesn't hold.
    using Run = void (*)(const uint8_t* data, size_t size);

    /// Makes `run` the target `name`, which lives as long as the program.
    FuzzTarget(const char* name, Run run);

    const char* const name;
    const Run run;
};

inline void Require(bool holds) {
    if (!holds) std::abort();
}
