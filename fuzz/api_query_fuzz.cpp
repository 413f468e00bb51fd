// The web interface's request values: a query string decoded as the server decodes it, and the
// same bytes as a JSON body, read by the chart view (/api/chart.png), the identify point
// (/api/identify) and the other routes' names, dates and flags. Whatever is accepted lies in
// its stated bounds, and a date read back is the date written.
#include <httplib.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <string>

#include "fuzz/fuzz_support.h"
#include "shell/chart_query.h"
#include "shell/http_params.h"
#include "shell/http_readers.h"

using namespace nocturnel;

namespace {

void check(bool holds) {
    if (!holds) __builtin_trap();
}

// The decimal forms a number may take: [+-]digits[.digits][(e|E)[+-]digits], with digits on at
// least one side of the point.
bool isDecimalText(std::string_view t) {
    std::size_t i = 0;
    auto digits = [&] {
        const std::size_t start = i;
        while (i < t.size() && t[i] >= '0' && t[i] <= '9') ++i;
        return i - start;
    };
    if (i < t.size() && (t[i] == '+' || t[i] == '-')) ++i;
    std::size_t mantissa = digits();
    if (i < t.size() && t[i] == '.') {
        ++i;
        mantissa += digits();
    }
    if (mantissa == 0) return false;
    if (i < t.size() && (t[i] == 'e' || t[i] == 'E')) {
        ++i;
        if (i < t.size() && (t[i] == '+' || t[i] == '-')) ++i;
        if (digits() == 0) return false;
    }
    return i == t.size();
}

template <typename T>
void checkWithin(const std::optional<T>& value, T low, T high) {
    if (value) check(*value >= low && *value <= high);
}

// Every route's reading of its values, as the handlers make them.
void readAsRoutes(ValueReader& r) {
    ChartQuery q;
    const bool ok = readChartQuery(r, q);
    if (ok) {
        checkWithin(q.zoom, 0, 12);
        checkWithin(q.width, kChartMinSide, kChartMaxSide);
        checkWithin(q.height, kChartMinSide, kChartMaxSide);
        checkWithin(q.mode, 0, 1);
        checkWithin(q.rotate, -360, 360);
        checkWithin(q.night, 0, 3);
        checkWithin(q.scale, 1, 2);
        checkWithin(q.ra, 0.0, 24.0);
        checkWithin(q.dec, -90.0, 90.0);
        checkWithin(q.az, 0.0, 360.0);
        checkWithin(q.alt, -90.0, 90.0);
        check(q.ra.has_value() == q.dec.has_value() && q.az.has_value() == q.alt.has_value() && !(q.ra && q.az));
    } else {
        check(!r.ok() && !r.error().title.empty());
    }
    std::optional<int> x, y;
    r.whole("x", 0, kChartMaxSide, x);
    r.whole("y", 0, kChartMaxSide, y);
    std::optional<std::string> name, from, kind;
    r.text("name", 80, name);
    r.text("from", 10, from);
    r.text("kind", 40, kind);
    if (name) check(name->size() <= 80);
    std::optional<bool> yes;
    r.flag("yes", yes);
    std::optional<ObservingMoment> when;
    r.moment("when", when);
    std::optional<double> aperture;
    r.real("aperture", 0, 1000, aperture);
    checkWithin(aperture, 0.0, 1000.0);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::silenceMessages();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    const std::string text(fuzz::bytesOf(data, size));

    // The pure readers on the whole text.
    if (const auto v = readWholeNumber(text, LONG_MIN, LONG_MAX)) check(readWholeNumber(std::to_string(*v), LONG_MIN, LONG_MAX) == v);
    if (const auto v = readWholeNumber(text, -5, 7)) check(*v >= -5 && *v <= 7);
    if (const auto v = readRealNumber(text, -1e300, 1e300)) check(std::isfinite(*v) && isDecimalText(text));
    // And the other way: every plain decimal text in range is read, to the value strtod gives.
    if (isDecimalText(text) && text.size() <= 40) {
        errno = 0;
        const double d = std::strtod(text.c_str(), nullptr);
        if (errno == 0 && std::fabs(d) <= 1e300) check(readRealNumber(text, -1e300, 1e300) == d);
        const bool wholeForm = text.find_first_of(".eE") == std::string::npos && text.size() - (text[0] < '0') <= 10;
        if (wholeForm) check(readWholeNumber(text, LONG_MIN, LONG_MAX) == std::strtol(text.c_str(), nullptr, 10));
    }
    if (const auto m = readMomentText(text)) {
        char back[32];
        std::snprintf(back, sizeof back, "%04d-%02d-%02d%c%02d:%02d", m->year, m->month, m->day, text[10], m->hour, m->minute);
        std::string written = back;
        if (text.size() == 19) {
            std::snprintf(back, sizeof back, ":%02d", m->second);
            written += back;
        }
        check(written == text);
    }

    // A query string, decoded by the server's own decoder.
    httplib::Params params;
    httplib::detail::parse_query_text(text, params);
    QueryReader query(params);
    readAsRoutes(query);

    // A JSON body.
    const nlohmann::json body = nlohmann::json::parse(text, nullptr, false);
    if (!body.is_discarded()) {
        JsonReader json(body);
        readAsRoutes(json);
    }
    return 0;
}
