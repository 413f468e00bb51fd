#pragma once
// The finder's hook for the Sun, the Moon and the planets (nocturnel find Jupiter).
#include <string>

namespace nocturnel {

// When name is a body of the solar system: prints its place for the moment (JSON with --json)
// and returns true; false for any other name (and after a message when the planet file is missing).
bool findAndPrintSolarSystemBody(const std::string& name);

}  // namespace nocturnel
