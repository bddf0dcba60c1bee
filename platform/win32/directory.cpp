#include "platform/directory.h"

#include <windows.h>

#include "platform/paths.h"

// The call that opens a directory delivers its first entry too, so one entry is
// always read ahead.
struct Directory::Handle {
    explicit Handle(const char* pattern) : Search(FindFirstFileA(pattern, &Ahead)) {}
    ~Handle() {
        if (IsValid()) FindClose(Search);
    }
    bool IsValid() const { return Search != INVALID_HANDLE_VALUE; }

    WIN32_FIND_DATAA Ahead;
    bool HasAhead = true;
    const HANDLE Search;
};

Directory::Directory(const std::string& path) {
    if (path.empty()) return; // what is joined below would be the root
    auto handle = std::make_unique<Handle>(JoinPath(path, "*").c_str());
    if (handle->IsValid()) m_Handle = std::move(handle);
}

Directory::~Directory() = default;

bool Directory::Next(DirectoryEntry& entry) {
    while (m_Handle && m_Handle->HasAhead) {
        const DWORD attributes = m_Handle->Ahead.dwFileAttributes;
        entry.Name = m_Handle->Ahead.cFileName;
        entry.IsDirectory = (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        m_Handle->HasAhead = FindNextFileA(m_Handle->Search, &m_Handle->Ahead) != 0;
        if (!entry.IsDirectory || (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) return true;
    }
    return false;
}
