// Texts of the host: copies of them, and whether what was copied is still there.

#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace hostcheck {

/// Copies the text at `text`; nothing if memory ends, or 16 MB are over, ahead of a NUL.
std::optional<std::string> CopyText(const char* text);

/// Returns `text` in double quotes, on one line and not longer than a line is.
std::string Quote(std::string_view text);

/// A text that the host has returned and has to keep.
class KeptText {
public:
    enum class State { Fine, Bad, Gone, Changed };

    /// Copies `text`, which may be null. Looks at it, if `thorough`, and keeps it in mind for
    /// Release. Bad: it is none; the copy says so. Gone: it has not outlived the return. It lies on
    /// the stack below `frame`, which is in the frame of the caller; or it is not what it was when
    /// free blocks of the heap have been written to.
    State Take(const char* text, const void* frame, bool thorough);

    /// Compares what was copied with what is there by now, and asks no more.
    State Release();

    /// Returns the copy; null for null. Valid until the next Take.
    const char* Copy() const { return m_Taken ? m_Copy.c_str() : nullptr; }
    const std::string& Words() const { return m_Copy; }

private:
    State Compare() const;

    const char* m_At = nullptr; ///< null if there is nothing to compare
    bool m_Taken = false;
    std::string m_Copy;
};

} // namespace hostcheck
