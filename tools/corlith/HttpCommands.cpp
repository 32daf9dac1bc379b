// corlith post, get, download: a form sent to a web endpoint through KTUtility's upload
// (multipart POST, or GET with the fields appended to the URL) and a URL fetched into a
// file through its download. The exit status says whether the library call gave 1.
#include "Commands.h"

#include <corlith/environment/Utility.h>

#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace corlith::cli {

namespace {

struct FormOptions {
  std::string url;
  std::vector<std::string> fields;
};

struct DownloadOptions {
  std::string url;
  std::string file;
};

// 0 when the upload was sent, 1 when not, 2 for a field that is not NAME=VALUE.
int RunForm(const char* command, const FormOptions& options, int multipart) {
  CStringArray names;
  CStringArray values;
  for (const std::string& field : options.fields) {
    const std::size_t equals = field.find('=');
    if (equals == std::string::npos) {
      std::cerr << "corlith " << command << ": \"" << field << "\" is not NAME=VALUE\n";
      return 2;
    }
    names.Add(CString(field.substr(0, equals)));
    values.Add(CString(field.substr(equals + 1)));
  }
  CString url(options.url);
  if (KTUtility::GetInstance()->GetComplate(url, names, values, multipart) == 1) return 0;
  std::cerr << "corlith " << command << ": the request to " << url.str() << " could not be sent\n";
  return 1;
}

int RunDownload(const DownloadOptions& options) {
  if (KTUtility::GetInstance()->GetDownloader(CString(options.url), CString(options.file)) == 1) return 0;
  std::cerr << "corlith download: " << options.url << " was not saved to " << options.file << '\n';
  return 1;
}

void AddFormCommand(CLI::App& app, CommandContext& context, const char* name, const char* description,
                    int multipart) {
  auto options = std::make_shared<FormOptions>();
  auto* command = app.add_subcommand(name, description);
  command->add_option("URL", options->url, "The endpoint (http:// or https://)")->required();
  command->add_option("FIELD", options->fields, "Form fields, each NAME=VALUE");
  command->callback(
      [options, &context, name, multipart] { context.exitStatus = RunForm(name, *options, multipart); });
}

}  // namespace

void AddHttpCommands(CLI::App& app, CommandContext& context) {
  AddFormCommand(app, context, "post", "Send NAME=VALUE fields as a multipart/form-data POST", 1);
  AddFormCommand(app, context, "get",
                 "Send NAME=VALUE fields as a GET, each appended to the URL as &NAME=VALUE (the URL "
                 "must already hold a ? and a first parameter)",
                 0);
  auto options = std::make_shared<DownloadOptions>();
  auto* download = app.add_subcommand("download", "Fetch a URL into a file (replaced only when complete)");
  download->add_option("URL", options->url, "The address (http:// or https://)")->required();
  download->add_option("FILE", options->file, "The file to write")->required();
  download->callback([options, &context] { context.exitStatus = RunDownload(*options); });
}

}  // namespace corlith::cli
