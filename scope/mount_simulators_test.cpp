// What the simulators answer to the commands other software sends first (INDI's drivers,
// planetarium programs), from the mount makers' command sets: Meade's LX200 (ACK, clock, site,
// product), Celestron's NexStar (version, model, tracking mode, alignment), the Temma's
// sidereal time, latitude and motor state. Byte transcripts, without a pseudo-terminal.
#include <gtest/gtest.h>

#include <chrono>
#include <ctime>
#include <memory>
#include <string>

#include "scope/drive_types.h"
#include "scope/lx200_sim.h"
#include "scope/nexstar_sim.h"
#include "scope/takahashi_simulator.h"

namespace nocturnel {
namespace {

std::string ask(PtyMount::Responder& responder, std::string bytes) { return responder(bytes); }

// Today's UT date as the LX200 writes it, "MM/DD/YY#".
std::string utDate() {
    const std::time_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    std::tm fields{};
    gmtime_r(&now, &fields);
    char text[32];
    std::snprintf(text, sizeof text, "%02d/%02d/%02d#", fields.tm_mon + 1, fields.tm_mday, fields.tm_year % 100);
    return text;
}

TEST(MountSimulators, Lx200AnswersTheMeadeCommandSet) {
    auto lx200 = makeLx200Responder(std::make_shared<Lx200MountModel>(lx200MountForDrive(kDriveLx200, true, 5.5, 22)));
    EXPECT_EQ(ask(lx200, "\x06"), "P");                  // ACK: polar alignment
    EXPECT_EQ(ask(lx200, ":GVP#"), "LX200 Classic#");
    EXPECT_EQ(ask(lx200, ":GG#"), "+00#");               // hours to add to local time for UT
    EXPECT_EQ(ask(lx200, ":GC#"), utDate());             // the simulated clock, not a fixed date
    EXPECT_EQ(ask(lx200, ":Gt#"), "+45*00#");
    EXPECT_EQ(ask(lx200, ":St+35*30#"), "1");
    EXPECT_EQ(ask(lx200, ":Gt#"), "+35*30#");
    EXPECT_EQ(ask(lx200, ":SG-02#"), "1");               // local time is UT + 2 h
    EXPECT_EQ(ask(lx200, ":GG#"), "-02#");
    EXPECT_EQ(ask(lx200, ":SL23:59:58#"), "1");
    EXPECT_EQ(ask(lx200, ":GL#").substr(0, 5), "23:59");
    EXPECT_EQ(ask(lx200, ":GR#:GD#"), "05:30:00#+22\xDF" "00:00#");

    auto autostar = makeLx200Responder(std::make_shared<Lx200MountModel>(lx200MountForDrive(kDriveAutoStar, true, 0, 0)));
    EXPECT_EQ(ask(autostar, ":GVP#"), "Autostar#");
    auto gemini = makeLx200Responder(std::make_shared<Lx200MountModel>(lx200MountForDrive(kDriveLosmandy, true, 0, 0)));
    EXPECT_EQ(ask(gemini, "\x06"), "G#");                // Gemini: ready
    EXPECT_EQ(ask(gemini, "<140:s#"), "800#");           // a native query
}

TEST(MountSimulators, NexStarAnswersTheCelestronCommandSet) {
    auto nexstar = makeNexStarResponder(82.5, 22.0);
    EXPECT_EQ(ask(nexstar, "Kx"), "x#");
    EXPECT_EQ(ask(nexstar, "V"), std::string("\x04\x0A#", 3));   // version 4.10
    EXPECT_EQ(ask(nexstar, "J"), std::string("\x01#", 2));       // alignment complete
    EXPECT_EQ(ask(nexstar, "t"), std::string("\x02#", 2));       // EQ north
    EXPECT_EQ(ask(nexstar, "L"), "0#");
    EXPECT_EQ(ask(nexstar, std::string("P\x01\x10\xFE\x00\x00\x00\x02", 8)), std::string("\x04\x0A#", 3));
    EXPECT_EQ(ask(nexstar, "S4000,1000"), "#");                   // sync: 90 and 22.5 degrees
    EXPECT_EQ(ask(nexstar, "E"), "4000,1000#");
}

TEST(MountSimulators, TemmaAnswersItsSiderealTimeLatitudeAndMotors) {
    auto temma = makeTakahashiResponder();
    EXPECT_EQ(ask(temma, "T123456\r\n"), "");
    EXPECT_EQ(ask(temma, "g\r\n"), "g123456\r\n");
    EXPECT_EQ(ask(temma, "I-35405\r\n"), "");
    EXPECT_EQ(ask(temma, "i\r\n"), "i-35405\r\n");
    EXPECT_EQ(ask(temma, "STN-COD\r\n"), "stn-on\r\n");
    EXPECT_EQ(ask(temma, "STN-OFF\r\n"), "stn-off\r\n");
}

}  // namespace
}  // namespace nocturnel
