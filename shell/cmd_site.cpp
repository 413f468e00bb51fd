#include "shell/commands.h"

namespace nocturnel {

void registerSiteCommand(CLI::App& /*app*/) {}

}  // namespace nocturnel
