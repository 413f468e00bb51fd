#include "scope/serial_test_fixture.h"
#include "scope/scope_interface.h"

#include <erfa.h>
#include <erfam.h>

#include <chrono>
#include <cmath>
#include <filesystem>
#include <string>
#include <unistd.h>

#include <gtest/gtest.h>

#include "core/angle_text.h"
#include "core/apparent_place.h"
#include "core/time.h"
#include "scope/drive_types.h"
#include "scope/encoder_box.h"
#include "scope/lx200.h"
#include "scope/mount_mapping.h"
#include "scope/mount_simulators.h"
#include "scope/pty_mount.h"
#include "scope/serial_link.h"
#include "scope/takahashi.h"
#include "settings/message.h"
#include "settings/preferences.h"
#include "settings/program_folder.h"

namespace nocturnel {
namespace {

constexpr ObservingMoment kMoment{2024, 3, 15, 22, 30, 0};  // local civil time, UT + 60 min

std::string silentResponder(std::string& pending) {
    pending.clear();
    return {};
}

// A mount that answers the query its family connects with, and nothing else.
PtyMount::Responder connectOnlyResponder(int code) {
    struct Dialogue {
        std::string query, reply;
    };
    Dialogue d = code == 5    ? Dialogue{":GD#", "+22\xDF" "00:00#"}
                 : code == 10 ? Dialogue{"Kx", "x#"}
                 : code == 14 ? Dialogue{"v\r\n", "vTemma PC v2.01\r\n"}
                              : Dialogue{};
    return [d](std::string& pending) {
        std::string reply;
        if (!d.query.empty())
            for (std::size_t at; (at = pending.find(d.query)) != std::string::npos;) {
                reply += d.reply;
                pending.erase(0, at + d.query.size());
            }
        if (pending.size() > 8) pending.clear();  // everything else goes unanswered
        return reply;
    };
}

class ScopeDispatch : public SerialTestFixture {
protected:
    void SetUp() override {
        SerialTestFixture::SetUp();
        prefs().utcOffsetMin = 60;
        setTakahashiPollPauseMillisecondsForTests(0);
        setScopeClock([] { return kMoment; });
        clearMountMapping();
        encoderResetState();
        takahashiResetState();
        lx200ResetState();
    }
    void TearDown() override {
        setScopeClock({});
        clearMountMapping();
        SerialTestFixture::TearDown();
    }
    // Drive `code` on a pty simulator of its family.
    std::unique_ptr<PtyMount> simulated(int code, const SimulatorOptions& options = {}) {
        prefs().scopeDrive = code;
        auto mount = std::make_unique<PtyMount>(makeMountSimulator(code, options));
        EXPECT_TRUE(mount->isReady());
        EXPECT_GT(selectAsScopePort(*mount), 0);
        return mount;
    }
    QuestionAnswerer answers_{true};  // the Takahashi zenith question: East side
};

// ---- every code without a port: each branch's own message ----

struct NoPortRow {
    int code;
    const char* connect;  // message of connect (and of the read's connect)
    const char* read;     // message of readPosition
};

const NoPortRow kNoPortRows[] = {
    {0, "Sorry, no scope drive is selected", "No drive is selected in Preference"},
    {1, "Fail to open serial connection", "Fail to open serial connection"},
    {2, "Fail to open serial connection", "Fail to open serial connection"},
    {5, "Fail to open serial connection", "Fail to open serial connection"},
    {6, "Fail to open serial connection", "Fail to open serial connection"},
    {8, "Fail to open serial connection", "Fail to open serial connection"},
    {13, "Fail to open serial connection", "Fail to open serial connection"},
    {14, "Fail to open serial connection", "Fail to open serial connection"},
    {18, "SiderealTech is not supported yet", "SiderealTech is not supported yet"},
    {19, "Fail to open serial connection", "Fail to open serial connection"},
    {21, "Fail to open serial connection", "Fail to open serial connection"},
    {100, "Scope Connect not supported for the drive you selected", "Read not yet implemented for PowerFlex"},
    {101, "Scope Connect not supported for the drive you selected", "Read not yet implemented for Dynastar"},
    {20, "Unknown scope drive", "Unknown scope drive"},
    {102, "Unknown scope drive", "Unknown scope drive"},
    {-3, "Unknown scope drive", "Unknown scope drive"},
};

TEST_F(ScopeDispatch, ConnectAndReadWithoutAPortSayWhy) {
    for (const NoPortRow& row : kNoPortRows) {
        SCOPED_TRACE(row.code);
        prefs().scopeDrive = row.code;
        prefs().scopePort = 0;
        messages_.clear();
        EXPECT_EQ(scopeConnect(), 0);
        EXPECT_TRUE(messages_.shown(row.connect)) << messages_.lastTitle();
        messages_.clear();
        double ra = 7, dec = 7;
        EXPECT_EQ(scopeReadPosition(ra, dec), 0);
        EXPECT_TRUE(messages_.shown(row.read)) << messages_.lastTitle();
        EXPECT_EQ(ra, 0.0);
        EXPECT_EQ(dec, 0.0);
        // A drive that did not connect reports no read failure of its own.
        EXPECT_FALSE(messages_.shown("Failed to get Meade RA and Dec."));
    }
}

TEST_F(ScopeDispatch, DisconnectMessages) {
    struct {
        int code;
        int result;
        const char* message;
    } rows[] = {{0, 0, "Disconnect scope not supported"}, {100, 0, "Disconnect scope not supported"},
                {101, 0, "Disconnect scope not supported"}, {20, 0, "Unknown scope drive."},
                {5, 1, nullptr},                            {13, 1, nullptr}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.code);
        prefs().scopeDrive = row.code;
        messages_.clear();
        EXPECT_EQ(scopeDisconnect(), row.result);
        if (row.message) EXPECT_TRUE(messages_.shown(row.message));
        else EXPECT_TRUE(messages_.messages().empty());
    }
}

TEST_F(ScopeDispatch, TrackPositionRefusesTheDrivesWithoutAPosition) {
    struct {
        int code;
        const char* message;
    } rows[] = {{100, "Get position not supported"}, {101, "Get position not supported"},
                {102, "Unkown scope drive"},         {500, "Unkown scope drive"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.code);
        prefs().scopeDrive = row.code;
        messages_.clear();
        double ra = 1, dec = 1;
        EXPECT_EQ(scopeTrackPosition(ra, dec), 0);
        EXPECT_EQ(messages_.messages().size(), 1u);
        EXPECT_TRUE(messages_.shown(row.message));
    }
}

// ---- slewing: served, ignored without a word, or unknown ----

TEST_F(ScopeDispatch, SlewingOperationsOverEveryCode) {
    prefs().scopePort = 0;  // a served drive then fails on the port, which proves it was served
    for (int code = -1; code <= 103; ++code) {
        if (code > 22 && code < 99) continue;
        SCOPED_TRACE(code);
        prefs().scopeDrive = code;
        struct Op {
            const char* name;
            int (*run)();
            const char* unknownMessage;
        } ops[] = {
            {"rate", [] { return scopeSetSlewRate(1); }, "Unknown scope drive."},
            {"start", [] { return scopeStartMove(0); }, "Unknown scope drive"},
            {"stop", [] { return scopeStopMove(0); }, "Unknown scope drive."},
            {"stopAll", [] { return scopeStopAll(); }, "Unknown scope drive."},
        };
        for (const Op& op : ops) {
            SCOPED_TRACE(op.name);
            messages_.clear();
            EXPECT_EQ(op.run(), 0);
            switch (slewingService(code)) {
                case SlewingService::Ignored: EXPECT_TRUE(messages_.messages().empty()); break;
                case SlewingService::Unknown:
                    ASSERT_EQ(messages_.messages().size(), 1u);
                    EXPECT_EQ(messages_.lastTitle(), op.unknownMessage);
                    break;
                case SlewingService::Served:
                    EXPECT_TRUE(messages_.shown(code == 18 ? "SiderealTech is not supported yet"
                                                           : "Fail to open serial connection"));
                    break;
            }
        }
    }
}

TEST_F(ScopeDispatch, NexStar58IgnoresTheSlewingKeys) {
    auto mount = simulated(8);
    EXPECT_EQ(scopeSetSlewRate(0), 0);
    EXPECT_EQ(scopeStartMove(2), 0);
    EXPECT_EQ(scopeStopAll(), 0);
    EXPECT_EQ(mount->received(), "");
    EXPECT_TRUE(messages_.messages().empty());
}

TEST_F(ScopeDispatch, MagellanConnectsAndReadsButDoesNotSlew) {
    for (int code : {6, 7}) {
        SCOPED_TRACE(code);
        auto mount = simulated(code, SimulatorOptions{true, 10.5, -20.0});
        double ra = 0, dec = 0;
        ASSERT_EQ(scopeReadPosition(ra, dec), 1) << messages_.lastTitle();
        EXPECT_NEAR(ra, 10.5, 1.0 / 3600);
        EXPECT_NEAR(dec, -20.0, 1.0 / 3600);
        mount->clearReceived();
        EXPECT_EQ(scopeStartMove(0), 0);
        EXPECT_EQ(mount->received(), "");
    }
}

// ---- every listed drive with a simulator: connect, read, move (or say why it cannot) ----

TEST_F(ScopeDispatch, EveryDriveWithASimulatorConnectsReadsAndMoves) {
    for (const DriveInfo& drive : driveTable()) {
        if (!hasMountSimulator(drive.code)) continue;
        SCOPED_TRACE(drive.code);
        takahashiResetState();
        encoderResetState();
        SimulatorOptions options{true, 4.25, 33.5, 120.0, 30.0};
        auto mount = simulated(drive.code, options);
        messages_.clear();
        ASSERT_EQ(scopeConnect(), 1) << messages_.lastTitle();
        EXPECT_EQ(scopeDisconnect(), 1);
        double first = 0, second = 0;
        ASSERT_EQ(scopeReadPosition(first, second), 1) << messages_.lastTitle();
        if (drive.family == DriveFamily::EncoderBox) {
            EXPECT_NEAR(first, 120.0 / 15.0, 0.01);  // equatorial mount type: the first angle / 15
            EXPECT_NEAR(second, 30.0, 0.05);
        } else if (drive.family == DriveFamily::Takahashi) {
            // The first connection sends the mount to the zenith for the pier side.
            EXPECT_NEAR(second, prefs().latitudeDeg, 0.05);
        } else {
            EXPECT_NEAR(first, 4.25, 0.01);
            EXPECT_NEAR(second, 33.5, 0.05);
        }
        mount->clearReceived();
        const int started = scopeStartMove(0);
        if (slewingService(drive.code) == SlewingService::Served && drive.code != 15) {
            EXPECT_EQ(started, 1) << messages_.lastTitle();
            EXPECT_NE(mount->received(), "");
        } else if (slewingService(drive.code) == SlewingService::Ignored) {
            EXPECT_EQ(started, 0);
            EXPECT_EQ(mount->received(), "");
        }
    }
}

TEST_F(ScopeDispatch, ReadFailuresShowTheFamilyMessage) {
    struct {
        int code;
        const char* message;
    } rows[] = {{5, "Failed to get Meade RA and Dec."},   {10, "Failed to get Celestron RA and Dec"},
                {13, "Failed to get Servocat RA and Dec"}, {19, "Failed to get SkyCommander RA and Dec."},
                {1, "Failed to get Encoder RA and Dec"},   {14, "Failed to get Takahashi RA and Dec"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.code);
        takahashiResetState();
        encoderResetState();
        auto mount = simulated(row.code);
        ASSERT_EQ(scopeConnect(), 1) << messages_.lastTitle();
        // The mount answers its connection, then falls silent.
        mount->setResponder(connectOnlyResponder(row.code));
        messages_.clear();
        double ra = 0, dec = 0;
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(scopeReadPosition(ra, dec), 0);
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30));  // never a hang
        EXPECT_TRUE(messages_.shown(row.message)) << messages_.lastTitle();
    }
}

