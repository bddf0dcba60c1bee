// ReportStream: a stream that keeps what a host writes into it.
//
//     ReportStream report;
//     if (!g_VETMTrace->Command("capability", &report)) Use(report.GetText());
//
// To the host it is a std::ostream like any other, whose position can be asked for and set.
// The usual report fits into the object itself; the memory of a long one grows in place
// where the platform can do that.

#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <ostream>
#include <streambuf>

class ReportStream final : public std::ostream {
public:
    ReportStream() : std::ostream(nullptr) { rdbuf(&m_Buffer); }

    /// Returns what was written, with a NUL behind it. Valid until more is written.
    const char* GetText() { return m_Buffer.GetText(); }

private:
    class Buffer final : public std::streambuf {
    public:
        Buffer() { setp(m_Own, m_Own + sizeof m_Own - 1); }
        const char* GetText();

    protected:
        int_type overflow(int_type ch) override;
        std::streamsize xsputn(const char* bytes, std::streamsize count) override;
        pos_type seekoff(off_type offset, std::ios_base::seekdir from,
                         std::ios_base::openmode which) override;
        pos_type seekpos(pos_type position, std::ios_base::openmode which) override;

    private:
        struct Release {
            void operator()(char* memory) const { std::free(memory); }
        };
        void MakeRoom(size_t count);
        void MoveTo(size_t position);
        size_t GetPosition() const { return static_cast<size_t>(pptr() - pbase()); }
        size_t GetRoom() const { return static_cast<size_t>(epptr() - pptr()); }
        size_t GetLength();

        std::unique_ptr<char, Release> m_Grown; // null while m_Own is enough
        size_t m_Length = 0;                    // when the position was last set
        char m_Own[1024];
    };

    Buffer m_Buffer;
};
