#include "simulator/machine_file.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <initializer_list>
#include <limits>
#include <optional>
#include <utility>

#include "simulator/machine_text.h"
#include "simulator/operations.h"
#include "simulator/statuses.h"
#include "simulator/toml.h"

namespace kestrel::simulator {

namespace {

constexpr std::int64_t kMaxInt = std::numeric_limits<int>::max();
constexpr std::int64_t kMaxBytes = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kMaxDevices = 1024;                  // in one entry
constexpr std::size_t kMaxFileSize = std::size_t{1} << 20;  // bytes
constexpr std::size_t kMaxTextLength = 256;                 // the field in the properties record

// Replaces each control character, of ASCII or of the block U+0080 to U+009F, by its value.
std::string WithoutControlCharacters(const std::string& text) {
  constexpr const char* kDigits = "0123456789abcdef";
  std::string printable;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    const bool in_block =
        byte == 0xc2 && i + 1 < text.size() && static_cast<unsigned char>(text[i + 1]) < 0xa0;
    if (byte >= 0x20 && byte != 0x7f && !in_block) {
      printable += text[i];
      continue;
    }
    const auto value = in_block ? static_cast<unsigned char>(text[++i]) : byte;
    printable += {'\\', 'x', kDigits[value >> 4U], kDigits[value & 0xfU]};
  }
  return printable;
}

// A complaint about a place in the file, whose name is not known there. what() would end at a NUL.
class Refusal : public std::runtime_error {
 public:
  Refusal(const toml::source_region& where, const std::string& complaint)
      : std::runtime_error(std::to_string(where.begin.line) + ":" +
                           std::to_string(where.begin.column) + ": " +
                           WithoutControlCharacters(complaint)) {}
};

[[noreturn]] void Refuse(const toml::source_region& where, const std::string& complaint) {
  throw Refusal(where, complaint);
}

std::string Quoted(std::string_view text) { return "'" + std::string(text) + "'"; }

// Reads the values of a table and checks the type and the bounds of each.
class TableReader {
 public:
  TableReader(const toml::table& table, std::initializer_list<std::string_view> known_keys)
      : table_(table) {
    for (const auto& [key, value] : table) {
      if (std::find(known_keys.begin(), known_keys.end(), key.str()) == known_keys.end()) {
        Refuse(key.source(), "unknown key " + Quoted(key));
      }
    }
  }

  [[nodiscard]] std::optional<std::int64_t> OptionalInteger(std::string_view key, std::int64_t min,
                                                            std::int64_t max) const {
    const toml::node* node = table_.get(key);
    if (node == nullptr) {
      return std::nullopt;
    }
    const auto* integer = node->as_integer();
    if (integer == nullptr) {
      Refuse(node->source(), Quoted(key) + " must be an integer");
    }
    if (integer->get() < min || integer->get() > max) {
      Refuse(node->source(),
             Quoted(key) + " must be from " + std::to_string(min) + " to " + std::to_string(max));
    }
    return integer->get();
  }

  [[nodiscard]] std::uint64_t Bytes(std::string_view key) const {
    static_cast<void>(Required(key));
    return static_cast<std::uint64_t>(*OptionalInteger(key, 0, kMaxBytes));
  }

  [[nodiscard]] bool Boolean(std::string_view key) const {
    const toml::node& node = Required(key);
    const auto* boolean = node.as_boolean();
    if (boolean == nullptr) {
      Refuse(node.source(), Quoted(key) + " must be true or false");
    }
    return boolean->get();
  }

  [[nodiscard]] std::string Text(std::string_view key) const {
    const toml::node& node = Required(key);
    const auto* text = node.as_string();
    if (text == nullptr) {
      Refuse(node.source(), Quoted(key) + " must be a string");
    }
    if (text->get().size() > kMaxTextLength) {
      Refuse(node.source(),
             Quoted(key) + " must not exceed " + std::to_string(kMaxTextLength) + " bytes");
    }
    return text->get();
  }

  [[nodiscard]] std::vector<const toml::table*> Tables(std::string_view key) const {
    const toml::node* node = table_.get(key);
    if (node == nullptr) {
      return {};
    }
    const auto* array = node->as_array();
    if (array == nullptr) {
      Refuse(node->source(),
             Quoted(key) + " must be a list of tables: [[" + std::string(key) + "]]");
    }
    std::vector<const toml::table*> tables;
    for (const toml::node& element : *array) {
      if (!element.is_table()) {
        Refuse(element.source(), "each " + Quoted(key) + " must be a table");
      }
      tables.push_back(element.as_table());
    }
    return tables;
  }

  [[nodiscard]] const toml::node& Required(std::string_view key) const {
    const toml::node* node = table_.get(key);
    if (node == nullptr) {
      Refuse(table_.source(), "key " + Quoted(key) + " is missing");
    }
    return *node;
  }

