// The corlith command-line tool: the library's front door for people. Run
// `corlith --help` for the commands; the README describes each of them.
#include "Commands.h"

#include <corlith/Version.h>

#include <exception>
#include <iostream>
#include <string>

int main(int argc, char** argv) {
  CLI::App app{"Corlith, the foundation library of the PCB checking applications"};
  app.set_version_flag("--version", std::string("corlith ") + corlith::kVersionText);
  app.require_subcommand(0, 1);

  corlith::cli::CommandContext context;
  corlith::cli::AddSelfCheckCommand(app, context);
  corlith::cli::AddTextCommands(app, context);
  corlith::cli::AddDumpCommand(app, context);
  corlith::cli::AddStringCommands(app, context);
  corlith::cli::AddPathsCommand(app, context);
  corlith::cli::AddAutoSaveCommand(app, context);
  corlith::cli::AddFFTCommand(app, context);
  corlith::cli::AddSignatureCommand(app, context);
  corlith::cli::AddDiagCommand(app, context);
  corlith::cli::AddHttpCommands(app, context);
  corlith::cli::AddImageCommands(app, context);
  corlith::cli::AddGlInfoCommand(app, context);

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    return app.exit(e);
  } catch (const std::exception& e) {
    std::cerr << "corlith: " << e.what() << '\n';
    return 2;
  }
  if (app.get_subcommands().empty()) std::cout << app.help();
  return context.exitStatus;
}
