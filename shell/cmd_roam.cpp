// nocturnel roam, list, memo and usercat: SkyRoamer's selection, the saved lists, the memo
// exchange and the user's own catalogue. The current selection list is kept between commands.
#include <csignal>
#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include <nlohmann/json.hpp>

#include "catalog/object_finder.h"
#include "catalog/object_tables.h"
#include "plans/selection_form.h"
#include "plans/selection_run.h"
#include "plans/user_catalog.h"
#include "plans/user_lists.h"
#include "settings/message.h"
#include "settings/program_folder.h"
#include "settings/text_encoding.h"
#include "shell/app.h"
#include "shell/commands.h"
#include "shell/roam_session.h"
#include "shell/selection_hooks.h"
#include "shell/selection_json.h"

namespace nocturnel {
namespace {

volatile std::sig_atomic_t stopKey = 0;
void onInterrupt(int) { stopKey = 1; }

// Ctrl-C stops a run as the stop key does; the objects found so far are kept.
class StopOnInterrupt {
public:
    StopOnInterrupt() {
        stopKey = 0;
        previous_ = std::signal(SIGINT, onInterrupt);
    }
    ~StopOnInterrupt() { std::signal(SIGINT, previous_); }
    StopOnInterrupt(const StopOnInterrupt&) = delete;
    StopOnInterrupt& operator=(const StopOnInterrupt&) = delete;

private:
    void (*previous_)(int);
};

template <typename Body>
void run(Body body) {
    if (!startUp() || !body()) setExitCode(1);
}

struct RoamOptions {
    std::optional<std::string> visibility, mag, constellation, catalog, type, group, difficulty, size, shortSelection;
    bool add = false, remove = false, reset = false;
};

void printSelection(const SelectionList& list, const std::vector<std::string>& stages) {
    if (globalOptions().json) {
        std::cout << selectionJson(list, stages).dump(2) << "\n";
        return;
    }
    for (std::size_t i = 0; i < list.items.size(); ++i) std::cout << selectionLine(list.items[i], static_cast<int>(i)) << "\n";
    if (list.items.empty()) std::cout << "The selection list is empty.\n";
}

bool roam(const RoamOptions& o) {
    RoamRequest request;
    const std::pair<const std::optional<std::string>*, Criterion> given[] = {
        {&o.visibility, Criterion::kVisibility}, {&o.mag, Criterion::kMagnitude},
        {&o.constellation, Criterion::kConstellation}, {&o.catalog, Criterion::kCatalog},
        {&o.type, Criterion::kType}, {&o.group, Criterion::kGroup}, {&o.difficulty, Criterion::kDifficulty},
        {&o.size, Criterion::kSize}};
    for (const auto& [value, which] : given)
        if (*value) request.criteria.emplace_back(which, **value);
    request.reset = o.reset;
    request.mode = o.add ? SelectionMode::kAdd : o.remove ? SelectionMode::kRemove : SelectionMode::kNew;
    request.shortSelection = o.shortSelection;
    StopOnInterrupt interrupt;
    const bool verbose = !globalOptions().json;
    std::function<void(std::string_view)> stageLine;
    if (verbose) stageLine = [](std::string_view line) { std::cerr << latin1ToUtf8(line) << "\n"; };
    RoamResult result;
    if (!roamCurrentList(request, [] { return stopKey != 0; }, stageLine, result)) return false;
    if (o.shortSelection && verbose) std::cout << result.report << "\n";
    if (result.outcome.stopped && verbose) std::cerr << "Stopped: the objects found so far are kept.\n";
    printSelection(result.list, result.outcome.stages);
    return !result.outcome.failed;
}

}  // namespace

void registerRoamCommands(CLI::App& app) {
    auto o = std::make_shared<RoamOptions>();
    CLI::App* roamCmd = app.add_subcommand(
        "roam", "SkyRoamer: tonight's objects for this site and telescope, kept as the current selection list");
    roamCmd->add_option("--visibility", o->visibility, "No Criteria, Visible, >15\u00b0 .. >50\u00b0, Not Visible (or 0..10)");
    roamCmd->add_option("--mag", o->mag, "No Criteria, Scope Limit, Eyes Limit, 4, 6, 8, 10, 12, 14 (or 0..8)");
    roamCmd->add_option("--constellation", o->constellation, "A constellation's name or abbreviation (0 any)");
    roamCmd->add_option("--catalog", o->catalog, "A catalogue's name, prefix or code (0 any)");
    roamCmd->add_option("--type", o->type, "An object type's name or code (0 any)");
    roamCmd->add_option("--group", o->group, "Planet, Nebula, Galaxy, Double Star, Cluster, Star (0 any)");
    roamCmd->add_option("--difficulty", o->difficulty, "Very Difficult, Difficult, Easy, Very Easy (0 any)");
    roamCmd->add_option("--size", o->size, "Reference magnification the object's best magnification must be near (0 off)");
    roamCmd->add_option("--short", o->shortSelection,
                        "A short selection: messier|caldwell|herschel|sac|stars|user|comets|planets|galaxies|nebulae|"
                        "globulars|multiples|all");
    roamCmd->add_flag("--add", o->add, "\"+\": add the matching objects not yet in the list");
    roamCmd->add_flag("--remove", o->remove, "\"-\": remove the matching objects from the list");
    roamCmd->add_flag("--reset", o->reset, "The trash icon: every criterion back to No Criteria first");
    roamCmd->callback([o] { run([o] { return roam(*o); }); });

    registerListCommands(app);
}

}  // namespace nocturnel
