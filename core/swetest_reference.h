#pragma once
// Test helper: Swiss Ephemeris (Debian's swetest with swe-basic-data) run as a separate
// program for reference values; never linked. Tests skip when swetest is absent.
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

namespace nocturnel::test {

inline bool swetestAvailable() { return std::system("command -v swetest >/dev/null 2>&1") == 0; }
inline constexpr const char* kSwetestSkip = "swetest not installed (apt-get install swetest swe-basic-data): reference test skipped";

// The whitespace-separated output lines of swetest with the given arguments.
inline std::vector<std::vector<std::string>> runSwetest(const std::string& arguments) {
    std::vector<std::vector<std::string>> lines;
    const std::string command = "swetest -edir/usr/share/libswe/ephe " + arguments + " 2>/dev/null";
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe) return lines;
    char buffer[1024];
    while (fgets(buffer, sizeof buffer, pipe)) {
        std::istringstream in(buffer);
        std::vector<std::string> words;
        for (std::string w; in >> w;) words.push_back(w);
        if (!words.empty()) lines.push_back(words);
    }
    pclose(pipe);
    return lines;
}

}  // namespace nocturnel::test
