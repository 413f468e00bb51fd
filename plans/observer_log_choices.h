#pragma once
// The choice lists of the log form. A log stores each choice as its index in the list.
#include <array>
#include <string_view>

namespace nocturnel {

inline constexpr std::array<std::string_view, 5> kTransparencyChoices = {"Poor", "Fair", "Good", "Very Good",
                                                                         "Excellent"};
inline constexpr std::array<std::string_view, 5> kSeeingChoices = kTransparencyChoices;

// The three further choices stored at the record's end.
// 0: how the object showed, on the visual rating scale observing logs share (index 1..7 is
//    that scale's value; 0 not rated).
inline constexpr std::array<std::string_view, 8> kRatingChoices = {
    "Not rated",      "Very simple",    "Easy, direct",  "Direct vision",
    "Averted vision", "Barely averted", "Questionable",   "Not seen"};
// 1: the eyepiece: 0 none, else record number + 1 in the eyepiece database.
// 2: what was made of the observation.
inline constexpr std::array<std::string_view, 4> kResultChoices = {"Seen", "Sketched", "Imaged", "Not seen"};

inline constexpr int kChoiceRating = 0, kChoiceEyepiece = 1, kChoiceResult = 2;

}  // namespace nocturnel
