#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>

// A file with some text that is gone with its owner; its name is that of the test.
struct TemporaryFile {
    explicit TemporaryFile(const std::string &text = {}) { std::ofstream(path, std::ios::binary) << text; }
    TemporaryFile(const TemporaryFile &) = delete;
    ~TemporaryFile() { std::remove(path.c_str()); }

    std::string path = testing::TempDir() + "tools_tests_" +
                       testing::UnitTest::GetInstance()->current_test_info()->name() + ".job";
};
