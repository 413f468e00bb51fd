#include "shell/commands.h"

namespace nocturnel {

void registerScopeCommand(CLI::App& /*app*/) {}

}  // namespace nocturnel
