// A check before the clock starts.

#pragma once

#include <cstdio>
#include <cstdlib>

/// Ends the run if what is about to be measured does not work.
inline void Require(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "bench: %s\n", what);
    std::exit(1);
}