TEST_F(ScopeDispatch, EncoderAltAzimuthReadsAzimuthAndAltitude) {
    prefs().mountType = 1;
    auto mount = simulated(11, SimulatorOptions{true, 0, 0, 250.0, 12.5});
    double az = 0, alt = 0;
    ASSERT_EQ(scopeReadPosition(az, alt), 1) << messages_.lastTitle();
    EXPECT_NEAR(az, 250.0, 0.02);
    EXPECT_NEAR(alt, 12.5, 0.02);

    mount->setResponder(silentResponder);
    messages_.clear();
    EXPECT_EQ(scopeReadPosition(az, alt), 0);
    EXPECT_TRUE(messages_.shown("Failed to get Encoder Az and Alt"));
}

TEST_F(ScopeDispatch, DeviceClosedMidSessionFailsWithAMessage) {
    for (int code : {5, 10, 13, 19, 3}) {
        SCOPED_TRACE(code);
        encoderResetState();
        auto mount = simulated(code);
        setHoldOpen(1);  // as during an alignment: the port stays open between operations
        ASSERT_EQ(scopeConnect(), 1) << messages_.lastTitle();
        mount->closeNow();
        messages_.clear();
        double ra = 0, dec = 0;
        EXPECT_EQ(scopeReadPosition(ra, dec), 0);
        EXPECT_FALSE(messages_.messages().empty());
        setHoldOpen(0);
        serialClose();
    }
}

