#include "shell/chart_identify.h"

#include <cmath>
#include <cstring>
#include <string>

#include "catalog/catalogues.h"
#include "catalog/star_catalog.h"
#include "chart/sky_frame.h"
#include "core/angle_text.h"
#include "core/apparent_place.h"
#include "settings/message.h"
#include "settings/preferences.h"
#include "shell/api_json.h"
#include "shell/sky_place.h"

namespace nocturnel {
namespace {

bool defaultStarByHip(int hip, DefaultStarRecord& out) {
    const int count = recordCount(defaultStarSlot());
    for (int i = 0; i < count; ++i)
        if (readDefaultStar(i, out) && out.hip == hip) return true;
    return false;
}


}  // namespace

void addHorizontalPlace(nlohmann::json& j, double raHours, double decDeg) {
    double alt = 0, az = 0, raUsed = 0, decUsed = 0;
    MessageCapture quiet;  // a place that cannot be reduced simply has no alt/az
    if (equatorialToHorizontal(raHours, decDeg, pointingLevelFromPreferences(), prefs().moment, &alt, &az, &raUsed,
                               &decUsed) == 0) {
        j["alt"] = alt;
        j["az"] = az;
    }
}

nlohmann::json identifyAtChartPoint(const ChartResult& chart, int x, int y, int tolerancePx) {
    const BrightStarSpot* nearest = nullptr;
    long best = static_cast<long>(tolerancePx) * tolerancePx;
    for (const BrightStarSpot& spot : chart.bright) {
        const long dx = spot.x - x, dy = spot.y - y;
        const long d2 = dx * dx + dy * dy;
        if (d2 <= best) {
            best = d2;
            nearest = &spot;
        }
    }
    DefaultStarRecord star{};
    if (nearest && defaultStarSlot().isOpen() && defaultStarByHip(nearest->hip, star)) {
        char name[sizeof star.name + 1] = {};
        std::memcpy(name, star.name, sizeof star.name);
        nlohmann::json names = nlohmann::json::array();
        if (name[0]) names.push_back(toUtf8(name));
        if (star.hip > 0) names.push_back("HIP " + std::to_string(star.hip));
        if (star.hr > 0) names.push_back("HR " + std::to_string(star.hr));
        nlohmann::json j = {{"found", true},
                            {"kind", "star"},
                            {"name", names.empty() ? std::string() : names[0].get<std::string>()},
                            {"names", names},
                            {"hip", star.hip},
                            {"hr", star.hr},
                            {"mag", std::round(star.mag * 100.0) / 100.0},
                            {"ra", star.raHours},
                            {"dec", star.decDeg},
                            {"raText", toUtf8(hoursText(star.raHours))},
                            {"decText", toUtf8(degreesText(star.decDeg))},
                            {"constellation", constellationNameOf(star.constellation)},
                            {"x", nearest->x},
                            {"y", nearest->y}};
        addHorizontalPlace(j, star.raHours, star.decDeg);
        return j;
    }
    // Nothing drawn there: the sky place under the point, for "Centre" and "GoTo".
    double raDate = 0, decDate = 0, ra = 0, dec = 0;
    screenToSky(chart.view, x, y, raDate, decDate);
    dateToJ2000(skyFrameForDate(chart.jdUt), raDate, decDate, ra, dec);
    nlohmann::json j = {{"found", false}, {"ra", ra}, {"dec", dec}, {"raText", toUtf8(hoursText(ra))},
                        {"decText", toUtf8(degreesText(dec))}};
    addHorizontalPlace(j, ra, dec);
    return j;
}

}  // namespace nocturnel
