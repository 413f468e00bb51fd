#include "scope/serial_options.h"

#include <array>
#include <utility>

namespace nocturnel {

CommState openCommState(CommState current) {
    CommState state = current;
    state.flagWord = (current.flagWord & ~uint32_t{0x7FFF}) | kFlagBinary | kFlagParityCheck | kFlagTxContinueOnXoff;
    state.dataBits = 8;
    state.parity = Parity::None;
    state.stopBits = 1;
    return state;
}

CommState applyLineOptions(CommState current, uint32_t options) {
    CommState state = current;
    if (options & kOptionStopBits2) state.flagWord |= kFlagBinary;
    if (options & kOptionParityOn) state.flagWord |= kFlagParityCheck;
    if (options & kOptionParityEven) state.parity = Parity::Even;

    constexpr uint32_t handshake = kFlagRtsHandshake | kFlagDsrSensitivity | kFlagDtrHandshake | kFlagOutxDsrFlow | kFlagOutxCtsFlow;  // 0x206C
    constexpr uint32_t linesOn = kFlagRtsEnable | kFlagDtrEnable;  // 0x1010
    if (options & kOptionRtsAuto) {
        state.flagWord = (state.flagWord & ~linesOn) | handshake;
    } else {
        state.flagWord = (state.flagWord & ~handshake) | linesOn;
    }

    if (options & (kOptionBits6 | kOptionBits7)) state.dataBits = 8;
    if (options & kOptionBits7) state.dataBits = 7;
    if (options & kOptionBits6) state.dataBits = 6;

    state.flagWord = (state.flagWord & ~uint32_t{0x380}) | kFlagTxContinueOnXoff;
    return state;
}

bool usesHardwareHandshake(const CommState& state) {
    return (state.flagWord & (kFlagOutxCtsFlow | kFlagRtsHandshake)) != 0;
}

void commStateToTermios(const CommState& state, termios& tio) {
    speed_t inSpeed = ::cfgetispeed(&tio);
    speed_t outSpeed = ::cfgetospeed(&tio);
    ::cfmakeraw(&tio);
    ::cfsetispeed(&tio, inSpeed);
    ::cfsetospeed(&tio, outSpeed);

    tio.c_iflag &= ~static_cast<tcflag_t>(IXON | IXOFF | IXANY | INPCK | PARMRK | IGNPAR);
    if (state.flagWord & kFlagParityCheck && state.parity != Parity::None) tio.c_iflag |= INPCK;

    tio.c_cflag &= ~static_cast<tcflag_t>(CSIZE | PARENB | PARODD | CSTOPB | CRTSCTS);
    tio.c_cflag |= CREAD;
    switch (state.dataBits) {
        case 5: tio.c_cflag |= CS5; break;
        case 6: tio.c_cflag |= CS6; break;
        case 7: tio.c_cflag |= CS7; break;
        default: tio.c_cflag |= CS8; break;
    }
    if (state.parity != Parity::None) tio.c_cflag |= PARENB;
    if (state.parity == Parity::Odd) tio.c_cflag |= PARODD;
    if (state.stopBits == 2) tio.c_cflag |= CSTOPB;
    if (usesHardwareHandshake(state)) tio.c_cflag |= CRTSCTS;
    tio.c_cflag |= CLOCAL;  // carrier detect never hangs the line up
    // Reads never block in the kernel: the link waits with poll() and its own time-outs.
    tio.c_cc[VMIN] = 0;
    tio.c_cc[VTIME] = 0;
}

std::optional<speed_t> baudToSpeed(int baud) {
    static constexpr std::array<std::pair<int, speed_t>, 15> kSpeeds{{
        {300, B300}, {600, B600}, {1200, B1200}, {1800, B1800}, {2400, B2400},
        {4800, B4800}, {9600, B9600}, {19200, B19200}, {38400, B38400}, {57600, B57600},
        {115200, B115200}, {230400, B230400}, {460800, B460800}, {500000, B500000}, {921600, B921600},
    }};
    for (const auto& [rate, speed] : kSpeeds)
        if (rate == baud) return speed;
    return std::nullopt;
}

}  // namespace nocturnel