// ---- tracking: alt-azimuth readings become RA/Dec ----

TEST(HorizontalToEquatorial, AgreesWithErfa) {
    struct {
        double az, alt, lst, lat;
    } cases[] = {{0, 40.0, 3.0, 48.1},   {90, 0, 12.0, 48.1},   {200, 35, 23.9, -33.9},
                 {315, 80, 0.1, 51.5},   {180, -10, 6.5, 0.0},  {45, 10, 18.25, 64.0}};
    for (const auto& c : cases) {
        double ha = 0, dec = 0;
        eraAe2hd(c.az * ERFA_DD2R, c.alt * ERFA_DD2R, c.lat * ERFA_DD2R, &ha, &dec);
        double expectedRa = std::fmod(c.lst - ha * ERFA_DR2D / 15.0 + 48.0, 24.0);
        double ra = 0, decDeg = 0;
        horizontalToEquatorial(c.az, c.alt, c.lst, c.lat, ra, decDeg);
        double dra = std::fabs(ra - expectedRa);
        EXPECT_LT(std::fmin(dra, 24.0 - dra), 1e-7) << c.az << " " << c.alt;
        EXPECT_NEAR(decDeg, dec * ERFA_DR2D, 1e-6);  // the program's degree constant has 15 digits
        EXPECT_GE(ra, 0.0);
        EXPECT_LT(ra, 24.0);
    }
}

