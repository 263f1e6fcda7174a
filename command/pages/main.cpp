// Writes the man pages and the completions into a folder: kestrel-pages FOLDER

#include <cstdio>
#include <fstream>
#include <string>

#include "command/pages/pages.h"
#include "command/version.h"

namespace {

bool Write(const std::string& file, const std::string& text) {
  std::ofstream stream(file, std::ios::binary);
  stream << text;
  stream.close();
  if (!stream) {
    std::fprintf(stderr, "kestrel-pages: '%s' could not be written\n", file.c_str());
  }
  return static_cast<bool>(stream);
}

}  // namespace

int main(int argc, char** argv) {
  using namespace kestrel::command;  // NOLINT(google-build-using-namespace)

  if (argc != 2) {
    std::fputs("usage: kestrel-pages FOLDER\n", stderr);
    return 2;
  }
  const std::string folder = std::string(argv[1]) + "/";
  bool written = true;
  for (const Manual* const manual : {&KestrelManual(), &HarnessManual()}) {
    const std::string& name = manual->program;
    written = Write(folder + name + ".1", ManPage(*manual, kVersion)) && written;
    written = Write(folder + name + ".bash", BashCompletion(*manual)) && written;
    written = Write(folder + "_" + name, ZshCompletion(*manual)) && written;
    written = Write(folder + name + ".fish", FishCompletion(*manual)) && written;
  }
  return written ? 0 : 1;
}
