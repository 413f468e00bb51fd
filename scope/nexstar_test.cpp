// The NexStar module against a simulated hand control on a pseudo-terminal: exact bytes on the
// wire (Celestron's transcripts "Kx" -> "x#", "E" -> "34AB,12CE#", "R34AB,12CE" -> "#",
// "M" -> "#", pass-through "P" packets -> "#"), the offsets, and line faults.
#include "scope/serial_test_fixture.h"
#include "scope/nexstar.h"

#include "scope/nexstar_format.h"
#include "scope/nexstar_sim.h"
#include "scope/pty_mount.h"
#include "scope/serial_link.h"
#include "settings/message.h"
#include "settings/preferences.h"
#include "settings/program_folder.h"

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <cmath>
#include <filesystem>
#include <memory>
#include <string>

#include <gtest/gtest.h>

namespace nocturnel {
namespace {

double degreesOf16(uint32_t v) { return (v + 0.5) * 360.0 / 65536.0; }
std::string hex16(uint32_t v) { return nexstarHex16(degreesOf16(v)); }

std::string packetText(const NexStarPacket& p) { return std::string(p.begin(), p.end()); }

class NexStarTest : public SerialTestFixture {
protected:
    void SetUp() override {
        SerialTestFixture::SetUp();
        nexstarSetRate(kNexStarGps, 0);
    }
    void startMount(NexStarMountState initial = {}) {
        model_ = std::make_shared<NexStarMountModel>(std::move(initial));
        mount_ = std::make_unique<PtyMount>(makeNexStarResponder(model_));
        ASSERT_TRUE(mount_->isReady());
        ASSERT_GT(selectAsScopePort(*mount_), 0);
    }
    void connected(int driveCode) {
        ASSERT_EQ(nexstarConnect(driveCode), 1);
        // The Ultima's "\r" may reach the mount after the echo that answered "Kx".
        if (driveCode == kNexStarUltima) {
            ASSERT_TRUE(mount_->waitUntilReceived("\r"));
        }
        mount_->clearReceived();
    }
    std::vector<std::string> titles() const {
        std::vector<std::string> t;
        for (const auto& m : messages_.messages()) t.push_back(m.title);
        return t;
    }

