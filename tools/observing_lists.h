#pragma once
// SkyRoamer's own lists as the builder makes them: the Herschel 400 and SAC best-of-the-NGC
// memberships and the meteor-shower table. The published lists are plain tables in tools/data/
// (compiled into the builder); their '#' header lines name the publisher and go into SOURCES.
#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "catalog/formats.h"
#include "plans/observing_list_files.h"

namespace nocturnel {

// The tables of tools/data/, as compiled in.
std::string_view herschel400Table();       // tools/data/herschel400.txt
std::string_view sacBestNgcTable();        // tools/data/sac_best_ngc.txt
std::string_view meteorShowerTable();      // tools/data/meteor_showers.txt
std::string_view ngcSameObjectTable();     // tools/data/ngc_same_objects.txt

// The '#' lines at the top of a table, without the '#' and one leading space, joined by '\n'.
std::string tableHeader(std::string_view table);

// A list table: one NGC number per line after the header; blank lines are skipped. False with
// the line in `error` for anything else, a number out of 1..7840 or one given twice.
bool parseNgcList(std::string_view table, std::vector<int32_t>& ngcNumbers, std::string& error);

// The table of objects with two NGC numbers: "listed catalogued" pairs, one a line; false with
// the line in `error` for anything else or a listed number given twice.
bool parseNgcSameObjects(std::string_view table, std::map<int32_t, int32_t>& catalogNumberOf, std::string& error);

// The meteor-shower table (fields in tools/data/meteor_showers.txt). False with the line in
// `error` for a missing field, a name longer than 23 bytes, a date or angle out of range.
bool parseMeteorShowerTable(std::string_view table, std::vector<MeteorShowerRecord>& showers, std::string& error);

// One list's members: each NGC number looked up through the 18k name index, or under the
// catalogue's number of the same object (`catalogNumberOf`) when the index lacks it. Numbers
// still not found go to `missing` (in list order); ranks count every listed number.
std::vector<ListMemberRecord> listMembers(int catalog, const std::vector<int32_t>& ngcNumbers,
                                          const std::vector<ObjectIndexRecord>& index,
                                          const std::map<int32_t, int32_t>& catalogNumberOf, std::vector<int32_t>& missing);

// The written files: header, record size, and every record in range (members pointing into the
// object file and grouped by list in rank order; showers with valid dates and angles).
bool checkListMemberFile(const std::filesystem::path& file, uint32_t objectCount, std::string& error);
bool checkMeteorShowerFile(const std::filesystem::path& file, std::string& error);

}  // namespace nocturnel
