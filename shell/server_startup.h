#pragma once
// Start-up of the web interface on the engine thread, in the program's fixed order: the
// preferences (defaults, the saved record, validation), then the catalogues; and the moment
// each request sees (the machine clock while "Time Update" is "Automatic", unless --date or
// --time fixed it).
namespace nocturnel {

class Engine;

// Runs the start-up on the engine and installs the moment refresh. False (message shown) when
// the preferences cannot be set up; missing catalogues are reported and the server carries on.
bool startEngine(Engine& engine);

}  // namespace nocturnel
