#include "shell/commands.h"

namespace nocturnel {

void registerFindCommand(CLI::App& /*app*/) {}

}  // namespace nocturnel
