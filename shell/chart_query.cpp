#include "shell/chart_query.h"

namespace nocturnel {

bool readChartQuery(ValueReader& r, ChartQuery& q) {
    r.whole("zoom", 0, 12, q.zoom);
    r.whole("width", kChartMinSide, kChartMaxSide, q.width);
    r.whole("height", kChartMinSide, kChartMaxSide, q.height);
    r.whole("mode", 0, 1, q.mode);
    r.whole("rotate", -360, 360, q.rotate);
    r.whole("night", 0, 3, q.night);
    r.whole("scale", 1, 2, q.scale);
    r.real("ra", 0, 24, q.ra);
    r.real("dec", -90, 90, q.dec);
    r.real("az", 0, 360, q.az);
    r.real("alt", -90, 90, q.alt);
    r.moment("time", q.time);
    if (!r.ok()) return false;
    if (q.ra.has_value() != q.dec.has_value()) r.refuse("Invalid view centre", "Give ra and dec together.");
    else if (q.az.has_value() != q.alt.has_value()) r.refuse("Invalid view centre", "Give az and alt together.");
    else if (q.ra && q.az) r.refuse("Invalid view centre", "Give ra/dec or az/alt, not both.");
    return r.ok();
}

}  // namespace nocturnel
