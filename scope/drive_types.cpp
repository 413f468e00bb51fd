#include "scope/drive_types.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>

namespace nocturnel {

namespace {

using F = DriveFamily;

constexpr std::array<DriveInfo, 23> kDrives{{
    {0, "None", F::None},
    {1, "AAM Skyvector", F::EncoderBox},
    {2, "AutoStar", F::Lx200},
    {3, "BBox", F::EncoderBox},
    {4, "Dave Ek", F::EncoderBox},
    {5, "LX200", F::Lx200},
    {6, "Magelan-I", F::Magellan},
    {7, "Magelan-II", F::Magellan},
    {8, "Nexstar 5&8", F::NexStar},
    {9, "NexStar old GT", F::NexStar},
    {10, "NexStarGPS,GT,CGE", F::NexStar},
    {11, "NGC-Max", F::EncoderBox},
    {12, "Ouranos", F::EncoderBox},
    {13, "ServoCat", F::ServoCat},
    {14, "Takahashi", F::Takahashi},
    {15, "Ultima2000", F::NexStar},
    {16, "Intelliscope", F::EncoderBox},
    {17, "Losmandy", F::Lx200},
    {18, "SiderealTech", F::SiderealTech},
    {19, "SkyCommander", F::SkyCommander},
    {21, "", F::EncoderBox},
    {100, "", F::PowerFlex},
    {101, "", F::Dynastar},
}};

// The list as the preferences page builds it: each name inserted at the top, in this order.
constexpr std::array<std::string_view, 20> kInsertionOrder{
    "SkyCommander", "SiderealTech", "Losmandy", "Intelliscope", "Ultima2000", "Takahashi", "ServoCat",
    "Ouranos", "NGC-Max", "NexStarGPS,GT,CGE", "NexStar old GT", "Nexstar 5&8", "Magelan-II", "Magelan-I",
    "LX200", "Dave Ek", "BBox", "AutoStar", "AAM Skyvector", "None"};

constexpr std::array<std::string_view, 20> listAsShown() {
    std::array<std::string_view, 20> shown{};
    for (std::size_t i = 0; i < kInsertionOrder.size(); ++i) shown[i] = kInsertionOrder[kInsertionOrder.size() - 1 - i];
    return shown;
}
constexpr std::array<std::string_view, 20> kListAsShown = listAsShown();

const DriveInfo* findDrive(int code) {
    auto it = std::find_if(kDrives.begin(), kDrives.end(), [code](const DriveInfo& d) { return d.code == code; });
    return it == kDrives.end() ? nullptr : &*it;
}

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y));
           });
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && std::isspace(static_cast<unsigned char>(text.front()))) text.remove_prefix(1);
    while (!text.empty() && std::isspace(static_cast<unsigned char>(text.back()))) text.remove_suffix(1);
    return text;
}

}  // namespace

std::span<const DriveInfo> driveTable() { return kDrives; }
std::span<const std::string_view> driveListNames() { return kListAsShown; }

DriveFamily driveFamily(int code) {
    const DriveInfo* drive = findDrive(code);
    return drive ? drive->family : DriveFamily::Unknown;
}

std::string_view driveListName(int code) {
    const DriveInfo* drive = findDrive(code);
    return drive ? drive->listName : std::string_view{};
}

std::string_view driveFamilyName(DriveFamily family) {
    switch (family) {
        case F::None: return "none";
        case F::EncoderBox: return "encoder box";
        case F::Lx200: return "LX200";
        case F::Magellan: return "Magellan";
        case F::NexStar: return "NexStar";
        case F::ServoCat: return "ServoCat";
        case F::Takahashi: return "Takahashi";
        case F::SiderealTech: return "SiderealTech";
        case F::SkyCommander: return "SkyCommander";
        case F::PowerFlex: return "PowerFlex";
        case F::Dynastar: return "Dynastar";
        case F::Unknown: break;
    }
    return "unknown";
}

int driveCodeFromName(std::string_view nameOrNumber) {
    const std::string_view text = trimmed(nameOrNumber);
    if (text.empty()) return -1;
    int number = 0;
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error == std::errc{} && end == text.data() + text.size()) return findDrive(number) ? number : -1;
    for (const DriveInfo& drive : kDrives)
        if (!drive.listName.empty() && equalsIgnoringCase(drive.listName, text)) return drive.code;
    return -1;
}

SlewingService slewingService(int code) {
    switch (code) {
        case 2: case 5: case 17:          // LX200
        case 9: case 10: case 15:         // NexStar ("Nexstar 5&8" ignores the slewing keys)
        case 14: case 18:                 // Takahashi, SiderealTech
            return SlewingService::Served;
        case 0: case 1: case 3: case 4: case 6: case 7: case 8: case 11: case 12: case 13: case 16: case 19:
        case 21: case 100: case 101:
            return SlewingService::Ignored;
        default:
            return SlewingService::Unknown;
    }
}

}  // namespace nocturnel
