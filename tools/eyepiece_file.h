#pragma once
// The eyepiece database the builder writes (nocturnel_eyepiece.ppc): common generic eyepiece
// designs, no external source, and the check of the file as written.
#include <filesystem>
#include <string>
#include <vector>

#include "catalog/formats.h"

namespace nocturnel {

// The records of the file, in file order (the preferences' eyepiece index is the record number).
std::vector<EyepieceRecord> eyepieceRecords();

// The file as written: 32-byte records, at least one, every name non-empty, terminated and
// unique, focal lengths and apparent fields positive and plausible. False with the first
// broken rule in `error`.
bool checkEyepieceFile(const std::filesystem::path& file, std::string& error);

}  // namespace nocturnel
