#pragma once
// The serial line's settings as the program reasons about them (a device control block in the
// Windows layout: a flag word, data bits, parity, stop bits) and the pure translations between
// that block, the Palm-layout option bits the protocols pass, and POSIX termios.
#include <cstdint>
#include <optional>
#include <termios.h>

namespace nocturnel {

enum class Parity { None, Odd, Even };

// Flag word bits of the control block.
inline constexpr uint32_t kFlagBinary = 0x0001;           // binary mode
inline constexpr uint32_t kFlagParityCheck = 0x0002;      // parity checking
inline constexpr uint32_t kFlagOutxCtsFlow = 0x0004;      // CTS output flow control
inline constexpr uint32_t kFlagOutxDsrFlow = 0x0008;      // DSR output flow control
inline constexpr uint32_t kFlagDtrEnable = 0x0010;        // DTR line held on
inline constexpr uint32_t kFlagDtrHandshake = 0x0020;     // DTR handshake
inline constexpr uint32_t kFlagDsrSensitivity = 0x0040;   // DSR sensitivity
inline constexpr uint32_t kFlagTxContinueOnXoff = 0x0080; // transmit continues on XOFF
inline constexpr uint32_t kFlagOutX = 0x0100;             // XON/XOFF on output
inline constexpr uint32_t kFlagInX = 0x0200;              // XON/XOFF on input
inline constexpr uint32_t kFlagRtsEnable = 0x1000;        // RTS line held on
inline constexpr uint32_t kFlagRtsHandshake = 0x2000;     // RTS handshake

// Palm-layout option bits accepted by serialSetLineOptions.
inline constexpr uint32_t kOptionStopBits2 = 0x01;
inline constexpr uint32_t kOptionParityOn = 0x02;
inline constexpr uint32_t kOptionParityEven = 0x04;
inline constexpr uint32_t kOptionRtsAuto = 0x10;
inline constexpr uint32_t kOptionBits6 = 0x40;
inline constexpr uint32_t kOptionBits7 = 0x80;

// The option sets in use: NexStar Ultima and the camera cable (208), Takahashi (246).
inline constexpr uint32_t kLineOptionsNexStarUltima = 208;
inline constexpr uint32_t kLineOptionsTakahashi = 246;

struct CommState {
    uint32_t flagWord = 0;
    int dataBits = 8;
    Parity parity = Parity::None;
    int stopBits = 1;
};

// The block serialOpen writes: flag bits 0..14 replaced by binary mode, parity checking and
// transmit-continue-on-XOFF with every flow control off; 8 data bits, no parity, one stop bit.
CommState openCommState(CommState current);

// Translates Palm option bits onto the current block. The data-bit tests run in the order
// 0xC0, 0x80, 0x40 and the last match wins, so 0xC0 ends as 6 data bits (kept as built).
CommState applyLineOptions(CommState current, uint32_t options);

// Whether the block asks for hardware (RTS/CTS) handshake.
bool usesHardwareHandshake(const CommState& state);

// Writes the block into termios: raw line, receiver on, carrier ignored, RTS/CTS when the block
// asks for a handshake, data bits, parity, stop bits, XON/XOFF always off.
void commStateToTermios(const CommState& state, termios& tio);

// The termios speed for a baud rate in bits per second; nullopt for a rate the line cannot take.
std::optional<speed_t> baudToSpeed(int baud);

}  // namespace nocturnel
