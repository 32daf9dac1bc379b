// corlith dump: not yet available; the archive inspector lands with the value arrays.
#include "Commands.h"

namespace corlith::cli {

void AddDumpCommand(CLI::App&, CommandContext&) {}

}  // namespace corlith::cli
