#include "shell/commands.h"

namespace nocturnel {

void registerChartCommand(CLI::App& /*app*/) {}

}  // namespace nocturnel
