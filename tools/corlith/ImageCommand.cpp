// corlith image: image conversions of the user-interface library, for scripts.
//
//   corlith image bmp2jpg IN OUT    IN (BMP, or any image wx reads) as JPEG at quality 100
//
// Exit status 0 when OUT was written, 1 when it was not (OUT is then left as it was).
// The command exists when the tool is built with the user-interface library.
#include "Commands.h"

#if defined(CORLITH_CLI_HAS_UI)
#include <corlith/ui/Image.h>

#include <wx/init.h>

#include <iostream>
#include <memory>
#include <string>
#endif

namespace corlith::cli {

#if defined(CORLITH_CLI_HAS_UI)
namespace {

struct Bmp2JpgOptions {
  std::string input;
  std::string output;
};

}  // namespace

void AddImageCommands(CLI::App& app, CommandContext& context) {
  auto* image = app.add_subcommand("image", "Image conversions");
  image->require_subcommand(1);
  auto options = std::make_shared<Bmp2JpgOptions>();
  auto* bmp2jpg = image->add_subcommand("bmp2jpg", "Convert an image file to JPEG at quality 100");
  bmp2jpg->add_option("IN", options->input, "The image to read (BMP or any format wx reads)")->required();
  bmp2jpg->add_option("OUT", options->output, "The JPEG file to write")->required();
  bmp2jpg->callback([options, &context] {
    // wxImage needs wx's base started, but no display: no window is made.
    const wxInitializer wx;
    if (!wx.IsOk()) {
      std::cerr << "corlith image bmp2jpg: cannot start wxWidgets\n";
      context.exitStatus = 1;
      return;
    }
    if (CJpeg::ConvertBMPToJPG(options->input.c_str(), options->output.c_str()) != 1) {
      std::cerr << "corlith image bmp2jpg: cannot convert " << options->input << " to " << options->output
                << '\n';
      context.exitStatus = 1;
    }
  });
}
#else
void AddImageCommands(CLI::App& /*app*/, CommandContext& /*context*/) {}
#endif

}  // namespace corlith::cli