TEST_F(ScopeDispatch, TrackingAnAltAzimuthEncoderGivesRaDec) {
    prefs().mountType = 1;
    auto mount = simulated(1, SimulatorOptions{true, 0, 0, 90.0, 20.0});
    double az = 0, alt = 0;
    ASSERT_EQ(scopeReadPosition(az, alt), 1);
    double ra = 0, dec = 0;
    ASSERT_EQ(scopeTrackPosition(ra, dec), 1) << messages_.lastTitle();
    const double lst = localSiderealTime(kMoment.year, kMoment.month, kMoment.day, kMoment.hour, kMoment.minute,
                                         kMoment.second, prefs().longitudeDeg, prefs().utcOffsetMin);
    double expectedRa = 0, expectedDec = 0;
    horizontalToEquatorial(az, alt, lst, prefs().latitudeDeg, expectedRa, expectedDec);
    EXPECT_NEAR(ra, expectedRa, 1e-9);
    EXPECT_NEAR(dec, expectedDec, 1e-9);
    EXPECT_GT(std::fabs(ra - az / 15.0), 0.1);  // converted, not passed through
    scopeDisconnect();
}

TEST_F(ScopeDispatch, TrackingGoesThroughTheAlignmentMappingWhenSet) {
    double seenHor = -1, seenElv = -1, seenJd = 0;
    setMountMapping(MountMapping{{}, [&](double hor, double elv, double jd, double& ra, double& dec) {
                                     seenHor = hor;
                                     seenElv = elv;
                                     seenJd = jd;
                                     ra = 13.5;
                                     dec = -7.25;
                                     return true;
                                 }});
    auto mount = simulated(16, SimulatorOptions{true, 0, 0, 75.0, 40.0});
    double ra = 0, dec = 0;
    ASSERT_EQ(scopeTrackPosition(ra, dec), 1) << messages_.lastTitle();
    EXPECT_EQ(ra, 13.5);
    EXPECT_EQ(dec, -7.25);
    EXPECT_NEAR(seenHor, 75.0, 0.02);
    EXPECT_NEAR(seenElv, 40.0, 0.02);
    EXPECT_NEAR(seenJd, julianDateFromLocal(2024, 3, 15, 22, 30, 0, 60), 1e-9);
    scopeDisconnect();
}

