#pragma once
// The user's own objects: usercatalogs/<userCatalogFile> (default "nocturnel_user_catalog.pdb"),
// a record file of 60-byte object records in the deep-sky file's layout, catalogue code 63.
// Users bring their targets as plain CSV: name, RA, Dec, type, magnitude, size.
#include <string>
#include <string_view>
#include <vector>

#include "catalog/formats.h"

namespace nocturnel {

// Reads CSV text: one object per line "name,RA,Dec,type,magnitude,size" (RA in hours and Dec in
// degrees as decimal or sexagesimal text; type a type name, abbreviation or code, may be empty;
// magnitude and size (arcminutes) may be empty for unknown). A first line naming the columns
// and blank lines are skipped; '#' begins a comment line. False after "Can't import the user
// catalogue" naming the line when a line cannot be read.
bool readUserCatalogCsv(std::string_view csv, std::vector<ObjectRecord>& out);

// Writes the records as the user catalogue file of the preferences; false after a message.
bool writeUserCatalog(const std::vector<ObjectRecord>& records);

// Imports a CSV file: the number of objects written, -1 after a message.
int importUserCatalogCsv(const std::string& path);

}  // namespace nocturnel