 private:
  const toml::table& table_;
};

std::optional<int> ToInt(std::optional<std::int64_t> number) {
  return number ? std::optional(static_cast<int>(*number)) : std::nullopt;
}

void AddDevices(const toml::table& table, std::vector<Device>& devices) {
  const TableReader reader(table, {"count", "name", "arch", "integrated", "total_memory",
                                   "free_memory", "properties_memory"});
  Device device;
  device.name = reader.Text("name");
  device.arch = reader.Text("arch");
  device.integrated = reader.Boolean("integrated") ? 1 : 0;
  device.total_memory = reader.Bytes("total_memory");
  device.free_memory = reader.Bytes("free_memory");
  const auto properties_memory = reader.OptionalInteger("properties_memory", 0, kMaxBytes);
  device.properties_memory =
      properties_memory ? static_cast<std::uint64_t>(*properties_memory) : device.total_memory;
  const std::int64_t count = reader.OptionalInteger("count", 1, kMaxDevices).value_or(1);
  devices.insert(devices.end(), static_cast<std::size_t>(count), device);
}

Fault FaultFrom(const toml::table& table, std::int64_t device_count) {
  const TableReader reader(table, {"operation", "device", "call", "status"});
  Fault fault;
  fault.operation = reader.Text("operation");
  if (!ReturnsStatus(fault.operation)) {
    Refuse(reader.Required("operation").source(),
           "there is no operation " + Quoted(fault.operation) + " that could fail");
  }
  fault.device = ToInt(reader.OptionalInteger("device", 0, kMaxInt));
  if (fault.device && *fault.device >= device_count) {
    Refuse(reader.Required("device").source(),
           "there is no device " + std::to_string(*fault.device));
  }
  fault.call = ToInt(reader.OptionalInteger("call", 1, kMaxInt));
  const std::string name = reader.Text("status");
  const auto status = StatusNamed(name);
  if (!status || *status == hipSuccess) {
    Refuse(reader.Required("status").source(), "there is no failure " + Quoted(name));
  }
  fault.status = *status;
  return fault;
}

Machine MachineFrom(const toml::table& table) {
  const TableReader reader(table, {"device", "claimed_device_count", "fault"});
  Machine machine;
  // A machine without devices says so, `device = []`: a file that is empty by accident is refused.
  static_cast<void>(reader.Required("device"));
  for (const toml::table* device : reader.Tables("device")) {
    AddDevices(*device, machine.devices);
  }
  machine.claimed_device_count =
      ToInt(reader.OptionalInteger("claimed_device_count", -kMaxInt - 1, kMaxInt));
  const auto device_count = static_cast<std::int64_t>(machine.devices.size());
  const std::int64_t known_count =
      std::max<std::int64_t>(device_count, machine.claimed_device_count.value_or(0));
  for (const toml::table* fault : reader.Tables("fault")) {
    machine.faults.push_back(FaultFrom(*fault, known_count));
  }
  return machine;
}

// toml++ is not given the name of the file: it copies that in a function that is noexcept, and
// would end the program if memory is short.
Machine ParseTables(std::string_view text) {
  try {
    return MachineFrom(toml::parse(text));
  } catch (const toml::parse_error& error) {
    Refuse(error.source(), std::string(error.description()));
  }
}

}  // namespace

MachineFileError::MachineFileError(const std::string& text)
    : std::runtime_error(WithoutControlCharacters(text)) {}

Machine ReadMachineFile(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) {
    throw MachineFileError(path + ": cannot be read");
  }
  if ((status.st_mode & S_IFMT) != S_IFREG) {
    throw MachineFileError(path + ": is no regular file");
  }
  std::ifstream file(path, std::ios::binary);
  std::string text(kMaxFileSize + 1, '\0');
  file.read(text.data(), static_cast<std::streamsize>(text.size()));
  if (!file.is_open() || file.bad()) {
    throw MachineFileError(path + ": cannot be read");
  }
  text.resize(static_cast<std::size_t>(file.gcount()));
  if (text.size() > kMaxFileSize) {
    throw MachineFileError(path + ": is larger than 1 MiB");
  }
  return ParseMachine(text, path);
}

Machine ParseMachine(std::string_view text, const std::string& path) {
  if (const auto problem = FindTextProblem(text)) {
    throw MachineFileError(path + ":" + std::to_string(problem->line) + ":" +
                           std::to_string(problem->column) + ": " + problem->message);
  }
  try {
    return ParseTables(text);
  } catch (const Refusal& refusal) {
    throw MachineFileError(path + ":" + refusal.what());
  }
}

}  // namespace kestrel::simulator
