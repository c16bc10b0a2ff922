// A place on disk that no other test uses, however many run at once and from however many trees.
#pragma once

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

/// A path with this name in the temporary folder; nothing is made there.
inline std::filesystem::path unique_test_path(const std::string& name) {
    const auto* test = testing::UnitTest::GetInstance()->current_test_info();
    const std::string test_name = test == nullptr ? "" : std::string(test->name()) + "_";
    std::string file = "qorvane_" + std::to_string(::getpid()) + "_" + test_name + name;
    for (char& c : file) {
        c = c == '/' ? '_' : c; // names of parameterised tests
    }
    return std::filesystem::temp_directory_path() / file;
}
