#include "shell/star_names.h"

#include <cctype>
#include <cstdio>
#include <cstring>

#include "catalog/catalogues.h"
#include "catalog/star_catalog.h"
#include "catalog/star_motion.h"

namespace nocturnel {
namespace {
bool sameText(const std::string& a, const char* b) {
    const std::size_t n = std::strlen(b);
    if (a.size() != n) return false;
    for (std::size_t i = 0; i < n; ++i)
        if (std::tolower(static_cast<unsigned char>(a[i])) != std::tolower(static_cast<unsigned char>(b[i]))) return false;
    return true;
}
}  // namespace

bool findBrightStarByName(const std::string& name, std::string& canonical, double& raHours, double& decDeg) {
    if (!defaultStarSlot().isOpen() && !openDefaultStars()) return false;
    int hip = 0;
    if (std::sscanf(name.c_str(), "HIP %d", &hip) != 1 && std::sscanf(name.c_str(), "HIP%d", &hip) != 1) hip = 0;
    const int count = recordCount(defaultStarSlot());
    for (int i = 0; i < count; ++i) {
        DefaultStarRecord star{};
        if (!readDefaultStar(i, star)) return false;
        char nameField[sizeof star.name + 1] = {};
        std::memcpy(nameField, star.name, sizeof star.name);
        if ((hip > 0 && star.hip == hip) || sameText(name, nameField)) {
            canonical = nameField[0] ? nameField : name;
            raHours = star.raHours;
            decDeg = star.decDeg;
            starPlaceAtEpoch(star.hip, observingEpoch(), raHours, decDeg);  // at the observing moment
            return true;
        }
    }
    return false;
}

}  // namespace nocturnel
