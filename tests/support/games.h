// How long the games last that tests play by random numbers.

#pragma once

/// A quarter of a game where each move costs much: what isn't optimised takes twenty times as long
/// under the sanitizers, and on Windows, where that is Wine, each file is a message to a server.
/// The moves of a short game are the first of the long one.
#if defined NDEBUG && !defined _WIN32
constexpr int kQuarters = 4;
#else
constexpr int kQuarters = 1;
#endif