TEST_F(ScopeDispatch, TrackingTakahashiHandsTheSiderealTimeFirst) {
    auto mount = simulated(14);
    double ra = 0, dec = 0;
    ASSERT_EQ(scopeTrackPosition(ra, dec), 1) << messages_.lastTitle();
    const double lst = localSiderealTime(kMoment.year, kMoment.month, kMoment.day, kMoment.hour, kMoment.minute,
                                         kMoment.second, prefs().longitudeDeg, prefs().utcOffsetMin);
    EXPECT_TRUE(takahashiState().hasSiderealTime);
    EXPECT_NEAR(takahashiState().siderealTimeHours, lst, 1e-9);
    scopeDisconnect();
}

// ---- goto: through the pointing frame of the preferences ----

struct PipelinePlace {
    double alt, az, ra, dec;
};
PipelinePlace pipelinePlace(double raJ2000, double decJ2000) {
    PipelinePlace p{};
    EXPECT_EQ(equatorialToHorizontal(raJ2000, decJ2000, pointingLevelFromPreferences(), kMoment, &p.alt, &p.az, &p.ra,
                                     &p.dec),
              0);
    return p;
}

TEST_F(ScopeDispatch, DrivesThatCannotSlewShowTheTarget) {
    // Betelgeuse, J2000.
    const double ra = 5.919529, dec = 7.407064;
    for (int correction : {0, 3}) {
        prefs().correction = correction;
        const PipelinePlace p = pipelinePlace(ra, dec);
        const std::string sky = "Sky position:\nRa:" + hoursText(p.ra) + "\nDec:" + degreesText(p.dec) +
                                "\nAzt:" + degreesText(p.az) + "\nAlt:" + degreesText(p.alt) + "\n";
        struct {
            int code, mountType;
            std::string scope;
        } rows[] = {
            {0, 0, "Scope Position:\nRa:" + hoursText(p.ra) + "\nDec:" + degreesText(p.dec)},
            {6, 0, "Scope Position:\nRa:" + hoursText(p.ra) + "\nDec:" + degreesText(p.dec)},
            {7, 1, "Scope Position:\nAzt:" + degreesText(p.az) + "\nAlt:" + degreesText(p.alt)},
            {12, 1, "Scope Position:\nAzt:" + degreesText(p.az) + "\nAlt:" + degreesText(p.alt)},
        };
        for (const auto& row : rows) {
            SCOPED_TRACE(row.code);
            prefs().scopeDrive = row.code;
            prefs().mountType = row.mountType;
            messages_.clear();
            EXPECT_EQ(scopeGotoEquatorial(ra, dec), 1);
            ASSERT_EQ(messages_.messages().size(), 1u);
            EXPECT_EQ(messages_.messages()[0].title, sky);
            EXPECT_EQ(messages_.messages()[0].detail, row.scope);
        }
    }
}

