#include "plans/selection_run.h"

#include <cstdio>
#include <cstring>

#include "catalog/catalogues.h"
#include "catalog/constellations.h"
#include "catalog/object_tables.h"
#include "catalog/objects.h"
#include "catalog/record_file.h"
#include "catalog/star_catalog.h"
#include "plans/list_members.h"
#include "plans/meteor_showers.h"
#include "settings/message.h"

namespace nocturnel {

namespace {

constexpr int kTypeConstellation = 14, kTypeMeteor = 29, kTypeStar = 30, kTypePlanet = 27;
constexpr int kCatalogConstellation = 13, kCatalogMeteor = 41, kCatalogStars = 54;

void setName(ObjectReference& r, std::string_view name) {
    std::memset(r.name, 0, sizeof r.name);
    std::memcpy(r.name, name.data(), std::min(name.size(), sizeof r.name - 1));
}

ObjectReference referenceOfRecord(const ObjectRecord& o, int catalog, int32_t number) {
    ObjectReference r{};
    r.catalog = catalog;
    r.number = number;
    r.type = o.type;
    r.constellation = o.constellation;
    r.raHours = o.raHours;
    r.decDeg = o.decDeg;
    r.mag = o.mag;
    r.sizeArcmin = o.majorArcmin;
    setName(r, objectNameText(o));
    return r;
}

// One run over the list: each candidate goes through the test; the mode decides what an
// accepted candidate does to the list.
class Run {
public:
    Run(const SelectionCriteria& criteria, const SelectionRunHooks& hooks, SelectionList& list, SelectionMode mode)
        : c_(criteria), hooks_(hooks), list_(list), mode_(mode) {}

    SelectionOutcome outcome;

