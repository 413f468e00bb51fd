// Pushing the simulated encoder box: a typed name must leave the box's counts at the object's
// altitude and azimuth (alt-azimuth mount) or at its declination (equatorial mount), as `where`
// computes them; two numbers set the axes; anything else is refused with a message.
#include "shell/simulator_console.h"

#include <unistd.h>

#include <cmath>
#include <filesystem>
#include <gtest/gtest.h>

#include "catalog/catalogues.h"
#include "core/apparent_place.h"
#include "settings/message.h"
#include "settings/program_folder.h"
#include "shell/target_names.h"

namespace nocturnel {
namespace {

constexpr long kSteps = 8192;

double countToDeg(long count) { return count * 360.0 / kSteps; }

double angleGap(double a, double b) {
    const double d = std::fmod(std::fabs(a - b), 360.0);
    return std::min(d, 360.0 - d);
}

class SimulatorConsoleTest : public ::testing::Test {
protected:
    void SetUp() override {
        closeCatalogues();
        setProgramFolder(std::filesystem::temp_directory_path() / ("nocturnel_sim_console_" + std::to_string(::getpid())));
        prefs() = defaultPreferences();
        prefs().encoderAzSteps = prefs().encoderAltSteps = kSteps;
        // A finder of its own, so that no catalogue file is needed.
        addTargetFinder([](std::string_view name, const ObservingMoment&, ResolvedTarget& out) {
            if (name != "Vega") return false;
            out = {"Vega", 18.615649, 38.783689};
            return true;
        });
    }
    void TearDown() override {
        clearTargetFinders();
        closeCatalogues();
    }
    const ObservingMoment moment_{2026, 11, 21, 19, 30, 0};
};

TEST_F(SimulatorConsoleTest, AltAzimuthMountPointsAtTheNamedStar) {
    prefs().mountType = 1;
    EncoderBoxSimulation box;
    ASSERT_TRUE(pushSimulatedTelescope(box, "Vega", moment_));
    double alt = 0, az = 0, ra = 0, dec = 0;
    ASSERT_EQ(equatorialToHorizontal(18.615649, 38.783689, 0, moment_, &alt, &az, &ra, &dec), 0);
    EXPECT_LT(angleGap(countToDeg(box.azCount), az), 360.0 / kSteps);
    EXPECT_LT(angleGap(countToDeg(box.altCount), alt), 360.0 / kSteps);
}

TEST_F(SimulatorConsoleTest, EquatorialMountReadsTheDeclinationOnItsSecondAxis) {
    prefs().mountType = 0;
    EncoderBoxSimulation box;
    ASSERT_TRUE(pushSimulatedTelescope(box, "Vega", moment_));
    EXPECT_NEAR(countToDeg(box.altCount), 38.78, 0.3);  // of date: precession moves it a little
}

TEST_F(SimulatorConsoleTest, TwoNumbersSetTheAxesAndNonsenseIsRefused) {
    EncoderBoxSimulation box;
    ASSERT_TRUE(pushSimulatedTelescope(box, "90 45", moment_));
    EXPECT_EQ(box.azCount, kSteps / 4);
    EXPECT_EQ(box.altCount, kSteps / 8);
    MessageCapture capture;
    EXPECT_FALSE(pushSimulatedTelescope(box, "90 nan", moment_));
    EXPECT_FALSE(pushSimulatedTelescope(box, "1e308 5", moment_));
    EXPECT_EQ(box.azCount, kSteps / 4);
    EXPECT_FALSE(capture.messages().empty());
}

}  // namespace
}  // namespace nocturnel
