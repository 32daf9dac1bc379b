// The corlith tool's command groups. Each group lives in its own file and adds its
// subcommands to the application; a subcommand's callback runs the command and leaves
// the process's exit status in the context.
#pragma once

#include <CLI/CLI.hpp>

namespace corlith::cli {

struct CommandContext {
  int exitStatus = 0;
};

/// self-check (SelfCheck.cpp)
void AddSelfCheckCommand(CLI::App& app, CommandContext& context);
/// filter, split (TextCommands.cpp)
void AddTextCommands(CLI::App& app, CommandContext& context);
/// dump (DumpCommand.cpp)
void AddDumpCommand(CLI::App& app, CommandContext& context);
/// md5, sort, match, format (StringCommands.cpp)
void AddStringCommands(CLI::App& app, CommandContext& context);
/// paths (PathsCommand.cpp)
void AddPathsCommand(CLI::App& app, CommandContext& context);
/// autosave (AutoSaveCommand.cpp)
void AddAutoSaveCommand(CLI::App& app, CommandContext& context);
/// diag (DiagCommand.cpp)
void AddDiagCommand(CLI::App& app, CommandContext& context);
/// post, get, download (HttpCommands.cpp)
void AddHttpCommands(CLI::App& app, CommandContext& context);
/// signature (SignatureCommand.cpp)
void AddSignatureCommand(CLI::App& app, CommandContext& context);
/// fft (FFTCommand.cpp)
void AddFFTCommand(CLI::App& app, CommandContext& context);
/// image bmp2jpg (ImageCommand.cpp; only with the user-interface library)
void AddImageCommands(CLI::App& app, CommandContext& context);
/// glinfo (GlInfoCommand.cpp; only with the user-interface library)
void AddGlInfoCommand(CLI::App& app, CommandContext& context);

}  // namespace corlith::cli
