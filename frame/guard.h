// GuardedEntry: the last stop of exceptions on the way to the host.

#pragma once

#include <exception>
#include <new>
#include <string>
#include <utility>

/// Runs the body of an operation that the host called and returns its result. What
/// it throws ends here: the result is then `fallback`, and `lastError` says why.
template <class Result, class Work>
Result GuardedEntry(Result fallback, std::string& lastError, Work&& work) noexcept {
    const char* reason = "Unknown error";
    try {
        try {
            return std::forward<Work>(work)();
        } catch (const std::bad_alloc&) {
            reason = "No memory";
        } catch (const std::exception& error) {
            lastError = error.what();
            return fallback;
        } catch (...) {
        }
        lastError = reason;
    } catch (...) {
        // Not even the text of the failure could be kept.
    }
    return fallback;
}

/// The same for operations that leave no text.
template <class Result, class Work> Result GuardedEntry(Result fallback, Work&& work) noexcept {
    try {
        return std::forward<Work>(work)();
    } catch (...) {
        return fallback;
    }
}
