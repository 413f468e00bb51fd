#pragma once
// Field stars: the stars of the open optional catalogue that fall in the chart's region and
// under the zoom level's magnitude limit, drawn through a caller's painter and listed (sequence
// number and screen point) for tap identification.
#include <array>
#include <cstdint>
#include <functional>
#include <limits>

#include "chart/chart_view.h"
#include "chart/sky_frame.h"

namespace nocturnel {

struct VisibleFieldStar {
    uint32_t sequence;  // block x starsPerBlock + entry
    uint16_t x, y;      // screen point, pixels
};
static_assert(sizeof(VisibleFieldStar) == 8);

inline constexpr int kVisibleFieldStarCapacity = 1500;
inline constexpr uint32_t kVisibleListEndMark = 20000000;
using VisibleFieldStarList = std::array<VisibleFieldStar, kVisibleFieldStarCapacity>;

// The list shared with tap identification; entries up to the end mark.
VisibleFieldStarList& visibleFieldStars();
int visibleFieldStarCount();

// Right-ascension window in whole minutes of time: a star at minute t passes when
// a < t < b or c < t < d.
struct RaWindow {
    int a = 0, b = 1440, c = 0, d = 1440;
    bool contains(int minute) const { return (a < minute && minute < b) || (c < minute && minute < d); }
};
RaWindow raWindowMinutes(double centreRaHours, double halfWidthHours);
// Half-width (hours) of a zoom level at a centre declination; 24 takes the whole circle.
double raHalfWidthHours(int zoomLevel, double centreDecDeg);

// Magnitude step handed to the painter: whole magnitudes, plus 1 on a single-resolution screen.
using FieldStarPaint = std::function<void(int magnitudeStep, int colourClass, int x, int y)>;
// Asked between steps of a long load; true abandons it.
using StopRequested = std::function<bool()>;

struct FieldStarLoad {
    int drawn = 0;      // stars painted
    int listed = 0;     // entries before the end mark
    bool stopped = false;
    bool searched = false;  // the catalogue was searched (a file open and the limit deep enough)
    double centreRaHours = 0, centreDecDeg = 0;  // J2000 centre of the region
    double halfWidthHours = 0;
    int halfHeightDeg = 0;
    RaWindow window;
    int firstBlock = -1, lastBlock = -1;
    int moved = 0;  // stars drawn at their place at the epoch (a motion was known)
};

// Loads the field stars of the view (its zoom level, centre, sidereal time and screen factor)
// down to magnitudeLimit; fastPath uses the fixed-point projection (levels up to 11 only).
// epochYear (Julian epoch of the chart's moment) moves each star by its proper motion: the stars
// of the HR and Hipparcos cards take the full-precision place and motion of the star-motion
// table, those of the deep cards the motion of the card's side file; NaN keeps the catalogue's
// J2000 places.
FieldStarLoad loadFieldStars(const ChartView& view, double magnitudeLimit, bool fastPath,
                             const SkyFrame& frame, const FieldStarPaint& paint,
                             const StopRequested& stopRequested = {},
                             double epochYear = std::numeric_limits<double>::quiet_NaN());

}  // namespace nocturnel
