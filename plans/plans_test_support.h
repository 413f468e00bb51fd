#pragma once
// Test support for the observing plans: a temporary program folder for one test.
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include "settings/program_folder.h"

namespace nocturnel {

class PlansFolderTest : public ::testing::Test {
protected:
    void SetUp() override {
        home_ = std::filesystem::temp_directory_path() /
                ("nocturnel_plans_" + std::to_string(::getpid()) + "_" +
                 ::testing::UnitTest::GetInstance()->current_test_info()->name());
        std::filesystem::remove_all(home_);
        std::filesystem::create_directories(home_);
        setProgramFolder(home_);
    }
    void TearDown() override { std::filesystem::remove_all(home_); }

    static std::string readFile(const std::filesystem::path& path) {
        std::ifstream in(path, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    }
    static void writeFile(const std::filesystem::path& path, const std::string& bytes) {
        std::ofstream(path, std::ios::binary) << bytes;
    }

    std::filesystem::path home_;
};

}  // namespace nocturnel
