#include "core/mean_place.h"

#include <cmath>
#include <cstring>

#include "core/time.h"

namespace nocturnel {

namespace {
double hoursIn0To24(double hours) {
    double h = std::fmod(hours, 24.0);
    if (h < 0.0) h += 24.0;
    return h;
}
}  // namespace

int meanPlaceFromForward(const ForwardPlace& forward, double raHours, double decDeg, double* raJ2000Hours,
                         double* decJ2000Deg) {
    const double targetRa = hoursIn0To24(raHours);
    double guessRa = targetRa, guessDec = decDeg;
    for (int round = 1;; ++round) {
        if (round > 20) {
            *raJ2000Hours = 0.0;
            *decJ2000Deg = 0.0;
            return 1;
        }
        double ra = 0.0, dec = 0.0;
        if (int err = forward(guessRa, guessDec, &ra, &dec)) return err + 10;
        double dRa = ra - targetRa;
        if (dRa > 12.0) dRa -= 24.0;
        if (dRa < -12.0) dRa += 24.0;
        const double nextRa = guessRa - dRa;
        const double nextDec = guessDec - (dec - decDeg);
        const bool settled =
            std::fabs(nextRa - guessRa) <= 1.0e-10 && std::fabs(nextDec - guessDec) <= 1.0e-9;
        guessRa = nextRa;
        guessDec = nextDec;
        if (settled) break;
    }
    *raJ2000Hours = hoursIn0To24(guessRa);
    *decJ2000Deg = guessDec;
    return 0;
}

int meanPlaceFromApparent(double jdTt, const BodyDescriptor& earth, double raHours, double decDeg,
                          double* raJ2000Hours, double* decJ2000Deg) {
    CatalogueEntry dummy;
    std::strcpy(dummy.catalog, "dum");
    std::strcpy(dummy.starname, "dummy");
    auto forward = [&](double ra, double dec, double* raOut, double* decOut) {
        dummy.raHours = ra;
        dummy.decDeg = dec;
        return app_star(jdTt, earth, dummy, raOut, decOut);
    };
    return meanPlaceFromForward(forward, raHours, decDeg, raJ2000Hours, decJ2000Deg);
}

int meanPlaceFromPlaceUsed(double raUsedHours, double decUsedDeg, int level, const ObservingMoment& moment,
                           double* raJ2000Hours, double* decJ2000Deg) {
    const SiteInfo site = siteInfoFromPreferences();
    const double jd = julianDateFromLocal(moment.year, moment.month, moment.day, moment.hour, moment.minute,
                                          moment.second, prefs().utcOffsetMin);
    const double deltaT = deltaTForDate(moment.year, moment.month, moment.day);
    auto forward = [&](double ra, double dec, double* raOut, double* decOut) {
        return placeUsedForLevel(ra, dec, level, jd, deltaT, site, raOut, decOut);
    };
    return meanPlaceFromForward(forward, raUsedHours, decUsedDeg, raJ2000Hours, decJ2000Deg);
}

}  // namespace nocturnel
