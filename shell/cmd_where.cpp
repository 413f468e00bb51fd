#include "shell/commands.h"

namespace nocturnel {

void registerWhereCommands(CLI::App& /*app*/) {}

}  // namespace nocturnel
