#pragma once
// The Sun, the Moon and the planets in every name lookup: the object finder (find, info), the
// command-line resolver (where, scope goto, rise) and tap identification.

namespace nocturnel {

// Sets the hooks once (again only after the resolver's finders were cleared).
void registerSolarSystemHooks();

}  // namespace nocturnel
