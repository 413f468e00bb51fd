#include "shell/commands.h"

namespace nocturnel {

void registerNowCommand(CLI::App& /*app*/) {}

}  // namespace nocturnel
