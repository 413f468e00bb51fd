#pragma once
// The program's two-star alignment: the working and saved star records (in the preferences),
// the matrix in use, the alignment form's logic, restoring the last alignment at start-up, and
// the mapping between sky places and telescope angles at a given moment.
#include <string>

#include "align/alignment_matrix.h"

namespace nocturnel {

struct AlignmentState {
    char toTime[9] = {};        // reference time "HH:MM:SS" (star 1's time)
    Mat3 matrix;                // T: celestial direction -> telescope direction
    bool valid = false;         // a matrix has been computed or restored
    double referenceJd = 0;     // UT Julian date of the reference time (elapsed times count from it)
};

const AlignmentState& alignmentState();
void clearAlignmentState();

// "HH:MM:SS" of a clock time given as an angle in degrees (hours x 15).
std::string toTimeFromStarTime(double timeDeg);

// Computes the matrix from two star records with the preferences' mount; on success it
// becomes the matrix in use. A failure leaves the previous matrix in use.
int computeAlignmentMatrix(const char* toTime, const AlignmentStarRecord& star1, const AlignmentStarRecord& star2);

// The alignment form: texts as typed (angle texts). On an equatorial mount the first telescope
// angle is typed in hours.
struct AlignmentFormStar {
    std::string name, time, ra, dec, hor, elv;
};
struct AlignmentForm {
    std::string toTime;           // empty: star 1's time
    AlignmentFormStar star[2];
};

// Reads the form, computes the matrix, and on success stores the alignment time (nowJdUt),
// copies the working records to the saved ones and saves the preferences. 1 or 0 (with
// "Fail to compute align matrix" / "Please verify inputs.").
int computeAlignmentFromForm(const AlignmentForm& form, double nowJdUt);

// Copies the saved records back and recomputes the matrix. 1 or 0 (with
// "Fail to compute align matrix" / "Please redo 2 star alignment.").
int restoreAlignment();

// At start-up: when a saved alignment exists, asks "Would you want to restore your last
// alignment?" and restores it on Yes. True when an alignment is now in use.
bool offerAlignmentRestore();

// Elapsed clock angle (radians) from the reference time to a UT Julian date.
double elapsedClockAngle(double jdUt);

// The mapping at a moment, through the matrix in use; false when no alignment is in use.
bool skyToTelescope(double raHours, double decDeg, double jdUt, double& horDeg, double& elvDeg);
bool telescopeToSky(double horDeg, double elvDeg, double jdUt, double& raHours, double& decDeg);

// Makes the telescope link read and point through the alignment (drives in mount angles).
void installAlignmentMapping();

}  // namespace nocturnel
