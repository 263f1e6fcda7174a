// The memory and the times of a process from the kernel's files, against a reference. The input's
// first line is the pid, or "self", the error of asking for its clock, and the target of
// /proc/self; the rest describes a tree of files (made_up_tree.h).

#include <dirent.h>
#include <unistd.h>

#include <cerrno>

#include "fuzz/kernel_files.h"
#include "fuzz/machine_reference.h"
#include "fuzz/property.h"
#include "fuzz/text_reference.h"
#include "platform/platform.h"

namespace kestrel::fuzz {

namespace {

using platform::Process;
using platform::ProcessRights;

struct Description {
  int pid = 0;
  bool is_own = false;
  int clock_error = 0;
  std::string self;
  std::string directory;  // of the process, in the tree
};

Description DescriptionOf(const std::string& line, const std::string& root) {
  std::vector<std::string> words = Split(line, ' ');
  words.resize(3);
  Description description;
  description.is_own = words[0] == "self";
  description.pid =
      description.is_own ? getpid() : static_cast<int>(WholeNumber(words[0]).value_or(0) % 100'000);
  description.is_own = description.pid == getpid();
  description.clock_error = words[1] == "0" ? 0 : words[1] == "ESRCH" ? ESRCH : EPERM;
  // The pid of this process differs from run to run.
  description.self = words[2] == "self" ? std::to_string(getpid()) : words[2];
  description.directory =
      root + "/proc/" + (description.is_own ? "self" : std::to_string(description.pid));
  return description;
}

std::optional<std::uint64_t> PagesOf(const std::optional<std::string>& statm) {
  constexpr std::size_t kCapacity = 160;
  const std::vector<std::string> fields = Split(statm.value_or("").substr(0, kCapacity), ' ');
  const bool has_both = fields.size() >= 3 && WholeNumber(fields[0]);
  return has_both ? WholeNumber(fields[1]) : std::nullopt;
}

// Of the first thread that has any, in the order of the directory. `nullopt` if one before that
// cannot be read.
std::optional<std::uint64_t> PagesOfThreads(const MadeUpTree& tree, const std::string& directory) {
  DIR* const tasks = opendir((directory + "/task").c_str());
  if (tasks == nullptr) {
    return std::nullopt;
  }
  std::optional<std::uint64_t> pages = 0;
  for (const dirent* entry = readdir(tasks); entry != nullptr && pages == 0U;
       entry = readdir(tasks)) {
    const std::string thread = std::string(entry->d_name).substr(0, 20);
    if (thread[0] == '.') {
      continue;
    }
    const std::string task = directory + "/task/" + thread;
    const auto statm = tree.Read(task + "/statm");
    const bool is_file = tree.Read(task).text.has_value();
    pages = statm.exists ? PagesOf(statm.text) : is_file ? std::nullopt : std::optional(pages);
  }
  closedir(tasks);
  return pages;
}

// Whether the kernel has a process of that pid, and the files are those of this process's kernel.
bool IsFound(const MadeUpTree& tree, const Description& process) {
  constexpr std::size_t kStatusCapacity = 512;
  if (process.is_own) {
    return true;
  }
  const std::string status = tree.Read(process.directory + "/status").text.value_or("");
  const auto group = AfterBeginning(status.substr(0, kStatusCapacity), "Tgid:\t");
  const auto number = WholeNumber(LeadingDigits(group.value_or("")));
  const bool is_process =
      process.clock_error == 0 ||
      (process.clock_error != ESRCH && number == static_cast<std::uint64_t>(process.pid));
  const auto self = WholeNumber(LeadingDigits(process.self.substr(0, 16)));
  return is_process && self == static_cast<std::uint64_t>(getpid());
}

void CheckMemory(const MadeUpTree& tree, const Description& description) {
  const auto process = Process::Open(description.pid, ProcessRights::kMemory);
  const auto statm = tree.Read(description.directory + "/statm");
  Require(process.has_value() == (statm.exists && IsFound(tree, description)),
          "a process is found as by the reference");
  if (!process) {
    return;
  }
  const auto own = PagesOf(statm.text);
  const auto pages = own == 0U ? PagesOfThreads(tree, description.directory) : own;
  const auto page_size = static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
  Require(process->ResidentBytes() == (pages ? std::optional(*pages * page_size) : std::nullopt),
          "the memory is that of the reference");
}

// A clock has the times; the file only shows that the process exists.
void CheckTimes(const MadeUpTree& tree, const Description& description) {
  const auto process = Process::Open(description.pid, ProcessRights::kTimes);
  const auto first = tree.Read(description.directory + "/oom_score_adj");
  const auto file = first.exists ? first : tree.Read(description.directory + "/statm");
  Require(
      process.has_value() == (description.is_own || (file.exists && IsFound(tree, description))),
      "a process is found for its times as by the reference");
  Require(!process || process->Times().has_value() == (description.is_own || file.text),
          "the times are read of a process that exists");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const Headed input = SplitHead(TextOf(data, size));
  const MadeUpTree tree(input.rest);
  const Description description = DescriptionOf(input.head, tree.root());
  KernelFiles files(tree.root());
  files.self = description.self;
  files.clock_error = description.clock_error;

  CheckMemory(tree, description);
  CheckTimes(tree, description);
  return 0;
}

}  // namespace kestrel::fuzz
