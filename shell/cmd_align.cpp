#include "shell/commands.h"

namespace nocturnel {

void registerAlignCommand(CLI::App& /*app*/) {}

}  // namespace nocturnel
