#pragma once
// The members of the published observing lists the object file does not mark itself (the
// Herschel 400 and SAC's best of the NGC), read from data/nocturnel_list_members.ppc.
#include <cstdint>
#include <map>
#include <utility>
#include <vector>

#include "plans/observing_list_files.h"

namespace nocturnel {

// Every member record, grouped by list in list order. A missing file shows "Could not find
// nocturnel_list_members.ppc" (with the folder looked in), a damaged one "Could not read
// nocturnel_list_members.ppc" (with the fault); both leave `members` empty and return false.
bool loadListMembers(std::vector<ListMemberRecord>& members);

// The lists (catalogue codes, in file order) an object record of nocturnel_obj_18k.ppc belongs to.
std::vector<int> listsOfObject(const std::vector<ListMemberRecord>& members, int objectRecord);

// The lists of each member object, keyed by the object's own catalogue and number (as the
// stages' references carry them: NGC 3180 for the listed NGC 3184). Silent and empty when the
// membership or object file is absent: it only decorates what is shown.
using ListsByObject = std::map<std::pair<int32_t, int32_t>, std::vector<int>>;
ListsByObject listsByObject();

}  // namespace nocturnel
