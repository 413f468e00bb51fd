#include "scope/serial_test_fixture.h"
#include "scope/serial_link.h"

#include "scope/pty_mount.h"
#include "scope/serial_options.h"
#include "settings/message.h"
#include "settings/preferences.h"
#include "settings/program_folder.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <thread>

#include <gtest/gtest.h>

namespace nocturnel {
namespace {

using namespace std::chrono_literals;

// Answers every byte with its upper-case form.
std::string upperEcho(std::string& pending) {
    std::string reply = pending;
    for (char& c : reply) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    pending.clear();
    return reply;
}

std::string silent(std::string& pending) {
    pending.clear();
    return {};
}

// The line settings as another opener of the same tty sees them.
termios lineSettingsOf(const std::string& path) {
    termios tio{};
    int fd = ::open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK);
    EXPECT_GE(fd, 0);
    if (fd >= 0) {
        EXPECT_EQ(::tcgetattr(fd, &tio), 0);
        ::close(fd);
    }
    return tio;
}

class SerialLinkTest : public SerialTestFixture {};

TEST_F(SerialLinkTest, WritesReachTheDeviceAndRepliesComeBack) {
    PtyMount mount(upperEcho);
    ASSERT_TRUE(mount.isReady());
    int port = selectAsScopePort(mount);
    ASSERT_GT(port, 0);
    ASSERT_EQ(serialOpen(port, 9600), 1);
    EXPECT_TRUE(serialIsOpen());
    ASSERT_EQ(serialWrite(":GD#", 4), 1);
    char reply[8] = {};
    EXPECT_EQ(serialRead(reply, 4), 4);
    EXPECT_EQ(std::string(reply, 4), ":GD#");
    EXPECT_EQ(mount.received(), ":GD#");
    EXPECT_TRUE(messages_.messages().empty());
}

TEST_F(SerialLinkTest, OpenSetsEightNoneOneRawWithoutFlowControl) {
    PtyMount mount(silent);
    ASSERT_EQ(serialOpen(selectAsScopePort(mount), 9600), 1);
    termios tio = lineSettingsOf(mount.devicePath());
    EXPECT_EQ(tio.c_cflag & CSIZE, static_cast<tcflag_t>(CS8));
    EXPECT_EQ(tio.c_cflag & (PARENB | CSTOPB | CRTSCTS), 0u);
    EXPECT_EQ(tio.c_iflag & (IXON | IXOFF | ICRNL), 0u);
    EXPECT_EQ(tio.c_lflag & (ICANON | ECHO), 0u);
    EXPECT_EQ(tio.c_oflag & OPOST, 0u);
    EXPECT_EQ(::cfgetospeed(&tio), static_cast<speed_t>(B9600));
}

TEST_F(SerialLinkTest, SecondOpenKeepsTheFirstBaudRate) {
    PtyMount mount(silent);
    int port = selectAsScopePort(mount);
    ASSERT_EQ(serialOpen(port, 9600), 1);
    EXPECT_EQ(serialOpen(port, 4800), 1);
    EXPECT_EQ(::cfgetospeed(&static_cast<const termios&>(lineSettingsOf(mount.devicePath()))), static_cast<speed_t>(B9600));
    serialClose();
    ASSERT_EQ(serialOpen(port, 4800), 1);
    EXPECT_EQ(::cfgetospeed(&static_cast<const termios&>(lineSettingsOf(mount.devicePath()))), static_cast<speed_t>(B4800));
}

TEST_F(SerialLinkTest, PortIndexZeroAsksForAPortAndIndexBeyondTheListIsSilent) {
    EXPECT_EQ(serialOpen(0, 9600), 0);
    ASSERT_EQ(messages_.messages().size(), 1u);
    EXPECT_EQ(messages_.messages()[0].title, "No communication port is selected.\n");
    EXPECT_EQ(messages_.messages()[0].detail, "Please select one using Preference 1/6.");
    messages_.clear();
    int count = static_cast<int>(portNameList().size());
    for (int index : {count, count + 1, 1000, -1}) {
        EXPECT_EQ(serialOpen(index, 9600), 0) << index;
    }
    EXPECT_TRUE(messages_.messages().empty());
    EXPECT_FALSE(serialIsOpen());
}

TEST_F(SerialLinkTest, PortListStartsWithNoPortAndEndsWithThePreferredDevice) {
    PtyMount mount(silent);
    int port = selectAsScopePort(mount);
    const auto& list = portNameList();
    ASSERT_GE(list.size(), 2u);
    EXPECT_EQ(list.front(), "None");
    EXPECT_EQ(list.back(), mount.devicePath());
    EXPECT_EQ(port, static_cast<int>(list.size()) - 1);
    EXPECT_EQ(portIndexOf(mount.devicePath()), port);  // listed once, same place
    EXPECT_EQ(portIndexOf("/dev/nocturnel-no-such-port"), -1);
    for (std::size_t i = 1; i + 1 < list.size(); ++i) EXPECT_EQ(list[i].rfind("/dev/tty", 0), 0u) << list[i];
}

TEST_F(SerialLinkTest, VanishedOrBusyDeviceCannotBeOpened) {
    auto mount = std::make_unique<PtyMount>(silent);
    int port = selectAsScopePort(*mount);
    std::string path = mount->devicePath();
    {
        // Another program holds the port.
        int other = ::open(path.c_str(), O_RDWR | O_NOCTTY);
        ASSERT_GE(other, 0);
        ASSERT_EQ(::flock(other, LOCK_EX), 0);
        EXPECT_EQ(serialOpen(port, 9600), 0);
        ::close(other);
        ASSERT_EQ(messages_.messages().size(), 1u);
        EXPECT_EQ(messages_.messages()[0].title, "Can't open serial port");
        EXPECT_EQ(messages_.messages()[0].detail, path);
    }
    messages_.clear();
    mount.reset();
    EXPECT_EQ(serialOpen(port, 9600), 0);
    EXPECT_TRUE(messages_.shown("Can't open serial port"));
    EXPECT_FALSE(serialIsOpen());
}

TEST_F(SerialLinkTest, RateTheLineCannotTakeIsRefused) {
    PtyMount mount(silent);
    EXPECT_EQ(serialOpen(selectAsScopePort(mount), 12345), 0);
    EXPECT_EQ(messages_.lastTitle(), "Can't set serial port parameters");
    EXPECT_FALSE(serialIsOpen());
}

TEST_F(SerialLinkTest, ClosedLinkRefusesEverySilently) {
    char buffer[4];
    EXPECT_EQ(serialWrite("x", 1), 0);
    EXPECT_EQ(serialRead(buffer, sizeof buffer), 0);
    EXPECT_EQ(serialSetLineOptions(kLineOptionsTakahashi), 0);
    EXPECT_TRUE(messages_.messages().empty());
}

TEST_F(SerialLinkTest, SilentDeviceTimesOutWithNothingRead) {
    PtyMount mount(silent);
    ASSERT_EQ(serialOpen(selectAsScopePort(mount), 9600), 1);
    ASSERT_EQ(serialWrite(":GR#", 4), 1);
    char buffer[10];
    auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(serialRead(buffer, sizeof buffer), 0);
    auto waited = std::chrono::steady_clock::now() - start;
    // The total time-out is 2 ms per byte plus 400 ms; the read must wait for it and not hang.
    EXPECT_GE(waited, 400ms);
    EXPECT_LT(waited, 5s);
}

TEST_F(SerialLinkTest, ShortReplyReturnsTheCountThatCame) {
    PtyMount mount([](std::string& pending) {
        pending.clear();
        return std::string("12:3");
    });
    ASSERT_EQ(serialOpen(selectAsScopePort(mount), 9600), 1);
    ASSERT_EQ(serialWrite("?", 1), 1);
    char buffer[16];
    EXPECT_EQ(serialRead(buffer, 9), 4);
    EXPECT_EQ(std::string(buffer, 4), "12:3");
}

TEST_F(SerialLinkTest, ReadEndsWhenTheLineFallsSilentBetweenBytes) {
    PtyMount mount([](std::string& pending) {
        pending.clear();
        return std::string("AB");
    });
    ASSERT_EQ(serialOpen(selectAsScopePort(mount), 9600), 1);
    ASSERT_EQ(serialWrite("?", 1), 1);
    // The rest comes 1200 ms later: past the 400 ms allowed between bytes, well within the
    // 2 x 1000 + 400 ms allowed in total.
    std::thread late([&mount] {
        std::this_thread::sleep_for(1200ms);
        mount.send("CD");
    });
    char buffer[1000];
    int got = serialRead(buffer, sizeof buffer);
    late.join();
    EXPECT_EQ(got, 2);
    EXPECT_EQ(serialRead(buffer, 2), 2);  // the late bytes wait for the next read
    EXPECT_EQ(std::string(buffer, 2), "CD");
}

TEST_F(SerialLinkTest, DeviceUnpluggedDuringAReadEndsTheReadWithNothing) {
    PtyMount mount(silent);
    ASSERT_EQ(serialOpen(selectAsScopePort(mount), 9600), 1);
    std::thread unplug([&mount] {
        std::this_thread::sleep_for(100ms);
        mount.closeNow();
    });
    char buffer[200];
    int got = serialRead(buffer, sizeof buffer);
    unplug.join();
    EXPECT_EQ(got, 0);
    EXPECT_EQ(serialRead(buffer, sizeof buffer), 0);
    EXPECT_EQ(serialWrite("#:Q#", 4), 0);
    serialClose();
    EXPECT_FALSE(serialIsOpen());
}

TEST_F(SerialLinkTest, HoldOpenKeepsThePortUntilReleased) {
    PtyMount mount(silent);
    ASSERT_EQ(serialOpen(selectAsScopePort(mount), 9600), 1);
    setHoldOpen(1);
    EXPECT_EQ(holdOpen(), 1);
    serialClose();
    EXPECT_TRUE(serialIsOpen());
    EXPECT_EQ(serialWrite("x", 1), 1);
    setHoldOpen(0);
    serialClose();
    EXPECT_FALSE(serialIsOpen());
}

TEST_F(SerialLinkTest, TraceModeShowsMessagesAndForbidsHoldOpen) {
    traceMessage("Connect:Send", ":GD#");
    EXPECT_TRUE(messages_.messages().empty());
    EXPECT_EQ(toggleTrace(), 1);
    EXPECT_EQ(isTraceOn(), 1);
    setHoldOpen(1);
    EXPECT_EQ(holdOpen(), 0);
    traceMessage("Connect:Send", ":GD#");
    ASSERT_EQ(messages_.messages().size(), 1u);
    EXPECT_EQ(messages_.messages()[0].title, "Connect:Send");
    EXPECT_EQ(messages_.messages()[0].detail, ":GD#");
    EXPECT_EQ(toggleTrace(), 0);
    setHoldOpen(1);
    EXPECT_EQ(holdOpen(), 1);
}

// A pseudo-terminal always keeps 8 data bits without parity, so only the handshake and the
// speed are visible here; the data bits and parity are checked on the translation below.
TEST_F(SerialLinkTest, LineOptionsReachTheTerminal) {
    PtyMount mount(silent);
    ASSERT_EQ(serialOpen(selectAsScopePort(mount), 19200), 1);
    struct Case {
        uint32_t options;
        bool handshake;
    };
    for (const Case& c : {Case{kLineOptionsTakahashi, true}, Case{0x00, false}, Case{kLineOptionsNexStarUltima, true}}) {
        ASSERT_EQ(serialSetLineOptions(c.options), 1) << c.options;
        termios tio = lineSettingsOf(mount.devicePath());
        EXPECT_EQ((tio.c_cflag & CRTSCTS) != 0, c.handshake) << c.options;
        EXPECT_EQ(tio.c_iflag & (IXON | IXOFF), 0u) << c.options;
        EXPECT_EQ(::cfgetospeed(&tio), static_cast<speed_t>(B19200)) << c.options;
    }
    EXPECT_TRUE(messages_.messages().empty());
}

// What the translated block asks of the terminal.
TEST(LineOptions, BlockToTermios) {
    termios tio{};
    ::cfsetospeed(&tio, B19200);
    commStateToTermios(applyLineOptions(openCommState(CommState{}), kLineOptionsTakahashi), tio);
    EXPECT_EQ(tio.c_cflag & CSIZE, static_cast<tcflag_t>(CS6));
    EXPECT_NE(tio.c_cflag & PARENB, 0u);
    EXPECT_EQ(tio.c_cflag & PARODD, 0u);
    EXPECT_NE(tio.c_cflag & CRTSCTS, 0u);
    EXPECT_NE(tio.c_iflag & INPCK, 0u);
    EXPECT_EQ(::cfgetospeed(&tio), static_cast<speed_t>(B19200));

    commStateToTermios(openCommState(CommState{}), tio);
    EXPECT_EQ(tio.c_cflag & CSIZE, static_cast<tcflag_t>(CS8));
    EXPECT_EQ(tio.c_cflag & (PARENB | CSTOPB | CRTSCTS), 0u);
    EXPECT_EQ(tio.c_iflag & (INPCK | IXON | IXOFF), 0u);
    EXPECT_NE(tio.c_cflag & (CLOCAL | CREAD), 0u);
    EXPECT_EQ(tio.c_cc[VMIN], 0);
}

TEST_F(SerialLinkTest, LineOptionsOnAVanishedDeviceCloseTheHandleButKeepTheFlag) {
    PtyMount mount(silent);
    ASSERT_EQ(serialOpen(selectAsScopePort(mount), 9600), 1);
    mount.closeNow();
    EXPECT_EQ(serialSetLineOptions(kLineOptionsNexStarUltima), 0);
    EXPECT_EQ(messages_.lastTitle(), "Can't set serial port parameters");
    EXPECT_TRUE(serialIsOpen());
    EXPECT_EQ(serialWrite("x", 1), 0);
    EXPECT_EQ(serialSetLineOptions(kLineOptionsNexStarUltima), 0);
    serialClose();
    EXPECT_FALSE(serialIsOpen());
}

// The pure translation of the option bits, from the block serialOpen leaves behind.
TEST(LineOptions, TranslateBitsOntoTheOpenBlock) {
    const CommState opened = openCommState(CommState{0xFFFFFFFF, 5, Parity::Odd, 2});
    EXPECT_EQ(opened.flagWord, 0xFFFF8083u);
    EXPECT_EQ(opened.dataBits, 8);
    EXPECT_EQ(opened.parity, Parity::None);
    EXPECT_EQ(opened.stopBits, 1);

    struct Case {
        uint32_t options;
        uint32_t flagWord;  // low 15 bits
        int dataBits;
        Parity parity;
    };
    const CommState base = openCommState(CommState{});  // flag word 0x83
    for (const Case& c : {
             Case{0x00, 0x1093, 8, Parity::None},  // lines on, no handshake
             Case{0x01, 0x1093, 8, Parity::None},  // the stop-bit option only keeps binary mode
             Case{0x02, 0x1093, 8, Parity::None},  // parity on alone changes no parity
             Case{0x06, 0x1093, 8, Parity::Even},
             Case{0x10, 0x20EF, 8, Parity::None},  // hardware handshake
             Case{0x40, 0x1093, 6, Parity::None},
             Case{0x80, 0x1093, 7, Parity::None},
             Case{0xC0, 0x1093, 6, Parity::None},  // meant as 8 bits, ends as 6
             Case{208, 0x20EF, 6, Parity::None},
             Case{246, 0x20EF, 6, Parity::Even},
         }) {
        CommState s = applyLineOptions(base, c.options);
        EXPECT_EQ(s.flagWord & 0x7FFF, c.flagWord) << c.options;
        EXPECT_EQ(s.dataBits, c.dataBits) << c.options;
        EXPECT_EQ(s.parity, c.parity) << c.options;
        EXPECT_EQ(s.stopBits, 1) << c.options;
    }
    // Software flow control never survives, transmit-continue is always set.
    CommState xon = base;
    xon.flagWord |= kFlagOutX | kFlagInX | 0x400;
    xon.flagWord &= ~kFlagTxContinueOnXoff;
    EXPECT_EQ(applyLineOptions(xon, 0).flagWord & 0x780, 0x480u);
}

TEST(LineOptions, BaudRatesMapToTerminalSpeeds) {
    EXPECT_EQ(baudToSpeed(4800), std::optional<speed_t>(B4800));
    EXPECT_EQ(baudToSpeed(9600), std::optional<speed_t>(B9600));
    EXPECT_EQ(baudToSpeed(19200), std::optional<speed_t>(B19200));
    for (int bad : {0, -9600, 9601, 12345}) EXPECT_FALSE(baudToSpeed(bad).has_value()) << bad;
}

// Only a terminal is a serial port: everything else is refused with the path and is never
// written to (a notes file given as --port, /dev/zero, /dev/urandom, a folder, a FIFO).
TEST_F(SerialLinkTest, OnlyATerminalOpensAsASerialPort) {
    // A short folder of its own: the record keeps device paths of 63 characters at most.
    const std::filesystem::path shortFolder = "/tmp/ncs_" + std::to_string(::getpid());
    std::filesystem::create_directories(shortFolder);
    const auto notes = shortFolder / "notes.txt";
    { std::FILE* f = std::fopen(notes.c_str(), "w"); ASSERT_NE(f, nullptr); std::fputs("keep", f); std::fclose(f); }
    const auto fifo = shortFolder / "line.fifo";
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    int fifoReader = ::open(fifo.c_str(), O_RDONLY | O_NONBLOCK);  // so that a writer could open it
    ASSERT_GE(fifoReader, 0);

    for (const std::string& path : {notes.string(), std::string("/dev/zero"), std::string("/dev/urandom"),
                                   std::string("/dev/null"), shortFolder.string(), fifo.string()}) {
        SCOPED_TRACE(path);
        messages_.clear();
        std::strncpy(prefs().scopeDevice, path.c_str(), sizeof prefs().scopeDevice - 1);
        const int index = portIndexOf(path);
        ASSERT_GT(index, 0);
        EXPECT_EQ(serialOpen(index, 9600), 0);
        EXPECT_FALSE(serialIsOpen());
        EXPECT_EQ(serialWrite(":GR#", 4), 0);
        ASSERT_EQ(messages_.messages().size(), 1u);
        EXPECT_EQ(messages_.messages()[0].title, "Can't open serial port");
        EXPECT_EQ(messages_.messages()[0].detail, path);
    }
    char scrap[8];
    EXPECT_EQ(::read(fifoReader, scrap, sizeof scrap), 0);  // nothing was written into the FIFO
    ::close(fifoReader);
    EXPECT_EQ(std::filesystem::file_size(notes), 4u);
    std::filesystem::remove_all(shortFolder);
}

TEST_F(SerialLinkTest, TraceShowsControlAndNonAsciiBytesAsEscapes) {
    EXPECT_EQ(traceText(":Sd +22\xDF" "30:00#"), ":Sd +22\\xDF30:00#");
    EXPECT_EQ(traceText(std::string("v\r\n", 3)), "v\\r\\n");
    EXPECT_EQ(traceText(std::string("P\x02\x11\x24\x09\x00\x00\x00", 8)), "P\\x02\\x11$\\x09\\x00\\x00\\x00");
    EXPECT_EQ(traceText("a\\b"), "a\\\\b");
    toggleTrace();
    traceMessage("GotoEQ:Set dec", std::string("+22\xDF", 4));
    ASSERT_EQ(messages_.messages().size(), 1u);
    EXPECT_EQ(messages_.messages()[0].detail, "+22\\xDF");
}

TEST_F(SerialLinkTest, AReadThatOutlastsItsTimeOutSaysSo) {
    PtyMount mount(silent);
    ASSERT_EQ(serialOpen(selectAsScopePort(mount), 9600), 1);
    char reply[4];
    EXPECT_EQ(serialRead(reply, 4), 0);
    EXPECT_TRUE(serialLastReadTimedOut());
    mount.setResponder(upperEcho);
    ASSERT_EQ(serialWrite("ab", 2), 1);
    EXPECT_EQ(serialRead(reply, 2), 2);
    EXPECT_FALSE(serialLastReadTimedOut());
}

}  // namespace
}  // namespace nocturnel
