#include "command/system_facts.h"

#include <windows.h>

#include <array>
#include <cwchar>

namespace kestrel::command {

namespace {

// The class of display adapters, in which each adapter that a driver was ever installed for has a
// numbered key.
constexpr const wchar_t* kDisplayAdapters =
    L"SYSTEM\\CurrentControlSet\\Control\\Class\\{4d36e968-e325-11ce-bfc1-08002be10318}";

constexpr const wchar_t* kVendorAmd = L"ven_1002";  // PCI vendor id

std::string ToUtf8(const wchar_t* text) {
  std::array<char, 1024> buffer{};
  const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, buffer.data(),
                                       static_cast<int>(buffer.size()), nullptr, nullptr);
  return size > 0 ? std::string(buffer.data()) : std::string();
}

std::wstring TextValue(HKEY key, const wchar_t* subkey, const wchar_t* name) {
  std::array<wchar_t, 256> buffer{};
  DWORD bytes = sizeof(buffer);
  return RegGetValueW(key, subkey, name, RRF_RT_REG_SZ, nullptr, buffer.data(), &bytes) ==
                 ERROR_SUCCESS
             ? std::wstring(buffer.data())
             : std::wstring();
}

std::optional<std::uint64_t> MemoryValue(HKEY key, const wchar_t* subkey) {
  std::uint64_t value = 0;
  DWORD bytes = sizeof(value);
  const LSTATUS status = RegGetValueW(key, subkey, L"HardwareInformation.qwMemorySize",
                                      RRF_RT_REG_QWORD, nullptr, &value, &bytes);
  return status == ERROR_SUCCESS ? std::optional(value) : std::nullopt;
}

bool IsFromAmd(std::wstring device_id) {
  for (wchar_t& letter : device_id) {
    letter = letter >= L'A' && letter <= L'Z' ? static_cast<wchar_t>(letter - L'A' + L'a') : letter;
  }
  return device_id.find(kVendorAmd) != std::wstring::npos;
}

}  // namespace

bool HasDeviceFiles() { return false; }

std::vector<DeviceFile> ReadDeviceFiles(const std::string& /*root*/) { return {}; }

std::vector<Card> ReadCards(const std::string& /*root*/) {
  std::vector<Card> cards;
  HKEY adapters = nullptr;
  if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, kDisplayAdapters, 0, KEY_READ, &adapters) !=
      ERROR_SUCCESS) {
    return cards;
  }
  std::array<wchar_t, 256> name{};
  DWORD length = static_cast<DWORD>(name.size());
  for (DWORD i = 0; RegEnumKeyExW(adapters, i, name.data(), &length, nullptr, nullptr, nullptr,
                                  nullptr) == ERROR_SUCCESS;
       ++i, length = static_cast<DWORD>(name.size())) {
    if (IsFromAmd(TextValue(adapters, name.data(), L"MatchingDeviceId"))) {
      Card card;
      card.name = ToUtf8(TextValue(adapters, name.data(), L"DriverDesc").c_str());
      card.driver = ToUtf8(TextValue(adapters, name.data(), L"DriverVersion").c_str());
      card.vram_total = MemoryValue(adapters, name.data());
      card.vram_source = "HardwareInformation.qwMemorySize";
      cards.push_back(card);
    }
  }
  RegCloseKey(adapters);
  return cards;
}

}  // namespace kestrel::command
