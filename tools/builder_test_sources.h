#pragma once
// Builds a small but complete sources folder for the builder's tests: the excerpts of
// tools/testdata, a catalog.dat written with the stream writer, and faint generated Hipparcos
// stars so that the default-star file can hold its 1,646 stars.
#include <cmath>
#include <filesystem>
#include <numbers>
#include <string>
#include <vector>

#include "tools/record_io.h"
#include "tools/sources.h"

namespace nocturnel::testing {

inline std::filesystem::path testDataFolder() {
    if (const char* dir = std::getenv("NOCTURNEL_SOURCE_DIR"); dir && *dir) return std::filesystem::path(dir) / "tools/testdata";
    return std::filesystem::path(__FILE__).parent_path() / "testdata";
}

inline StellariumObject dsoObject(uint32_t id, double raDeg, double decDeg, double vMag, uint32_t type) {
    StellariumObject o;
    o.id = id;
    o.raRad = raDeg * std::numbers::pi / 180.0;
    o.decRad = decDeg * std::numbers::pi / 180.0;
    o.vMag = vMag;
    o.type = type;
    return o;
}

// The deep-sky objects of the small catalogue (published positions, Stellarium's field values).
inline StellariumCatalogue smallDsoCatalogue() {
    StellariumCatalogue c{"3.16", "standard", {}};
    StellariumObject m31 = dsoObject(255, 10.684708, 41.268750, 3.44, 0);
    m31.morphology = "SA(s)b";
    m31.majorDeg = 189.1 / 60.0;
    m31.minorDeg = 61.7 / 60.0;
    m31.orientationDeg = 35;
    m31.ngc = 224;
    m31.messier = 31;
    m31.ugc = 454;
    m31.pgc = 2557;
    c.objects.push_back(m31);
    StellariumObject m45 = dsoObject(2, 56.75, 24.1167, 1.2, 16);
    m45.majorDeg = 110.0 / 60.0;
    m45.collinder = 42;
    m45.melotte = 22;
    m45.messier = 45;
    c.objects.push_back(m45);
    StellariumObject ngc7000 = dsoObject(7000, 314.75, 44.3333, 4.0, 17);
    ngc7000.ngc = 7000;
    ngc7000.caldwell = 20;
    c.objects.push_back(ngc7000);
    StellariumObject b33 = dsoObject(33, 85.2458, -2.4583, 99, 12);
    b33.barnard = 33;
    c.objects.push_back(b33);
    // Fourteen more Melotte clusters, 15 with the Pleiades (Mel 22), for a stretch of 12 slots:
    // the three left out must be Mel 14 (unknown magnitude), then Mel 13 and 12 (the faintest).
    for (uint32_t n = 1; n <= 14; ++n) {
        StellariumObject mel = dsoObject(1000 + n, 10.0 * n, 5.0, n == 14 ? 99.0 : 5.0 + 0.1 * n, 6);
        mel.melotte = n;
        c.objects.push_back(mel);
    }
    StellariumObject galaxy = dsoObject(5000, 200.0, -30.0, 14.0, 0);  // PGC only: no place in our catalogues
    galaxy.pgc = 123456;
    c.objects.push_back(galaxy);
    StellariumObject southernAbell = dsoObject(5001, 20.0, -60.0, 99, 33);  // "S 0373" is not an Abell number
    southernAbell.abell = "S 0373";
    c.objects.push_back(southernAbell);
    return c;
}

// Copies the excerpts to `folder`, adds `extraStars` faint generated stars (HIP 110001 on) to
// stars.14.json and writes catalog.dat.
inline bool writeSmallSources(const std::filesystem::path& folder, int extraStars = 1700) {
    namespace fs = std::filesystem;
    std::error_code ec;
    fs::copy(testDataFolder(), folder, fs::copy_options::recursive | fs::copy_options::overwrite_existing, ec);
    if (ec) return false;
    const fs::path stars = folder / "d3-celestial/data/stars.14.json";
    std::string json;
    if (!readWholeFile(stars, json) || json.size() < 3 || json.substr(json.size() - 2) != "]}") return false;
    json.resize(json.size() - 2);
    for (int i = 0; i < extraStars; ++i) {
        // Spread over the sky on a spiral; magnitudes 9.0 .. 11.0.
        const double decDeg = -89.0 + 178.0 * (i + 0.5) / extraStars;
        double lon = std::fmod(i * 137.508, 360.0);
        if (lon > 180.0) lon -= 360.0;
        char buffer[200];
        std::snprintf(buffer, sizeof buffer,
                      ",{\"type\":\"Feature\",\"id\":%d,\"properties\":{\"mag\":%.2f,\"bv\":\"%.3f\"},"
                      "\"geometry\":{\"type\":\"Point\",\"coordinates\":[%.4f,%.4f]}}",
                      110001 + i, 9.0 + 2.0 * (i % 100) / 100.0, 0.01 * (i % 150), lon, decDeg);
        json += buffer;
    }
    json += "]}";
    const fs::path dso = folder / "stellarium/usr/share/stellarium/nebulae/default/catalog.dat";
    return writeWholeFile(stars, json) && writeWholeFile(dso, gzipBytes(writeStellariumCatalogue(smallDsoCatalogue())));
}

}  // namespace nocturnel::testing
