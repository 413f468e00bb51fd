#pragma once
// The names written beside the default bright stars: proper names ("Sirius") of the brightest
// at wide fields, more of them closer in, and the Bayer letter ("α", "π1") or Flamsteed number
// ("61") of the others from zoom level 5 on.
#include <string>

#include "catalog/formats.h"

namespace nocturnel {

// Faintest magnitude named with a proper name, and with a letter or number, at a zoom level
// (a negative value: none).
double properNameLimit(int zoomLevel);
double designationLimit(int zoomLevel);
// "alf" -> "α", "pi1" -> "π1", "61" -> "61" (the first word of "alf Lyr", "61 Cyg"); empty when
// the word is neither a Greek letter's abbreviation nor a number.
std::string designationLabel(const std::string& designation);
// The UTF-8 label of a star at a zoom level; false when it gets none there.
bool starLabelText(const DefaultStarRecord& star, int zoomLevel, std::string& text);

}  // namespace nocturnel
