#pragma once
// Test support: a fresh program folder and preferences for each test of the serial link and
// the protocols, the settle time shortened, and the link left closed and untraced afterwards.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "scope/serial_link.h"
#include "settings/message.h"
#include "settings/preferences.h"
#include "settings/program_folder.h"

namespace nocturnel {

class SerialTestFixture : public ::testing::Test {
protected:
    void SetUp() override {
        folder_ = std::filesystem::temp_directory_path() /
                  ("nocturnel_serial_" + std::to_string(::getpid()) + "_" +
                   ::testing::UnitTest::GetInstance()->current_test_info()->name());
        std::filesystem::create_directories(folder_);
        setProgramFolder(folder_);
        prefs() = Preferences{};
        setSerialSettleMillisecondsForTests(0);
    }
    void TearDown() override {
        if (isTraceOn()) toggleTrace();
        setHoldOpen(0);
        serialClose();
        std::error_code ec;
        std::filesystem::remove_all(folder_, ec);
    }

    std::filesystem::path folder_;
    MessageCapture messages_;
};

}  // namespace nocturnel
