#pragma once
// A SkyRoamer run: the stages in their fixed order, each object through the acceptance test,
// until the list is full or the user stops it.
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "plans/selection_acceptance.h"
#include "plans/selection_list.h"

namespace nocturnel {

struct SelectionRunHooks {
    SelectionConditions conditions;
    // The ten bodies (Sun, Moon, planets) at the selection's moment, as references of type 27 and
    // catalogue 45; empty when the solar system cannot be computed.
    std::function<std::vector<ObjectReference>()> planets;
    // Polled between objects; true stops the run ("Press any key to stop.").
    std::function<bool()> stopRequested;
    // Each stage's line as it begins ("Checking Messier  ", "Objects to check: %05d", ...).
    std::function<void(std::string_view)> stageLine;
    // The deep-sky stage's count of objects still to check, now and then.
    std::function<void(int remaining)> remaining;
};

enum class SelectionMode { kNew, kAdd, kRemove };

struct SelectionOutcome {
    std::vector<std::string> stages;   // the lines shown, in order
    int added = 0;                     // objects added (removed, for kRemove)
    bool stopped = false;              // the user stopped the run
    bool failed = false;               // a file the run needs is missing (message shown)
};

// The stage a short selection of the main screen runs, with its report text.
enum class ShortSelection {
    kMessier, kCaldwell, kHerschel, kSac, kStars, kUser, kComets, kPlanets, kGalaxies, kNebulae, kGlobulars,
    kMultiples, kAll,
};

// Runs the stages over `list`. kNew empties the list first ("N"); kAdd appends the matching
// objects not yet in it ("+"); kRemove deletes the matching objects from it ("-").
SelectionOutcome runSelection(const SelectionCriteria& criteria, const SelectionRunHooks& hooks, SelectionList& list,
                              SelectionMode mode = SelectionMode::kNew);

// A short selection: the objects of one category visible now, as a new list; the report is
// "%d visible Messiers." and the like. "Please set your location first!" without a site.
SelectionOutcome runShortSelection(ShortSelection which, const SelectionCriteria& base, const SelectionRunHooks& hooks,
                                   SelectionList& list, std::string& report);

// The criteria of the trash icon: every filter back to "No Criteria".
SelectionCriteria resetCriteria(const SelectionCriteria& current);

}  // namespace nocturnel
