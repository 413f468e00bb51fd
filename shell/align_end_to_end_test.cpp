// Aligning a digital-setting-circle mount from the command line: a BBox encoder box on a
// pseudo-terminal reads a mount that stands 2 degrees off level; after `align --from-scope` on
// two bright stars, `scope read` must give a third star's place within the encoder resolution,
// in this run and after a restart.
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <iostream>
#include <memory>
#include <streambuf>

#include "align/alignment.h"
#include "catalog/catalogues.h"
#include "catalog/formats.h"
#include "core/time.h"
#include "scope/encoder_box.h"
#include "scope/encoder_box_simulator.h"
#include "scope/mount_mapping.h"
#include "scope/pty_mount.h"
#include "scope/serial_link.h"
#include "settings/message.h"
#include "settings/preferences_file.h"
#include "settings/program_folder.h"
#include "shell/cli_test_runner.h"

namespace nocturnel {
namespace {
namespace fs = std::filesystem;
constexpr double kDeg = 0.0174532925199433;
constexpr long kResolution = 8192;  // counts per turn on both axes

struct Star {
    const char* name;
    double raHours, decDeg;  // J2000
};
constexpr Star kVega{"Vega", 18.615649, 38.783689};
constexpr Star kDeneb{"Deneb", 20.690532, 45.280339};
constexpr Star kAltair{"Altair", 19.846389, 8.868322};

// A level-less alt-azimuth mount: its vertical axis leans 2 degrees towards azimuth 70, and the
// azimuth encoder's zero points 37 degrees east of north.
struct TiltedMount {
    double latitudeDeg = 48.1;
    double longitudeWestDeg = 1.8;

