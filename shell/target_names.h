#pragma once
// One answer to "where is NAME?" for every command that asks for a place (where, scope goto
// and sync, chart --center, align map): a bright star's name ("Vega", "alf Lyr"), any name the
// object finder reads ("M 42", "NGC 1976", "HIP 27989") or a name a registered finder knows
// (the solar-system bodies register theirs at start-up), as a J2000 place.
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "settings/preferences.h"

namespace nocturnel {

struct ResolvedTarget {
    std::string name;     // as the finder writes it ("M42, NGC1976") or the place as text (Latin-1)
    double raHours = 0;   // J2000, 0..24
    double decDeg = 0;    // J2000, -90..90
};

// A further finder, tried before the catalogues: true with the place of `name` at `moment`
// (bodies that move answer for that moment), false without a message when it does not know
// the name.
using TargetFinder = std::function<bool(std::string_view name, const ObservingMoment& moment, ResolvedTarget& out)>;
void addTargetFinder(TargetFinder finder);
void clearTargetFinders();  // tests
// Counts the clearings, so that a finder registered once at start-up can be registered again.
int targetFinderGeneration();

// A name typed as several words on the command line (`where M 42`), joined by single spaces.
std::string joinedName(const std::vector<std::string>& words);

// The place of a name for the observing moment of prefs(). False with one message when no
// finder knows it (the object finder's own message when the text reads as a catalogue name).
bool resolveTarget(std::string_view name, ResolvedTarget& out);

// What a command was given: a name, or --ra and --dec texts (hours and degrees, decimal or
// sexagesimal, checked). Exactly one of the two ways; false with a message otherwise.
bool resolveTargetOrPlace(std::string_view name, std::string_view raText, std::string_view decText,
                          ResolvedTarget& out);

}  // namespace nocturnel