    bool done() {
        if (outcome.stopped) return true;
        if (hooks_.stopRequested && hooks_.stopRequested()) {
            outcome.stopped = true;
            return true;
        }
        return mode_ != SelectionMode::kRemove && list_.full();
    }
    void stage(std::string_view line) {
        outcome.stages.emplace_back(line);
        if (hooks_.stageLine) hooks_.stageLine(line);
    }
    // Offers one candidate; false when the run must end. `added` tells whether it joined the list.
    bool offer(const ObjectReference& candidate, bool* added = nullptr) {
        if (added) *added = false;
        if (done()) return false;
        if (acceptObject(c_, candidate, hooks_.conditions) != kAccepted) return true;
        if (mode_ == SelectionMode::kRemove) {
            for (auto it = list_.items.begin(); it != list_.items.end(); ++it)
                if (sameObject(*it, candidate)) {
                    list_.items.erase(it);
                    ++outcome.added;
                    break;
                }
            return true;
        }
        if (list_.contains(candidate)) return true;
        list_.items.push_back(candidate);
        ++outcome.added;
        if (added) *added = true;
        return !done();
    }

private:
    const SelectionCriteria& c_;
    const SelectionRunHooks& hooks_;
    SelectionList& list_;
    SelectionMode mode_;
};

bool wantsStage(const SelectionCriteria& c, int catalogCode) {
    // A catalogue that lets everything through the test chooses its own stage instead.
    if (c.catalogFilter > 0 && catalogFilterAcceptsEverything(c.catalogFilter)) return c.catalogFilter == catalogCode;
    return true;
}
bool wantsCatalogueWide(const SelectionCriteria& c) {
    return !(c.catalogFilter > 0 && catalogFilterAcceptsEverything(c.catalogFilter));
}

void planetStage(Run& run, const SelectionCriteria& c, const SelectionRunHooks& hooks) {
    if (!((c.typeFilter == 0 || c.typeFilter == kTypePlanet) && (c.catalogFilter == 0 || c.catalogFilter == kCatalogPlanets)))
        return;
    run.stage("Checking Planets");
    if (!hooks.planets) return;
    for (ObjectReference body : hooks.planets()) {
        body.type = kTypePlanet;
        body.catalog = kCatalogPlanets;
        if (!run.offer(body)) return;
    }
}

void constellationStage(Run& run) {
    run.stage("Checking Constellation");
    const auto& list = constellations().constellations;
    for (std::size_t i = 0; i < list.size(); ++i) {
        ObjectReference r{};
        r.catalog = kCatalogConstellation;
        r.number = static_cast<int32_t>(i + 1);
        r.type = kTypeConstellation;
        r.constellation = static_cast<int32_t>(i);
        r.raHours = list[i].labelRaHours;
        r.decDeg = list[i].labelDecDeg;
        setName(r, std::string_view(list[i].name, strnlen(list[i].name, sizeof list[i].name)));
        if (!run.offer(r)) return;
    }
}

void meteorStage(Run& run, const SelectionCriteria& c) {
    run.stage("Checking Meteor Showers");
    std::vector<MeteorShower> showers;
    if (!loadMeteorShowers(showers)) return;  // the message told which file; the run goes on
    for (std::size_t i = 0; i < showers.size(); ++i) {
        const MeteorShower& s = showers[i];
        if (!meteorShowerActive(s, c.selectionMonth, c.selectionDay)) continue;
        ObjectReference r{};
        r.catalog = kCatalogMeteor;
        r.number = static_cast<int32_t>(i + 1);
        r.type = kTypeMeteor;
        r.raHours = s.radiantRaDeg / 15.0;
        r.decDeg = s.radiantDecDeg;
        r.constellation = constellationOf(r.raHours, r.decDeg);
        setName(r, s.name);
        if (!run.offer(r)) return;
    }
}

void cometStage(Run& run) {
    run.stage("Checking Comets&Asteroid");
    // The orbital-elements database has no reader yet: the stage checks nothing when it is absent.
}

int objectCount() {
    const DatabaseSlot& slot = objectSlot();
    return slot.file ? static_cast<int>(slot.file->recordCount & 0xFFFF) : 0;
}

// Messier, Caldwell: the objects of the file that carry that catalogue's number.
void membershipStage(Run& run, std::string_view line, int catalog, std::vector<bool>& taken) {
    run.stage(line);
    const int count = objectCount();
    for (int i = 0; i < count; ++i) {
        ObjectRecord o;
        if (!readObject(static_cast<uint16_t>(i), o)) return;
        const int number = catalog == kCatalogMessier ? o.messier : o.caldwell;
        if (number <= 0) continue;
        // An object listed here is not offered again under its own catalogue by the deep-sky stage.
        bool added = false;
        const bool more = run.offer(referenceOfRecord(o, catalog, number), &added);
        if (added) taken[static_cast<std::size_t>(i)] = true;
        if (!more) return;
    }
}

// The members of the published lists, read once per run (the file's message shown once).
class ListMembers {
public:
    const std::vector<ListMemberRecord>* get() {
        if (!loaded_) ok_ = loadListMembers(members_), loaded_ = true;
        return ok_ ? &members_ : nullptr;
    }

private:
    std::vector<ListMemberRecord> members_;
    bool loaded_ = false, ok_ = false;
};

// Best SAC, Herschel: the members of the list in list order, each under its own catalogue and
// number (so the finder and the chart know it); an object an earlier stage took is not offered
// twice.
void listStage(Run& run, std::string_view line, int catalog, ListMembers& lists, std::vector<bool>& taken) {
    run.stage(line);
    const std::vector<ListMemberRecord>* members = lists.get();
    if (members == nullptr) return;
    const int count = objectCount();
    for (const ListMemberRecord& m : *members) {
        if (m.catalog != catalog || m.objectRecord >= count || taken[static_cast<std::size_t>(m.objectRecord)]) continue;
        ObjectRecord o;
        if (!readObject(static_cast<uint16_t>(m.objectRecord), o)) return;
        bool added = false;
        const bool more = run.offer(referenceOfRecord(o, o.catalog, o.number), &added);
        if (added) taken[static_cast<std::size_t>(m.objectRecord)] = true;
        if (!more) return;
    }
}

void userStage(Run& run) {
    run.stage("Checking your Objects");
    if (!openUserObjects() || !userObjectSlot().file || (userObjectSlot().file->recordCount & 0xFFFF) == 0) {
        showMessage("No personnal object found.");
        return;
    }
    const int count = static_cast<int>(userObjectSlot().file->recordCount & 0xFFFF);
    for (int i = 0; i < count; ++i) {
        ObjectRecord o;
        if (!readUserObject(static_cast<uint16_t>(i), o)) return;
        ObjectReference r = referenceOfRecord(o, kCatalogUser, i);
        setName(r, std::string_view(o.name, strnlen(o.name, sizeof o.name)));
        if (!run.offer(r)) return;
    }
}

void deepSkyStage(Run& run, const SelectionRunHooks& hooks, const std::vector<bool>& taken) {
    const int count = objectCount();
    char line[40];
    std::snprintf(line, sizeof line, "Objects to check: %05d", count);
    run.stage(line);
    for (int i = 0; i < count; ++i) {
        if (hooks.remaining && i % 1000 == 0) hooks.remaining(count - i);
        if (taken[static_cast<std::size_t>(i)]) continue;
        ObjectRecord o;
        if (!readObject(static_cast<uint16_t>(i), o)) return;
        if (!run.offer(referenceOfRecord(o, o.catalog, o.number))) return;
    }
}

// False when the bright-star file is missing: the run ends there.
bool brightStarStage(Run& run) {
    run.stage("Checking Bright Stars");
    const int names = brightStarCount();
    if (names <= 0) return false;
    // Positions and magnitudes come from the default stars, by HR number.
    std::vector<DefaultStarRecord> byHr(10000);
    for (int i = 0; i < 1646; ++i) {
        DefaultStarRecord s;
        if (!readDefaultStar(i, s)) break;
        if (s.hr > 0 && s.hr < 10000) byHr[static_cast<std::size_t>(s.hr)] = s;
    }
    for (int i = 0; i < names; ++i) {
        BrightStarRecord b;
        if (!readBrightStar(i, b)) break;
        const DefaultStarRecord& s = byHr[b.key < 10000 ? b.key : 0];
        if (s.hr == 0) continue;
        ObjectReference r{};
        r.catalog = kCatalogHR;
        r.number = s.hr;
        r.type = kTypeStar;
        r.constellation = s.constellation;
        r.raHours = s.raHours;
        r.decDeg = s.decDeg;
        r.mag = s.mag;
        setName(r, std::string_view(b.name, strnlen(b.name, sizeof b.name)));
        if (!run.offer(r)) return true;
    }
    return true;
}

}  // namespace

SelectionOutcome runSelection(const SelectionCriteria& criteria, const SelectionRunHooks& hooks, SelectionList& list,
                              SelectionMode mode) {
    if (mode == SelectionMode::kNew) list.items.clear();
    Run run(criteria, hooks, list, mode);
    run.stage("Please wait, selecting");
    openCatalogues();
    std::vector<bool> taken(static_cast<std::size_t>(objectCount()), false);
    const auto finished = [&] { return run.done(); };
    if (!finished()) planetStage(run, criteria, hooks);
    if (!finished() && wantsCatalogueWide(criteria)) constellationStage(run);
    if (!finished() && wantsCatalogueWide(criteria)) meteorStage(run, criteria);
    if (!finished() && wantsCatalogueWide(criteria)) cometStage(run);
    if (!finished() && wantsStage(criteria, kCatalogMessier)) membershipStage(run, "Checking Messier  ", kCatalogMessier, taken);
    if (!finished() && wantsStage(criteria, kCatalogUser)) userStage(run);
    if (!finished() && wantsStage(criteria, kCatalogCaldwell)) membershipStage(run, "Checking Caldwell   ", kCatalogCaldwell, taken);
    ListMembers lists;
    if (!finished() && wantsStage(criteria, kCatalogBestNGC)) listStage(run, "Checking Best SAC", kCatalogBestNGC, lists, taken);
    if (!finished() && wantsStage(criteria, kCatalogHerschel)) listStage(run, "Checking Herschel", kCatalogHerschel, lists, taken);
    if (!finished() && wantsCatalogueWide(criteria)) deepSkyStage(run, hooks, taken);
    if (!finished() && wantsCatalogueWide(criteria) && !brightStarStage(run)) run.outcome.failed = true;
    return run.outcome;
}

SelectionCriteria resetCriteria(const SelectionCriteria& current) {
    SelectionCriteria fresh;
    fresh.selectionYear = current.selectionYear;
    fresh.selectionMonth = current.selectionMonth;
    fresh.selectionDay = current.selectionDay;
    fresh.selectionHour = current.selectionHour;
    fresh.selectionMinute = current.selectionMinute;
    fresh.scopeLimitMag = current.scopeLimitMag;
    fresh.eyesLimitMag = current.eyesLimitMag;
    return fresh;
}

SelectionOutcome runShortSelection(ShortSelection which, const SelectionCriteria& base, const SelectionRunHooks& hooks,
                                   SelectionList& list, std::string& report) {
    SelectionCriteria c = resetCriteria(base);
    c.visibility = 1;  // "Visible"
    const char* text = "all visible objects.";
    switch (which) {
        case ShortSelection::kMessier: c.catalogFilter = kCatalogMessier, text = "visible Messiers."; break;
        case ShortSelection::kCaldwell: c.catalogFilter = kCatalogCaldwell, text = "visible Caldwells."; break;
        case ShortSelection::kHerschel: c.catalogFilter = kCatalogHerschel, text = "visible Herschels."; break;
        case ShortSelection::kSac: c.catalogFilter = kCatalogBestNGC, text = "visible best SAC Objects."; break;
        case ShortSelection::kStars: c.typeGroupFilter = 5, text = "visible bright stars."; break;
        case ShortSelection::kUser: c.catalogFilter = kCatalogUser, text = "visible personnal objects."; break;
        case ShortSelection::kComets: c.typeGroupFilter = 9, text = "visible comets."; break;
        case ShortSelection::kPlanets: c.catalogFilter = kCatalogPlanets, text = "visible Planets."; break;
        case ShortSelection::kGalaxies: c.typeGroupFilter = 3, text = "visible Galaxies."; break;
        case ShortSelection::kNebulae: c.typeGroupFilter = 4, text = "visible Nebulae."; break;
        case ShortSelection::kGlobulars: c.typeFilter = 2, text = "visible Globular Clusters."; break;
        case ShortSelection::kMultiples: c.typeGroupFilter = 6, text = "visible Multiple Stars."; break;
        case ShortSelection::kAll: break;
    }
    SelectionOutcome outcome = runSelection(c, hooks, list, SelectionMode::kNew);
    report = std::to_string(list.items.size()) + " " + text;
    return outcome;
}

}  // namespace nocturnel
