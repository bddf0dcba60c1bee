// TemporaryDirectory: an empty directory that goes with the object.

#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

class TemporaryDirectory {
public:
    TemporaryDirectory() {
        std::random_device random;
        do m_Path = std::filesystem::temp_directory_path() / ("kvetm-" + std::to_string(random()));
        while (!std::filesystem::create_directory(m_Path));
    }
    ~TemporaryDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(m_Path, ignored);
    }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    /// Without a separator at its end.
    std::string Path() const { return m_Path.string(); }
    std::string PathOf(const std::string& name) const { return (m_Path / name).string(); }

    /// Writes a file and returns its path.
    std::string Write(const std::string& name, const std::string& bytes) const {
        std::ofstream(PathOf(name), std::ios::binary) << bytes;
        return PathOf(name);
    }
    std::string Read(const std::string& name) const {
        std::ifstream file(PathOf(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

private:
    std::filesystem::path m_Path;
};
