// corlith md5, sort, match and format: not yet available.
#include "Commands.h"

namespace corlith::cli {

void AddStringCommands(CLI::App&, CommandContext&) {}

}  // namespace corlith::cli
