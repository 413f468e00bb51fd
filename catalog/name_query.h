#pragma once
// Reading a typed object name: a catalogue prefix of the catalogue table (case-insensitive,
// optionally followed by blanks or one '-') and a number: "NGC 224", "ngc224", "M 31",
// "HIP 91262", "Sh2-155". Tycho stars are written region-number-component ("TYC 4662-1234-1";
// only component 1 is catalogued).
#include <cstdint>
#include <string_view>

namespace nocturnel {

struct ObjectNameQuery {
    int catalogCode = -1;  // row of the catalogue table
    int32_t number = 0;    // number in the catalogue; Tycho: region * 100,000 + number
};

// True when the text names a catalogue of the table and a valid number in it. The longest
// prefix that leaves a readable number wins ("HR 5" is HR, not H).
bool parseObjectName(std::string_view text, ObjectNameQuery& out);

}  // namespace nocturnel
