#include "settings/ReportStream.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <new>

const char* ReportStream::Buffer::GetText() {
    pbase()[GetLength()] = '\0'; // the byte behind epptr() is kept for it
    return pbase();
}

size_t ReportStream::Buffer::GetLength() {
    return m_Length = std::max(m_Length, GetPosition());
}

/// Makes room for `count` bytes more. A stream takes the exception as a failed write.
void ReportStream::Buffer::MakeRoom(size_t count) {
    if (GetRoom() >= count) return;
    const size_t position = GetPosition();
    const size_t length = GetLength();
    const size_t size = std::max(position + count + 1, 2 * (position + GetRoom()));
    char* const grown = static_cast<char*>(std::realloc(m_Grown.get(), size));
    if (grown == nullptr) throw std::bad_alloc();
    if (m_Grown == nullptr) std::memcpy(grown, m_Own, length);
    static_cast<void>(m_Grown.release()); // realloc took it
    m_Grown.reset(grown);
    setp(grown, grown + size - 1);
    MoveTo(position);
}

void ReportStream::Buffer::MoveTo(size_t position) {
    setp(pbase(), epptr());
    for (; position > INT_MAX; position -= INT_MAX) pbump(INT_MAX);
    pbump(static_cast<int>(position));
}

auto ReportStream::Buffer::overflow(int_type ch) -> int_type {
    if (traits_type::eq_int_type(ch, traits_type::eof())) return traits_type::not_eof(ch);
    MakeRoom(1);
    return sputc(traits_type::to_char_type(ch));
}

std::streamsize ReportStream::Buffer::xsputn(const char* bytes, std::streamsize count) {
    if (count <= 0) return 0;
    const auto size = static_cast<size_t>(count);
    MakeRoom(size);
    std::memcpy(pptr(), bytes, size);
    MoveTo(GetPosition() + size);
    return count;
}

auto ReportStream::Buffer::seekoff(off_type offset, std::ios_base::seekdir from,
                                   std::ios_base::openmode which) -> pos_type {
    const size_t length = GetLength();
    const size_t origin = from == std::ios_base::beg   ? 0
                          : from == std::ios_base::cur ? GetPosition()
                                                       : length;
    const off_type target = static_cast<off_type>(origin) + offset;
    if ((which & std::ios_base::out) == 0 || target < 0 || target > static_cast<off_type>(length))
        return pos_type(off_type(-1));
    MoveTo(static_cast<size_t>(target));
    return target;
}

auto ReportStream::Buffer::seekpos(pos_type position, std::ios_base::openmode which) -> pos_type {
    return seekoff(off_type(position), std::ios_base::beg, which);
}