TEST_F(ScopeDispatch, TheTargetIsInThePointingFrameNotJ2000) {
    // Betelgeuse on 2024-03-15 22:30 (21:30 UT) at 48.1 N, 1.8 W: local sidereal time near
    // 8.9 h, so about 3 h west of the meridian; precession since 2000 adds about 1.2 minutes
    // to its RA.
    prefs().scopeDrive = 0;
    prefs().correction = 0;
    ASSERT_EQ(scopeGotoEquatorial(5.919529, 7.407064), 1);
    const ScopeTarget& t = lastScopeTarget();
    EXPECT_GT(t.raHours - 5.919529, 0.5 / 60);
    EXPECT_LT(t.raHours - 5.919529, 2.0 / 60);
    EXPECT_GT(t.altDeg, 10.0);  // in the western evening sky
    EXPECT_GT(t.azDeg, 200.0);
    EXPECT_LT(t.azDeg, 300.0);
}

TEST_F(ScopeDispatch, AlignmentMappingGivesTheScopeLines) {
    setMountMapping(MountMapping{[](double, double, double, double& hor, double& elv) {
                                     hor = 123.5;
                                     elv = 45.25;
                                     return true;
                                 },
                                 {}});
    prefs().scopeDrive = 0;
    prefs().mountType = 1;
    ASSERT_EQ(scopeGotoEquatorial(10.0, 20.0), 1);
    EXPECT_EQ(messages_.messages().back().detail,
              "Scope Position:\nAzt:" + degreesText(123.5) + "\nAlt:" + degreesText(45.25));
    prefs().mountType = 0;
    ASSERT_EQ(scopeGotoEquatorial(10.0, 20.0), 1);
    EXPECT_EQ(messages_.messages().back().detail,
              "Scope Position:\nRa:" + hoursText(123.5 / 15.0) + "\nDec:" + degreesText(45.25));
}

TEST_F(ScopeDispatch, Lx200GotoSendsThePipelinePlace) {
    auto mount = simulated(5);
    prefs().correction = 2;
    const PipelinePlace p = pipelinePlace(5.919529, 7.407064);
    ASSERT_EQ(scopeGotoEquatorial(5.919529, 7.407064), 1) << messages_.lastTitle();
    const std::string sent = mount->received();
    const std::size_t at = sent.find("#:Sr ");
    ASSERT_NE(at, std::string::npos) << sent;
    auto raSent = parseAngleText(sent.substr(at + 5, 8));
    ASSERT_TRUE(raSent);
    EXPECT_NEAR(*raSent, p.ra, 1.0 / 3600);
    EXPECT_NE(sent.find(":MS#"), std::string::npos);
}

TEST_F(ScopeDispatch, GotoFailuresReturnZero) {
    // No port: the connect fails; unknown and unimplemented drives say so.
    struct {
        int code;
        const char* message;
    } rows[] = {{5, "Fail to open serial connection"},
                {102, "Unknown scope drive"},
                {100, "Scope Connect not supported for the drive you selected"},
                {18, "SiderealTech is not supported yet"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.code);
        prefs().scopeDrive = row.code;
        prefs().scopePort = 0;
        messages_.clear();
        EXPECT_EQ(scopeGotoEquatorial(1.0, 1.0), 0);
        EXPECT_TRUE(messages_.shown(row.message)) << messages_.lastTitle();
    }
}

TEST_F(ScopeDispatch, SyncOfAnEncoderBoxSetsItsOffsets) {
    prefs().mountType = 1;
    auto mount = simulated(1, SimulatorOptions{true, 0, 0, 100.0, 10.0});
    ASSERT_EQ(scopeSyncEquatorial(5.919529, 7.407064), 1) << messages_.lastTitle();
    const ScopeTarget& t = lastScopeTarget();
    double az = 0, alt = 0;
    ASSERT_EQ(scopeReadPosition(az, alt), 1);
    EXPECT_NEAR(az, t.azDeg, 0.05);
    EXPECT_NEAR(alt, t.altDeg, 0.05);
}

}  // namespace
}  // namespace nocturnel
