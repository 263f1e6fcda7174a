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
  bool written = true;
  const auto write = [&](const std::string& name, const std::string& text) {
    written = Write(std::string(argv[1]) + "/" + name, text) && written;
  };
  for (const Manual* const manual : {&KestrelManual(), &HarnessManual()}) {
    const std::string& name = manual->program;
    write(name + ".1", ManPage(*manual, kVersion));
    write(name + ".bash", BashCompletion(*manual));
    write("_" + name, ZshCompletion(*manual));
    write(name + ".fish", FishCompletion(*manual));
  }
  return written ? 0 : 1;
}
