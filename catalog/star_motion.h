#pragma once
// Stars at their date: nocturnel_star_motion.ppc carries, for every Hipparcos star that has
// them, the full-precision J2000 place (epoch J2000) and the proper motion. The packed star
// records round a place to 1 s of RA and 1" of Dec and have no room for a motion, so every
// place that enters the apparent-place pipeline is taken from here when the star is listed.
// The file is read whole on first use (about 4 MB) and kept for the data folder it came from.
#include <cstdint>
#include <memory>
#include <vector>

namespace nocturnel {

// One star; entries sorted by HIP number, the last record padded with HIP 0.
struct StarMotionEntry {
    int32_t hip;                   // Hipparcos number (0: padding)
    int32_t hr;                    // HR number, 0 when none
    double raDeg;                  // J2000 right ascension at epoch J2000, degrees [0, 360)
    double decDeg;                 // J2000 declination at epoch J2000, degrees
    float pmRaCosDecMasPerYear;    // proper motion along RA, times cos(dec), mas/yr
    float pmDecMasPerYear;         // proper motion in Dec, mas/yr
};
static_assert(sizeof(StarMotionEntry) == 32);

inline constexpr int kStarMotionEntriesPerRecord = 64;
struct StarMotionRecord {
    StarMotionEntry entries[kStarMotionEntriesPerRecord];
};
static_assert(sizeof(StarMotionRecord) == 2048);

inline constexpr char kStarMotionFile[] = "nocturnel_star_motion.ppc";
inline constexpr uint32_t kStarMotionFileVersion = 1;

// The entry of a HIP (or HR) number; false when the file is absent or the star not in it.
bool findStarMotion(int32_t hip, StarMotionEntry& out);
bool findStarMotionByHr(int32_t hr, StarMotionEntry& out);

// The loaded table held for many lookups in a row (a chart's field stars): one lock to take it,
// then binary searches by HIP or HR number, both O(log n).
struct StarMotionTable {
    std::vector<StarMotionEntry> byHip;  // sorted by HIP
    std::vector<int32_t> hrOrder;        // indexes into byHip of the stars with an HR number, by HR
};
class StarMotionLookup {
public:
    StarMotionLookup();  // the table of the current data folder (empty when the file is absent)
    const StarMotionEntry* byHip(int32_t hip) const;
    const StarMotionEntry* byHr(int32_t hr) const;
    bool empty() const { return table_->byHip.empty(); }

private:
    std::shared_ptr<const StarMotionTable> table_;
};

// The J2000-equinox place of the entry at the epoch (decimal Julian year, 2000.0 = J2000),
// the motion applied as a straight line in the star's tangent plane. Parallax and radial
// velocity are left out: the perspective acceleration this ignores is the largest for Barnard's
// star, some 0.4" by 2027, and far less for every other star.
void starPlaceAtEpoch(const StarMotionEntry& star, double epochYear, double& raHours, double& decDeg);
// The same by HIP number; false (place untouched) when the star has no entry.
bool starPlaceAtEpoch(int32_t hip, double epochYear, double& raHours, double& decDeg);
// A place (J2000 equinox, epoch J2000, hours and degrees) with a proper motion (mas/yr, the RA
// part times cos(dec)) moved to the epoch the same way.
void movePlaceToEpoch(double raHours, double decDeg, double pmRaCosDecMasPerYear, double pmDecMasPerYear,
                      double epochYear, double& raAtEpochHours, double& decAtEpochDeg);

// Julian epoch of a civil (UT) date and time: 2000.0 at 2000 January 1, 12h.
double julianEpochOf(int year, int month, int day, int hour = 0, int minute = 0, int second = 0);
// Julian epoch of a Julian date.
double julianEpochOfJd(double jd);
// Julian epoch of the program's current observing moment.
double observingEpoch();

// Forgets the loaded file (tests that switch data folders).
void forgetStarMotion();

}  // namespace nocturnel
