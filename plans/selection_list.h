#pragma once
// The current selection list: the objects SkyRoamer selected or the user loaded, as 72-byte
// object references, up to the capacity of the "Max Selected items" preference. The list is
// kept between commands in the program folder (nocturnel_selection.lst, a list file).
#include <string>
#include <vector>

#include "catalog/formats.h"
#include "catalog/object_finder.h"
#include "settings/preferences.h"

namespace nocturnel {

struct SelectionList {
    std::vector<ObjectReference> items;  // in list order; the end mark follows the last
    int capacity = 500;

    bool full() const { return static_cast<int>(items.size()) >= capacity; }
    bool contains(const ObjectReference& object) const;
};

// The capacity the preferences give ("Max Selected items": 25 .. 500).
int selectionCapacity(const Preferences& p);

// Two references name the same object: the same catalogue and number (and, for the planets,
// the user's objects and the records without a number, the same name).
bool sameObject(const ObjectReference& a, const ObjectReference& b);

// A reference to a found catalogue object (the name cut to 31 characters).
ObjectReference referenceOf(const FoundObject& object);
// The name text of a reference (Latin-1).
std::string referenceName(const ObjectReference& object);
// A line the finder reads back: "M 31", "NGC 7000", "HIP 91262", or the name for the planets
// and the user's objects.
std::string designationOf(const ObjectReference& object);

// The list kept between commands: loaded from and saved to the program folder. Loading a
// missing file gives an empty list without a message.
bool loadCurrentSelection(SelectionList& list, SelectionCriteria& criteria);
bool saveCurrentSelection(const SelectionList& list, const SelectionCriteria& criteria);

}  // namespace nocturnel