    void counts(const Star& s, const ObservingMoment& m, long& az, long& alt) const {
        const double lst = localSiderealTime(m.year, m.month, m.day, m.hour, m.minute, m.second, longitudeWestDeg, 60);
        const double ha = (lst - s.raHours) * 15 * kDeg, dec = s.decDeg * kDeg, lat = latitudeDeg * kDeg;
        const double altitude = std::asin(std::sin(lat) * std::sin(dec) + std::cos(lat) * std::cos(dec) * std::cos(ha));
        const double azimuth = std::atan2(-std::cos(dec) * std::sin(ha),
                                          std::sin(dec) * std::cos(lat) - std::cos(dec) * std::cos(ha) * std::sin(lat));
        // Horizon vector (x north, y east, z up), tipped 2 degrees about the axis at azimuth 160.
        double v[3] = {std::cos(altitude) * std::cos(azimuth), std::cos(altitude) * std::sin(azimuth), std::sin(altitude)};
        const double axis = 160 * kDeg, tilt = 2 * kDeg;
        const double k[3] = {std::cos(axis), std::sin(axis), 0};
        const double dot = k[0] * v[0] + k[1] * v[1];
        const double c[3] = {k[1] * v[2], -k[0] * v[2], k[0] * v[1] - k[1] * v[0]};
        double r[3];
        for (int i = 0; i < 3; ++i) r[i] = v[i] * std::cos(tilt) + c[i] * std::sin(tilt) + k[i] * dot * (1 - std::cos(tilt));
        const double mountAz = std::fmod(std::atan2(r[1], r[0]) / kDeg - 37.0 + 720.0, 360.0);
        const double mountAlt = std::asin(r[2]) / kDeg;
        az = std::lround(mountAz * kResolution / 360.0) % kResolution;
        alt = std::lround(mountAlt * kResolution / 360.0);
        if (alt < 0) alt += kResolution;
    }
};

// Standard input on which every line the program waits for first moves the mount to the
// next star: the user centres it, then presses Enter.
class CentringInput : public std::streambuf {
public:
    explicit CentringInput(std::function<void(int)> centre) : centre_(std::move(centre)) {}

protected:
    int_type underflow() override {
        if (lines_ >= 2) return traits_type::eof();
        centre_(lines_++);
        newline_ = '\n';
        setg(&newline_, &newline_, &newline_ + 1);
        return traits_type::to_int_type(newline_);
    }

private:
    std::function<void(int)> centre_;
    int lines_ = 0;
    char newline_ = '\n';
};

void writeDefaultStars(const fs::path& data) {
    std::vector<DefaultStarRecord> stars;
    for (const Star& s : {kVega, kDeneb, kAltair}) {
        DefaultStarRecord r{};
        r.raHours = static_cast<float>(s.raHours);
        r.decDeg = static_cast<float>(s.decDeg);
        std::snprintf(r.name, sizeof r.name, "%s", s.name);
        stars.push_back(r);
    }
    const DatabaseHeader header{1, 0, static_cast<uint32_t>(stars.size()), sizeof(DefaultStarRecord)};
    std::FILE* f = std::fopen((data / "nocturnel_default_stars.ppc").c_str(), "wb");
    ASSERT_NE(f, nullptr);
    std::fwrite(&header, sizeof header, 1, f);
    std::fwrite(stars.data(), sizeof(DefaultStarRecord), stars.size(), f);
    std::fclose(f);
}

double separationDeg(double ra1, double dec1, double ra2, double dec2) {
    const double a = std::sin(dec1 * kDeg) * std::sin(dec2 * kDeg) +
                     std::cos(dec1 * kDeg) * std::cos(dec2 * kDeg) * std::cos((ra1 - ra2) * 15 * kDeg);
    return std::acos(std::min(1.0, a)) / kDeg;
}

TEST(AlignEndToEnd, EncoderMountOffLevelReadsAThirdStarAfterTwoStarAlignment) {
    const fs::path home = fs::temp_directory_path() / ("nocturnel_align_e2e_" + std::to_string(::getpid()));
    fs::remove_all(home);
    fs::create_directories(home / "data");
    writeDefaultStars(home / "data");
    ::setenv("NOCTURNEL_SERIAL_SETTLE_MS", "0", 1);
    closeCatalogues();
    clearAlignmentState();
    encoderResetState();

    auto box = std::make_shared<EncoderBoxSimulation>();
    PtyMount mount(makeEncoderResponder(3, box));
    ASSERT_TRUE(mount.isReady());

    // The saved preferences of this observer: a BBox on an alt-azimuth mount.
    setProgramFolder(home);
    Preferences saved = defaultPreferences();
    saved.scopeDrive = 3;
    saved.mountType = 1;
    saved.encoderAzSteps = saved.encoderAltSteps = kResolution;
    prefs() = saved;
    selectAsScopePort(mount);  // the box's device becomes the saved scope port
    ASSERT_TRUE(savePreferences(prefs()));

    TiltedMount tilted;
    auto pointAt = [&](const Star& s, const ObservingMoment& m) {
        long az = 0, alt = 0;
        tilted.counts(s, m, az, alt);
        std::lock_guard<std::mutex> lock(box->mutex);
        box->azCount = az;
        box->altCount = alt;
    };

    const ObservingMoment alignedAt{2026, 11, 21, 19, 30, 0};
    CentringInput input([&](int star) { pointAt(star == 0 ? kVega : kDeneb, alignedAt); });
    std::streambuf* keyboard = std::cin.rdbuf(&input);
    CliRun aligned = runCommandLine({"--home", home.string(), "--date", "2026-11-21", "--time", "19:30:00",
                                     "align", "--from-scope", "Vega", "Deneb"});
    std::cin.rdbuf(keyboard);
    ASSERT_EQ(aligned.exit, 0) << aligned.titles() << aligned.out;

    // Half an hour later the telescope is pushed onto Altair.
    const ObservingMoment later{2026, 11, 21, 20, 0, 0};
    pointAt(kAltair, later);
    auto readThirdStar = [&]() {
        CliRun r = runCommandLine({"--home", home.string(), "--json", "--date", "2026-11-21", "--time", "20:00:00",
                                   "scope", "--port", mount.devicePath(), "read"});
        EXPECT_EQ(r.exit, 0) << r.titles();
        const auto j = r.json();
        ASSERT_TRUE(j.contains("ra") && j.contains("dec")) << r.out;  // the sky place, not the raw axes
        const double sep = separationDeg(j["ra"].get<double>(), j["dec"].get<double>(), kAltair.raHours, kAltair.decDeg);
        // One encoder step is 360/8192 = 0.044 degree; both axes are rounded to whole steps.
        EXPECT_LT(sep, 2 * 360.0 / kResolution) << r.out;
    };
    readThirdStar();

    // A restart: nothing in memory, the saved alignment offered again and accepted.
    clearAlignmentState();
    encoderResetState();
    QuestionAnswerer yes(true);
    readThirdStar();
    EXPECT_FALSE(yes.questions().empty());

    ::unsetenv("NOCTURNEL_SERIAL_SETTLE_MS");
    clearAlignmentState();
    clearMountMapping();
    closeCatalogues();
    setHoldOpen(0);
    serialClose();
    fs::remove_all(home);
}

// An equatorial fork with a BBox: the RA axis turns with the hour angle (its zero 50 degrees
// off the meridian), the Dec axis reads the declination. The drive and port come on the command
// line, as they do for `scope`; the saved preferences name another drive and no port.
TEST(AlignEndToEnd, EquatorialBBoxGivenByDriveAndPortOptions) {
    const fs::path home = fs::temp_directory_path() / ("nocturnel_align_eq_" + std::to_string(::getpid()));
    fs::remove_all(home);
    fs::create_directories(home / "data");
    writeDefaultStars(home / "data");
    ::setenv("NOCTURNEL_SERIAL_SETTLE_MS", "0", 1);
    closeCatalogues();
    clearAlignmentState();
    encoderResetState();

    setProgramFolder(home);
    Preferences saved = defaultPreferences();  // LX200, equatorial, no port
    saved.encoderAzSteps = saved.encoderAltSteps = kResolution;
    prefs() = saved;
    ASSERT_TRUE(savePreferences(prefs()));

    auto box = std::make_shared<EncoderBoxSimulation>();
    PtyMount mount(makeEncoderResponder(3, box));
    ASSERT_TRUE(mount.isReady());
    auto pointAt = [&](const Star& s, const ObservingMoment& m) {
        const double lst = localSiderealTime(m.year, m.month, m.day, m.hour, m.minute, m.second, 1.8, 60);
        const double raAxis = std::fmod((s.raHours - lst) * 15.0 + 50.0 + 720.0, 360.0);
        std::lock_guard<std::mutex> lock(box->mutex);
        box->azCount = std::lround(raAxis * kResolution / 360.0) % kResolution;
        box->altCount = (std::lround(s.decDeg * kResolution / 360.0) + kResolution) % kResolution;
    };

    const ObservingMoment alignedAt{2026, 11, 21, 19, 30, 0};
    CentringInput input([&](int star) { pointAt(star == 0 ? kVega : kDeneb, alignedAt); });
    std::streambuf* keyboard = std::cin.rdbuf(&input);
    CliRun aligned = runCommandLine({"--home", home.string(), "--date", "2026-11-21", "--time", "19:30:00", "align",
                                     "--from-scope", "Vega", "Deneb", "--drive", "BBox", "--port", mount.devicePath()});
    std::cin.rdbuf(keyboard);
    ASSERT_EQ(aligned.exit, 0) << aligned.titles() << aligned.out;

    const ObservingMoment later{2026, 11, 21, 20, 0, 0};
    pointAt(kAltair, later);
    CliRun r = runCommandLine({"--home", home.string(), "--json", "--date", "2026-11-21", "--time", "20:00:00",
                               "scope", "--drive", "BBox", "--port", mount.devicePath(), "read"});
    EXPECT_EQ(r.exit, 0) << r.titles();
    const auto j = r.json();
    ASSERT_TRUE(j.contains("ra") && j.contains("dec")) << r.out;
    EXPECT_LT(separationDeg(j["ra"].get<double>(), j["dec"].get<double>(), kAltair.raHours, kAltair.decDeg),
              2 * 360.0 / kResolution)
        << r.out;

    // The alignment is saved with the drive it was made with: a matrix of a BBox means nothing
    // to another drive.
    Preferences after{};
    ASSERT_EQ(loadPreferences(after), PreferencesLoad::Loaded);
    EXPECT_EQ(after.scopeDrive, 3);
    EXPECT_EQ(after.hasSavedAlignment, 1);

    ::unsetenv("NOCTURNEL_SERIAL_SETTLE_MS");
    clearAlignmentState();
    clearMountMapping();
    closeCatalogues();
    setHoldOpen(0);
    serialClose();
    fs::remove_all(home);
}

}  // namespace
}  // namespace nocturnel
