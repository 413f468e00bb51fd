#include "shell/commands.h"

namespace nocturnel {

void registerCatalogCommand(CLI::App& /*app*/) {}

}  // namespace nocturnel
