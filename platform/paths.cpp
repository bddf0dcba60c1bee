#include "platform/paths.h"

bool IsSeparator(char ch) {
    return ch == '/' || ch == '\\';
}

PathParts SplitPath(std::string_view path) {
    PathParts parts;
    if (path.size() >= 2 && path[1] == ':') {
        parts.Drive = path.substr(0, 2);
        path.remove_prefix(2);
    }
    const size_t separator = path.find_last_of("/\\");
    if (separator != std::string_view::npos) {
        parts.Directory = path.substr(0, separator + 1);
        path.remove_prefix(separator + 1);
    }
    const size_t point = path.rfind('.');
    parts.Name = path.substr(0, point);
    if (point != std::string_view::npos) parts.Extension = path.substr(point);
    return parts;
}

std::string DirectoryOf(std::string_view path) {
    const PathParts parts = SplitPath(path);
    std::string directory = parts.Drive + parts.Directory;
    if (directory.size() > 1 && IsSeparator(directory.back())) directory.pop_back();
    return directory;
}

std::string JoinPath(std::string_view directory, std::string_view name) {
    std::string path(directory);
    if (path.empty() || !IsSeparator(path.back())) path += kSeparator;
    return path.append(name);
}
