// corlith glinfo: the start-up OpenGL probe as a host runs it, for support to ask a user
// to run. Prints two lines,
//
//   opengl: 1                (1: OpenGL drew correctly; 0: it did not, or no display)
//   version: 4.5 (Compatibility Profile) Mesa 22.3.6   (empty when no context was made)
//
// Exit status 0 when the probe answered 1, else 1. The command exists when the tool is
// built with the user-interface library.
#include "Commands.h"

#if defined(CORLITH_CLI_HAS_UI)
#include <corlith/ui/GLProbe.h>

#include <wx/app.h>
#include <wx/init.h>
#include <wx/log.h>

#include <iostream>
#endif

namespace corlith::cli {

#if defined(CORLITH_CLI_HAS_UI)
namespace {

// The probe needs a running application on a display: started here, ended after.
int ProbeOpenGL(CString& version) {
  static int argc = 1;
  static char name[] = "corlith";
  static char* argv[] = {name, nullptr};
  wxApp::SetInstance(new wxApp);
  if (!wxEntryStart(argc, argv)) return IsEnableOpenGL(version, nullptr);  // no display: 0 at once
  // Nothing may wait for a person: wx's messages go to standard error, never to a box.
  delete wxLog::SetActiveTarget(new wxLogStderr);
  wxSetAssertHandler(nullptr);
  const int result = IsEnableOpenGL(version, nullptr);
  wxTheApp->OnExit();
  wxEntryCleanup();
  return result;
}

}  // namespace

void AddGlInfoCommand(CLI::App& app, CommandContext& context) {
  auto* glinfo = app.add_subcommand("glinfo", "Probe whether OpenGL draws on this display, and its version");
  glinfo->callback([&context] {
    CString version;
    const int result = ProbeOpenGL(version);
    std::cout << "opengl: " << result << '\n' << "version: " << version.GetString() << '\n';
    context.exitStatus = result == 1 ? 0 : 1;
  });
}
#else
void AddGlInfoCommand(CLI::App& /*app*/, CommandContext& /*context*/) {}
#endif

}  // namespace corlith::cli
