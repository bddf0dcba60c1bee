// A directory for one test.

#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

class TemporaryDirectory {
public:
    TemporaryDirectory() {
        const auto* test = testing::UnitTest::GetInstance()->current_test_info();
        path = std::filesystem::path(testing::TempDir()) /
               (std::string("etmhost-") + test->test_suite_name() + "-" + test->name());
        std::filesystem::remove_all(path);
        std::filesystem::create_directories(path);
    }
    ~TemporaryDirectory() { std::filesystem::remove_all(path); }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    /// Writes a file and returns its path.
    std::string Write(const std::string& name, const std::string& content) const {
        std::ofstream(path / name, std::ios::binary) << content;
        return (path / name).string();
    }

    std::string Read(const std::string& name) const {
        std::ifstream in(path / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }

    std::filesystem::path path;
};
