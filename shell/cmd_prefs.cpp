#include "shell/commands.h"

namespace nocturnel {

void registerPrefsCommand(CLI::App& /*app*/) {}

}  // namespace nocturnel
