#pragma once
// The file nocturnel_planets.ppc: the full VSOP87B series of the eight planets (heliocentric
// ecliptic longitude, latitude and radius, mean ecliptic and equinox J2000) and the ELP/MPP02
// lunar series fitted to DE405 (geocentric longitude, latitude, distance). Little-endian:
// the header, seriesCount series records, then termCount term records.
#include <cstdint>

namespace nocturnel {

inline constexpr char kPlanetSeriesFileName[] = "nocturnel_planets.ppc";
inline constexpr uint32_t kPlanetSeriesMagic = 0x534C504E;  // "NPLS" as little-endian bytes
inline constexpr uint16_t kPlanetSeriesVersion = 1;

// Which body a series belongs to: the planets in order from the Sun, then the Moon.
enum class SeriesBody : uint8_t { Mercury, Venus, Earth, Mars, Jupiter, Saturn, Uranus, Neptune, Moon };
inline constexpr int kSeriesBodyCount = 9;
// Coordinate of a series: 0 longitude, 1 latitude, 2 radius; 3 the Moon's mean longitude W1.
inline constexpr int kSeriesCoordinateCount = 4;
inline constexpr int kMoonMeanLongitude = 3;

struct PlanetSeriesHeader {
    uint32_t magic;        // kPlanetSeriesMagic
    uint16_t version;      // kPlanetSeriesVersion
    uint16_t termSize;     // sizeof(PlanetSeriesTerm)
    uint32_t seriesCount;  // series records that follow
    uint32_t termCount;    // term records after the series records
};
static_assert(sizeof(PlanetSeriesHeader) == 16);

struct PlanetSeriesRecord {
    uint8_t body;        // SeriesBody
    uint8_t coordinate;  // 0 longitude, 1 latitude, 2 radius, 3 W1 (Moon only)
    uint8_t power;       // the series multiplies time to this power
    uint8_t reserved;    // 0
    uint32_t firstTerm;  // index of its first term record
    uint32_t termCount;  // number of its terms
    uint32_t reserved2;  // 0
};
static_assert(sizeof(PlanetSeriesRecord) == 16);

// VSOP87: amplitude A (rad or AU), phase[0] = B (rad), phase[1] = C (rad per Julian millennium),
// the rest 0; the term is A cos(B + C tau), tau in Julian millennia of TDB from J2000.
// ELP/MPP02: amplitude A (arcseconds, or km for the distance), phase[0..4] the polynomial of
// the argument in Julian centuries T of TDB from J2000; the term is A sin(phase(T)).
// The Moon's W1 record: amplitude 1, phase[0..4] its polynomial (rad).
struct PlanetSeriesTerm {
    double amplitude;
    double phase[5];
};
static_assert(sizeof(PlanetSeriesTerm) == 48);

}  // namespace nocturnel
