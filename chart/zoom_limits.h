#pragma once
// Star and object magnitude limits of each zoom level, from the list choices of preference
// page 4/6 (prefs().zoomStarLimit / zoomObjectLimit hold list indexes; zoom levels above 10
// use slot 10).
//
// Star limits: each slot's list shows two entries, a deeper one at the top (index 0) and the
// slot's usual limit below it (index 1); an index past the end of a list (the start-up value 2)
// takes its last entry, the usual limit. The four widest rows are fixed at "<5", which is
// within the default bright stars, so no field stars are loaded there.
//
// Object limits: index 0 "All" (no limit, the value 100), then three magnitudes from the deepest
// down to the slot's usual limit at index 3 (the start-up value); a larger index takes index 3.
#include <array>

namespace nocturnel {

inline constexpr float kNoObjectLimit = 100.0f;

// Star magnitude lists by slot, as shown (index 0 at the top).
inline constexpr std::array<std::array<float, 2>, 11> kZoomStarLimitChoices = {{
    {5.0f, 5.0f},   {5.0f, 5.0f},   {5.0f, 5.0f},   {5.0f, 5.0f},  // 180, 150, 120, 90 degrees
    {7.5f, 6.5f},   {7.5f, 6.5f},   {8.5f, 7.5f},   {9.5f, 8.5f},  // 60, 45, 30, 20 degrees
    {10.5f, 9.5f},  {11.5f, 10.5f}, {12.5f, 11.5f},                // 10, 5, 2.5 degrees and closer
}};

// Object magnitude lists by slot, as shown (index 0 "All").
inline constexpr std::array<std::array<float, 4>, 11> kZoomObjectLimitChoices = {{
    {kNoObjectLimit, 8, 7, 6},     {kNoObjectLimit, 8, 7, 6},     {kNoObjectLimit, 9, 8, 7},
    {kNoObjectLimit, 10, 9, 8},    {kNoObjectLimit, 11, 10, 9},   {kNoObjectLimit, 12, 11, 10},
    {kNoObjectLimit, 13, 12, 11},  {kNoObjectLimit, 14, 13, 12},  {kNoObjectLimit, 15, 14, 13},
    {kNoObjectLimit, 16, 15, 14},  {kNoObjectLimit, 17, 16, 15},
}};

// Slot of the per-zoom preference tables for a zoom level (0..10).
int zoomTableSlot(int zoomLevel);
// Field-star magnitude limit of a zoom level (below 5.5 the default stars suffice).
float starMagnitudeLimit(int zoomLevel);
// Object magnitude limit of a zoom level (kNoObjectLimit: objects are not limited).
float objectMagnitudeLimit(int zoomLevel);

}  // namespace nocturnel
