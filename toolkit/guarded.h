// Guarded: where exceptions end.
//
// The module lives in somebody else's process, and its handlers run inside the
// window system's callbacks. Whatever is thrown below one of these calls, by this
// code, the library or the host, stops here.

#pragma once

#include <exception>
#include <utility>

/// Shows what an exception said in a message box; shows nothing while such a box
/// is already open. Never throws.
void ReportException(const char* what) noexcept;

/// Runs `work` and returns what it gives; if it throws, reports that and returns
/// `fallback`.
template <class Result, class Work> Result Guarded(Result fallback, Work&& work) noexcept {
    try {
        return std::forward<Work>(work)();
    } catch (const std::exception& error) {
        ReportException(error.what());
    } catch (...) {
        ReportException("An unknown error occurred.");
    }
    return fallback;
}

/// The same for work without a result.
template <class Work> void Guarded(Work&& work) noexcept {
    Guarded(
        0,
        [&] {
            std::forward<Work>(work)();
            return 0;
        });
}
