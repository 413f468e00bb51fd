#pragma once
// The eyepiece database (nocturnel_eyepiece.ppc, type "pl62"): the entries of the preferences'
// "Eyepiece" list, and the true field of view of an eyepiece on the telescope of the
// preferences ("Diameter" in mm times "F-Ratio" gives its focal length). The file is opened,
// read whole and closed on each use; the preferences' eyepiece index is a record number.
#include <string>
#include <vector>

#include "catalog/formats.h"

namespace nocturnel {

inline constexpr char kEyepieceFile[] = "nocturnel_eyepiece.ppc";

// Every record in file order (names always NUL-terminated). False, after a message, when the
// file is absent ("Could not find nocturnel_eyepiece.ppc"), its records are shorter than an
// EyepieceRecord or one cannot be read ("Could not retrieve eyepiece record!"); `out` is then
// empty. An empty file is a valid, empty list.
bool loadEyepieces(std::vector<EyepieceRecord>& out);

// The record's name as text (Latin-1), up to its terminator.
std::string eyepieceName(const EyepieceRecord& eyepiece);

// Focal length of the telescope of the preferences, mm: the "Diameter" entry at
// prefs().scopeDiameterIndex times the "F-Ratio" entry at prefs().fRatioIndex. 0 after a
// message when either index names no entry.
double telescopeFocalLengthMm();

// Magnification = telescope focal length / eyepiece focal length; 0 when either is not a
// positive finite number.
double eyepieceMagnification(const EyepieceRecord& eyepiece, double telescopeFocalMm);
// True field of view, degrees = apparent field / magnification; 0 when the magnification is 0
// or the apparent field is not a positive finite number of degrees up to 180.
double eyepieceTrueFieldDeg(const EyepieceRecord& eyepiece, double telescopeFocalMm);

// The chart's label of an eyepiece field (Latin-1): "25mm 52\xB0  x48  1.1\xB0"; fields under a
// degree are given in arcminutes ("x203  15'"). Empty when the true field is 0.
std::string eyepieceFieldLabel(const EyepieceRecord& eyepiece, double telescopeFocalMm);

// The eyepiece the preferences choose (prefs().eyepieceIndex) with its true field on the
// preferences' telescope, for drawing. False after a message when the database cannot be
// read, the index names no record ("Eyepiece 7 is not in the database (5 eyepieces)."), the
// telescope's focal length is unknown or the record gives no field ("Eyepiece record is not usable").
struct EyepieceField {
    EyepieceRecord eyepiece{};
    double trueFieldDeg = 0;
    std::string label;
};
bool chosenEyepieceField(EyepieceField& out);

}  // namespace nocturnel
