#pragma once
// The VSOP87B and ELP/MPP02 series read from data/nocturnel_planets.ppc, and their sums.
#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "core/planet_series_format.h"

namespace nocturnel {

struct PlanetSeriesSet {
    struct Span {
        int power;
        uint32_t first, count;
    };
    std::vector<PlanetSeriesTerm> terms;
    std::array<std::array<std::vector<Span>, kSeriesCoordinateCount>, kSeriesBodyCount> series;
    bool has(SeriesBody body) const { return !series[static_cast<int>(body)][0].empty(); }
};

// Reads the bytes of a planet series file; false with a reason when they are not one.
bool parsePlanetSeries(std::string_view bytes, PlanetSeriesSet& set, std::string& error);

// The series of data/nocturnel_planets.ppc, read on first use; nullptr (after the message
// "Can't open planet file" once) when the file is missing or damaged.
const PlanetSeriesSet* planetSeries();
// Reads the series from another file from now on (tests, another program folder).
bool loadPlanetSeriesFrom(const std::filesystem::path& file);

// A VSOP87 coordinate and its rate: longitude and latitude in radians, radius in AU; rates
// per Julian millennium.
struct SeriesValue {
    double value;
    double ratePerMillennium;
};
// Sum of one VSOP87 coordinate (0 L, 1 B, 2 R) for tau Julian millennia of TDB from J2000.
SeriesValue vsopCoordinate(const PlanetSeriesSet& set, SeriesBody body, int coordinate, double tau);
// The value alone (half the work), leaving out terms whose amplitude is below minAmplitude.
double vsopValue(const PlanetSeriesSet& set, SeriesBody body, int coordinate, double tau, double minAmplitude = 0.0);

// ELP/MPP02: geocentric longitude and latitude (radians) and distance (km) of the Moon, on the
// mean ecliptic of date from the inertial J2000 departure point, for T Julian centuries of TDB.
struct MoonSpherical {
    double longitudeRad, latitudeRad, distanceKm;
};
MoonSpherical elpMoonSpherical(const PlanetSeriesSet& set, double tCenturies);

}  // namespace nocturnel
