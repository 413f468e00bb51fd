#pragma once
// The program's one serial connection (POSIX termios), shared by the telescope drives, the
// encoder boxes, the GPS receiver and the camera cable. One port open at a time.
// Results follow the program's convention: 1 success, 0 failure (with a message shown).
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace nocturnel {

// Index 0 stands for no port; then the serial devices present (/dev/ttyUSB*, /dev/ttyACM*,
// /dev/ttyS*, in a stable order); last, the device path of the preferences (scopeDevice)
// when it is set and not already listed.
const std::vector<std::string>& portNameList();
void rebuildPortNameList();
// Index of a device path in the list (rebuilding it first), -1 when absent.
int portIndexOf(const std::string& device);

int serialOpen(int portIndex, int baud);           // 1 success, 0 failure
int serialSetLineOptions(uint32_t options);         // Palm-layout option bits
int serialWrite(const void* bytes, std::size_t count);
int serialRead(void* buffer, std::size_t max);      // bytes read; 0 on time-out, error or not open
void serialClose();                                  // only when open and holdOpen is clear
// Drops bytes received and not yet read (a late or over-long reply of an earlier command).
void serialDiscardInput();
bool serialIsOpen();

void setHoldOpen(int flag);
int holdOpen();
int toggleTrace();
int isTraceOn();
// Shows a trace message (label, command or reply text) when trace mode is on. The bytes are
// shown as printable ASCII: CR and LF as \r and \n, every other control or non-ASCII byte
// as \xHH (the LX200 degree sign is \xDF), a backslash as \\.
void traceMessage(const std::string& label, const std::string& text);
std::string traceText(std::string_view bytes);
// True while a trace message is being shown: a message sink can tell trace output from a
// failure message.
bool isShowingTrace();
// Whether the last serialRead stopped at its time-out before the bytes asked for came (the
// mount did not answer in time), as opposed to a full reply or a line error.
bool serialLastReadTimedOut();
// The detail line of a failure whose reply did not come within the link's time-outs.
inline constexpr std::string_view kMountDidNotAnswerInTime = "The mount did not answer in time.";

// Test seam: the settle time after opening, 3500 ms unless a test shortens it.
void setSerialSettleMillisecondsForTests(int milliseconds);

}  // namespace nocturnel