    std::shared_ptr<NexStarMountModel> model_;
    std::unique_ptr<PtyMount> mount_;
};

TEST_F(NexStarTest, ConnectEchoPerModel) {
    struct Case {
        int driveCode;
        std::string echo;
        int result;
        std::string sent;
    };
    const Case cases[] = {
        {kNexStarGps, "x#", 1, "Kx"},  {kNexStarGps, "X#", 1, "Kx"},     {20, "x#", 1, "Kx"},
        {kNexStarOldGt, "X#", 1, "Kx"}, {kNexStarUltima, "x#", 1, "Kx\r"}, {kNexStarUltima, "X#", 0, "Kx\r"},
        {kNexStar58, "", 1, "K?"},      {kNexStarGps, "#", 0, "Kx"},
    };
    for (const Case& c : cases) {
        NexStarMountState s;
        s.echoReply = c.echo;
        startMount(s);
        messages_.clear();
        EXPECT_EQ(nexstarConnect(c.driveCode), c.result) << c.driveCode << " " << c.echo;
        EXPECT_TRUE(mount_->waitUntilReceived(c.sent)) << c.driveCode;
        EXPECT_EQ(mount_->received(), c.sent) << c.driveCode;
        if (c.result == 1) {
            EXPECT_TRUE(messages_.messages().empty());
            EXPECT_TRUE(serialIsOpen());
        } else {
            EXPECT_EQ(titles(), std::vector<std::string>{"Fail to open Nexstar connection"});
            EXPECT_FALSE(serialIsOpen());
        }
        nexstarDisconnect();
    }
}

TEST_F(NexStarTest, UltimaSetsItsLineOptions) {
    startMount();
    ASSERT_EQ(nexstarConnect(kNexStarUltima), 1);
    termios tio{};
    int fd = ::open(mount_->devicePath().c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK);
    ASSERT_GE(fd, 0);
    ASSERT_EQ(::tcgetattr(fd, &tio), 0);
    ::close(fd);
    EXPECT_NE(tio.c_cflag & CRTSCTS, 0u);  // 208 asks for the hardware handshake
}

TEST_F(NexStarTest, ConnectRefusals) {
    EXPECT_EQ(nexstarConnect(kNexStarGps), 0);
    EXPECT_EQ(titles(), (std::vector<std::string>{"No communication port is selected.\n", "Fail to open serial connection"}));

    startMount();
    for (int code : {7, 21, -3}) {
        messages_.clear();
        EXPECT_EQ(nexstarConnect(code), 0) << code;
        EXPECT_EQ(titles(), (std::vector<std::string>{"Seems scope is not a Nexstar !", "Fail to open Nexstar connection"}));
        EXPECT_FALSE(serialIsOpen());
    }
    EXPECT_EQ(mount_->received(), "");

    NexStarMountState silent;
    silent.silent = true;
    startMount(silent);
    messages_.clear();
    EXPECT_EQ(nexstarConnect(kNexStar58), 0);
    EXPECT_EQ(titles(), std::vector<std::string>{"Fail to open Nexstar connection"});
}

TEST_F(NexStarTest, ReadsTheDocumentedReply) {
    NexStarMountState s;
    s.raDeg = degreesOf16(0x34AB);
    s.decAngleDeg = degreesOf16(0x12CE);
    startMount(s);
    connected(kNexStarGps);
    double ra = 0, dec = 0;
    ASSERT_EQ(nexstarReadRaDec(kNexStarGps, ra, dec), 1);
    EXPECT_EQ(mount_->received(), "E");
    EXPECT_NEAR(ra, 0x34AB * 360.0 / 65536 / 15, 1e-12);
    EXPECT_NEAR(dec, 26.4441, 5e-5);
}

TEST_F(NexStarTest, PreciseReadsAndGotos) {
    prefs().nexstarPrecise = 1;
    NexStarMountState s;
    s.raDeg = 83.63308;  // M1
    s.decAngleDeg = 22.01450;
    startMount(s);
    connected(kNexStarGps);
    double ra = 0, dec = 0;
    ASSERT_EQ(nexstarReadRaDec(kNexStarGps, ra, dec), 1);
    EXPECT_EQ(mount_->received(), "e");
    EXPECT_NEAR(ra * 15, 83.63308, 360.0 / 16777216);
    EXPECT_NEAR(dec, 22.01450, 360.0 / 16777216);

    mount_->clearReceived();
    EXPECT_EQ(nexstarGoto(kNexStarGps, 5.5, -30.0), 1);
    EXPECT_EQ(mount_->received(), "r" + nexstarHex24(82.5) + "00," + nexstarHex24(330.0) + "00");
    EXPECT_EQ(mount_->received().size(), 18u);
    EXPECT_EQ(nexstarHex24(330.0), "EAAAAA");
}

TEST_F(NexStarTest, DeclinationFoldsOnRead) {
    NexStarMountState s;
    s.decAngleDeg = 200;
    startMount(s);
    connected(kNexStarGps);
    double ra = 0, dec = 0;
    ASSERT_EQ(nexstarReadRaDec(kNexStarGps, ra, dec), 1);
    EXPECT_NEAR(dec, -70, 360.0 / 65536);
}

TEST_F(NexStarTest, GotoSouthSendsTheAngleFromTheTop) {
    startMount();
    connected(kNexStarGps);
    EXPECT_EQ(nexstarGoto(kNexStarGps, 2.0, -30.0), 1);
    EXPECT_EQ(mount_->received(), "R" + nexstarHex16(30.0) + ",EAAA");
    EXPECT_NEAR(model_->state().decAngleDeg, 330, 360.0 / 65536);

    // No answer to the goto is a failure.
    model_->update([](NexStarMountState& m) { m.gotoReply.clear(); });
    EXPECT_EQ(nexstarGoto(kNexStarGps, 2.0, -30.0), 0);
}

TEST_F(NexStarTest, Nexstar58SpeaksRawBytesAndWaitsForNothingAfterItsGoto) {
    NexStarMountState s;
    s.raw = true;
    s.raDeg = degreesOf16(0x34AB);
    s.decAngleDeg = degreesOf16(0x12CE);
    startMount(s);
    connected(kNexStar58);
    double ra = 0, dec = 0;
    ASSERT_EQ(nexstarReadRaDec(kNexStar58, ra, dec), 1);
    EXPECT_EQ(mount_->received(), "?E");
    EXPECT_NEAR(dec, 26.4441, 5e-5);

    mount_->clearReceived();
    EXPECT_EQ(nexstarGoto(kNexStar58, 0x1234 * 24.0 / 65536 + 1e-9, 0x0ABC * 360.0 / 65536 + 1e-9), 1);
    ASSERT_TRUE(mount_->waitUntilReceived(std::string("\x0A\xBC", 2)));
    const std::string sent = mount_->received();
    ASSERT_EQ(sent.size(), 6u);
    EXPECT_EQ(sent.substr(0, 1), "?");
    EXPECT_EQ(sent.substr(1), std::string("R\x12\x34\x0A\xBC", 5));  // exactly five bytes
    // Slewing keys do nothing on this model.
    EXPECT_EQ(nexstarStartMove(kNexStar58, 0), 1);
    EXPECT_EQ(nexstarStopAll(kNexStar58), 1);
    EXPECT_EQ(mount_->received(), sent);
}

TEST_F(NexStarTest, UltimaAddsACarriageReturn) {
    startMount();
    connected(kNexStarUltima);
    double ra = 0, dec = 0;
    ASSERT_EQ(nexstarReadRaDec(kNexStarUltima, ra, dec), 1);
    EXPECT_TRUE(mount_->waitUntilReceived("\r"));
    EXPECT_EQ(mount_->received(), "E\r");
    mount_->clearReceived();
    EXPECT_EQ(nexstarGoto(kNexStarUltima, 0, 0), 1);
    EXPECT_TRUE(mount_->waitUntilReceived("\r"));
    EXPECT_EQ(mount_->received(), "R0000,0000\r");
}

TEST_F(NexStarTest, OffsetsAndSync) {
    NexStarMountState s;
    s.raDeg = degreesOf16(0x4000);  // 6 h
    s.decAngleDeg = degreesOf16(0x1000);  // 22.5 degrees
    startMount(s);
    connected(kNexStarGps);

    prefs().nexstarRaOffsetHours = 1.0;
    prefs().nexstarDecOffsetDeg = 2.5;
    double ra = 0, dec = 0;
    ASSERT_EQ(nexstarReadRaDec(kNexStarGps, ra, dec), 1);
    EXPECT_NEAR(ra, 5.0, 1e-4);
    EXPECT_NEAR(dec, 20.0, 1e-4);
    mount_->clearReceived();
    ASSERT_EQ(nexstarGoto(kNexStarGps, 5.0, 20.0), 1);  // back where it is
    EXPECT_EQ(mount_->received(), "R" + hex16(0x4000) + "," + hex16(0x1000));

    // Sync to a place 1h40m west and 3 degrees south of the mount's idea.
    ASSERT_EQ(nexstarSync(kNexStarGps, 23.5, 19.5), 1);
    ASSERT_EQ(nexstarReadRaDec(kNexStarGps, ra, dec), 1);
    EXPECT_NEAR(ra, 23.5, 1e-6);
    EXPECT_NEAR(dec, 19.5, 1e-6);
    EXPECT_NEAR(prefs().nexstarRaOffsetHours, 6.0 - 23.5 + 24, 1e-3);
    mount_->clearReceived();
    ASSERT_EQ(nexstarGoto(kNexStarGps, 23.5, 19.5), 1);
    EXPECT_EQ(mount_->received(), "R" + hex16(0x4000) + "," + hex16(0x1000));
    EXPECT_TRUE(messages_.messages().empty());
}

TEST_F(NexStarTest, MotionPacketsAreAcknowledged) {
    startMount();
    connected(kNexStarGps);
    ASSERT_EQ(nexstarSetRate(kNexStarGps, 1), 1);
    EXPECT_EQ(nexstarRateCodeInUse(), 7);
    EXPECT_EQ(nexstarStartMove(kNexStarGps, 0), 1);
    EXPECT_EQ(nexstarStopMove(kNexStarGps, 0), 1);
    EXPECT_EQ(nexstarStartMove(kNexStarGps, 2), 1);
    EXPECT_EQ(nexstarStopMove(kNexStarGps, 3), 1);
    EXPECT_EQ(mount_->received(), packetText(nexstarMovePacket(0, 7)) + packetText(nexstarStopPacket(0)) +
                                      packetText(nexstarMovePacket(2, 7)) + packetText(nexstarStopPacket(3)));
    EXPECT_EQ(mount_->received().substr(0, 8), std::string("P\x02\x11\x24\x07\0\0\0", 8));
    EXPECT_TRUE(messages_.messages().empty());

    model_->update([](NexStarMountState& m) { m.ackReply = "?"; });
    EXPECT_EQ(nexstarStartMove(kNexStarGps, 1), 1);
    EXPECT_EQ(nexstarStopMove(kNexStarGps, 1), 1);
    EXPECT_EQ(titles(), (std::vector<std::string>{"No acknowledgement from telescope in StopSlew.",
                                                  "No acknowledgement from telescope in StopSlew."}));
    EXPECT_EQ(nexstarSetRate(kNexStarGps, 7), 0);
    EXPECT_EQ(nexstarStartMove(kNexStarGps, 9), 0);
}

TEST_F(NexStarTest, OldGtMovesAndStops) {
    startMount();
    connected(kNexStarOldGt);
    ASSERT_EQ(nexstarSetRate(kNexStarOldGt, 0), 1);
    EXPECT_EQ(nexstarStartMove(kNexStarOldGt, 3), 1);
    EXPECT_EQ(nexstarStopMove(kNexStarOldGt, 3), 1);
    EXPECT_EQ(nexstarStopAll(kNexStarOldGt), 1);
    ASSERT_TRUE(mount_->waitUntilReceived(std::string("\x05\x19", 2)));
    // Stop all stops both axes' motion before cancelling the goto.
    EXPECT_EQ(mount_->received(), packetText(nexstarOldGtMovePacket(3, 9)) + packetText(nexstarOldGtStopPacket(3)) +
                                      packetText(nexstarOldGtStopPacket(0)) + packetText(nexstarOldGtStopPacket(2)) +
                                      std::string("\x05\x19", 2));
    EXPECT_TRUE(messages_.messages().empty());

    // The Ultima takes no motion packets at all.
    EXPECT_EQ(nexstarStartMove(kNexStarUltima, 0), 1);
    EXPECT_EQ(nexstarStopMove(kNexStarUltima, 0), 1);
}

TEST_F(NexStarTest, CancelGoto) {
    startMount();
    connected(kNexStarGps);
    EXPECT_EQ(nexstarStopAll(kNexStarGps), 1);
    // Both axes' stop packets, then the goto's cancel.
    EXPECT_EQ(mount_->received(), packetText(nexstarStopPacket(0)) + packetText(nexstarStopPacket(2)) + "M");
    EXPECT_TRUE(messages_.messages().empty());
    model_->update([](NexStarMountState& m) { m.ackReply.clear(); });
    EXPECT_EQ(nexstarStopAll(kNexStarGps), 1);
    EXPECT_EQ(titles(), (std::vector<std::string>{"No acknowledgement from telescope in StopSlew.",
                                                  "No acknowledgement from telescope in StopSlew.",
                                                  "No acknowledgement from telescope in Stop Goto."}));
}

TEST_F(NexStarTest, LineFaults) {
    startMount();
    connected(kNexStarGps);
    model_->update([](NexStarMountState& m) { m.silent = true; });
    double ra = 1, dec = 2;
    EXPECT_EQ(nexstarReadRaDec(kNexStarGps, ra, dec), 0);
    EXPECT_EQ(ra, 1);
    EXPECT_EQ(nexstarGoto(kNexStarGps, 1, 2), 0);
    EXPECT_EQ(nexstarSync(kNexStarGps, 1, 2), 0);
    EXPECT_EQ(messages_.lastTitle(), "Failed to get Celestron RA and Dec");

    mount_->setResponder([](std::string& pending) {
        pending.clear();
        return std::string("\xFFzz,\x01");
    });
    EXPECT_EQ(nexstarReadRaDec(kNexStarGps, ra, dec), 1);
    EXPECT_TRUE(std::isfinite(ra) && ra >= 0 && ra < 24);
    EXPECT_TRUE(std::isfinite(dec));

    mount_->closeNow();
    EXPECT_EQ(nexstarReadRaDec(kNexStarGps, ra, dec), 0);
    EXPECT_EQ(nexstarGoto(kNexStarGps, 1, 2), 0);
    EXPECT_EQ(nexstarDisconnect(), 1);
    EXPECT_FALSE(serialIsOpen());
}

TEST_F(NexStarTest, TraceAndAltAzimuth) {
    startMount();
    toggleTrace();
    ASSERT_EQ(nexstarConnect(kNexStarGps), 1);
    double a = 0, b = 0;
    ASSERT_EQ(nexstarReadRaDec(kNexStarGps, a, b), 1);
    EXPECT_EQ(titles(), (std::vector<std::string>{"Send", "Receive", "Nexstar open", "Send", "receive"}));
    EXPECT_EQ(messages_.messages()[0].detail, "Kx");
    EXPECT_EQ(messages_.messages()[1].detail, "x#");
    toggleTrace();
    messages_.clear();
    EXPECT_EQ(nexstarReadAzAlt(kNexStarGps, a, b), 0);
    EXPECT_EQ(titles(), std::vector<std::string>{"NexstarQueryAZ not implemented"});
}

}  // namespace
}  // namespace nocturnel
