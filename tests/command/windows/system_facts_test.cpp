#include "command/system_facts.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <cstddef>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

// What kestrel explain reads of Windows, over a registry that exists in this test alone.

namespace kestrel::tests {
namespace {

constexpr std::uint64_t kGiB = std::uint64_t{1} << 30U;

// A display adapter. Texts that are empty and a memory that is not set are missing values.
struct Adapter {
  std::wstring key;
  std::wstring device_id;
  std::wstring description;
  std::wstring version;
  std::optional<std::uint64_t> memory;
};

struct Registry {
  std::vector<Adapter> adapters;
  LSTATUS open_status = ERROR_SUCCESS;
  LSTATUS enumerate_status = ERROR_SUCCESS;  // if not this, what every enumeration returns
  int enumerations = 0;
  int open_keys = 0;
};

Registry& TheRegistry() {
  static Registry registry;
  return registry;
}

LSTATUS WINAPI OpenKey(HKEY /*root*/, const wchar_t* /*path*/, DWORD /*options*/, REGSAM /*access*/,
                       HKEY* key) {
  if (TheRegistry().open_status == ERROR_SUCCESS) {
    ++TheRegistry().open_keys;
    *key = HKEY_CURRENT_USER;  // any that is not null
  }
  return TheRegistry().open_status;
}

LSTATUS WINAPI CloseKey(HKEY /*key*/) {
  --TheRegistry().open_keys;
  return ERROR_SUCCESS;
}

// Ends after a thousand calls, so that a loop without an end is a test that fails.
LSTATUS WINAPI EnumerateKey(HKEY /*key*/, DWORD index, wchar_t* name, DWORD* length,
                            DWORD* /*reserved*/, wchar_t* /*class_name*/, DWORD* /*class_length*/,
                            FILETIME* /*time*/) {
  Registry& registry = TheRegistry();
  if (++registry.enumerations > 1000) {
    return ERROR_NO_MORE_ITEMS;
  }
  if (registry.enumerate_status != ERROR_SUCCESS) {
    return registry.enumerate_status;
  }
  if (index >= registry.adapters.size()) {
    return ERROR_NO_MORE_ITEMS;
  }
  const std::wstring& key = registry.adapters[index].key;
  EXPECT_GT(*length, key.size());
  key.copy(name, key.size());
  name[key.size()] = L'\0';
  *length = static_cast<DWORD>(key.size());
  return ERROR_SUCCESS;
}

LSTATUS Write(const void* value, std::size_t size, void* output, DWORD* output_size) {
  if (size > *output_size) {
    return ERROR_MORE_DATA;
  }
  std::memcpy(output, value, size);
  *output_size = static_cast<DWORD>(size);
  return ERROR_SUCCESS;
}

LSTATUS WINAPI GetValue(HKEY /*key*/, const wchar_t* subkey, const wchar_t* value, DWORD flags,
                        DWORD* /*type*/, void* output, DWORD* output_size) {
  for (const Adapter& adapter : TheRegistry().adapters) {
    if (adapter.key != subkey) {
      continue;
    }
    const std::wstring name = value;
    if (name == L"HardwareInformation.qwMemorySize") {
      EXPECT_EQ(flags, DWORD{RRF_RT_REG_QWORD});
      return adapter.memory ? Write(&*adapter.memory, sizeof(*adapter.memory), output, output_size)
                            : ERROR_FILE_NOT_FOUND;
    }
    EXPECT_EQ(flags, DWORD{RRF_RT_REG_SZ});
    const std::wstring& text = name == L"MatchingDeviceId" ? adapter.device_id
                               : name == L"DriverDesc"     ? adapter.description
                                                           : adapter.version;
    return text.empty()
               ? ERROR_FILE_NOT_FOUND
               : Write(text.c_str(), (text.size() + 1) * sizeof(wchar_t), output, output_size);
  }
  return ERROR_FILE_NOT_FOUND;
}

class WindowsSystemFactsTest : public testing::Test {
 protected:
  WindowsSystemFactsTest() { TheRegistry() = {}; }
  ~WindowsSystemFactsTest() override { EXPECT_EQ(TheRegistry().open_keys, 0); }
};

TEST_F(WindowsSystemFactsTest, AdaptersOfAmdAreCards) {
  TheRegistry().adapters = {
      {L"0000", L"PCI\\VEN_1002&DEV_7480", L"AMD Radeon RX 7600", L"31.0.24002.92", 8 * kGiB},
      {L"0001", L"pci\\ven_8086&dev_a780", L"Another maker's", L"31.0.101.4502", kGiB},
      {L"0002", L"pci\\ven_1002&dev_15bf", L"AMD Radeon\u2122 780M", L"", std::nullopt},
      {L"Properties", L"", L"", L"", std::nullopt}};
  const auto cards = command::ReadCards("");
  ASSERT_EQ(cards.size(), 2U);
  EXPECT_EQ(cards[0].name, "AMD Radeon RX 7600");
  EXPECT_EQ(cards[0].slot, "");
  EXPECT_EQ(cards[0].driver, "31.0.24002.92");
  EXPECT_EQ(cards[0].vram_total, 8 * kGiB);
  EXPECT_EQ(cards[0].vram_used, std::nullopt);
  EXPECT_EQ(cards[0].vram_source, "HardwareInformation.qwMemorySize");
  EXPECT_EQ(cards[1].name, "AMD Radeon\xE2\x84\xA2 780M");
  EXPECT_EQ(cards[1].driver, "");
  EXPECT_EQ(cards[1].vram_total, std::nullopt);
}

TEST_F(WindowsSystemFactsTest, TextThatIsTooLongIsNotReported) {
  TheRegistry().adapters = {{L"0000", L"pci\\ven_1002", std::wstring(256, L'x'), L"1", kGiB}};
  const auto cards = command::ReadCards("");
  ASSERT_EQ(cards.size(), 1U);
  EXPECT_EQ(cards[0].name, "");
}

TEST_F(WindowsSystemFactsTest, RegistryThatCannotBeOpenedHasNoCards) {
  TheRegistry().open_status = ERROR_ACCESS_DENIED;
  EXPECT_TRUE(command::ReadCards("").empty());
  EXPECT_EQ(TheRegistry().enumerations, 0);
}

TEST_F(WindowsSystemFactsTest, EnumerationThatFailsEnds) {
  TheRegistry().enumerate_status = ERROR_ACCESS_DENIED;
  EXPECT_TRUE(command::ReadCards("").empty());
  EXPECT_EQ(TheRegistry().enumerations, 1);
}

TEST_F(WindowsSystemFactsTest, GpusAreNotReachedThroughDeviceFiles) {
  EXPECT_FALSE(command::HasDeviceFiles());
  EXPECT_TRUE(command::ReadDeviceFiles("").empty());
}

}  // namespace
}  // namespace kestrel::tests

// A call of an imported function goes through a pointer of this name. The linker takes it from the
// import library only if the program does not define it.
// NOLINTBEGIN
extern "C" {
extern const decltype(&RegOpenKeyExW) __imp_RegOpenKeyExW = &kestrel::tests::OpenKey;
extern const decltype(&RegCloseKey) __imp_RegCloseKey = &kestrel::tests::CloseKey;
extern const decltype(&RegEnumKeyExW) __imp_RegEnumKeyExW = &kestrel::tests::EnumerateKey;
extern const decltype(&RegGetValueW) __imp_RegGetValueW = &kestrel::tests::GetValue;
}
// NOLINTEND
