#pragma once
// A fresh temporary program folder and default preferences for each test of the pipeline's
// wrapper, with the site used throughout.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "settings/preferences.h"
#include "settings/program_folder.h"

namespace nocturnel::test {

class PipelineWithSite : public ::testing::Test {
protected:
    void SetUp() override {
        folder_ = std::filesystem::temp_directory_path() /
                  ("nocturnel-pipeline-" + std::to_string(::getpid()) + "-" +
                   ::testing::UnitTest::GetInstance()->current_test_info()->name());
        std::filesystem::create_directories(folder_);
        setProgramFolder(folder_);
        prefs() = Preferences{};
        prefs().latitudeDeg = 48.1f;
        prefs().longitudeDeg = 1.8f;  // west
        prefs().altitudeM = 60;
        prefs().temperatureC = 10;
        prefs().pressureMbar = 1010;
        prefs().utcOffsetMin = 60;
    }
    void TearDown() override {
        std::error_code ec;
        std::filesystem::remove_all(folder_, ec);
    }
    std::filesystem::path folder_;
};

}  // namespace nocturnel::test
