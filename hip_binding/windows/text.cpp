#include "hip_binding/windows/text.h"

#include <windows.h>

#include <cstdio>
#include <cstring>

namespace kestrel::hip_binding {

bool SetUtf8(const wchar_t* wide, char* text, std::size_t size) noexcept {
  const bool fits = WideCharToMultiByte(CP_UTF8, 0, wide, -1, text, static_cast<int>(size), nullptr,
                                        nullptr) != 0;
  if (!fits) {
    text[0] = '\0';
  }
  return fits;
}

void SetReason(unsigned long error, const wchar_t* text, ReasonText& reason) noexcept {
  if (text == nullptr || !SetUtf8(text, reason.data(), reason.size())) {
    std::snprintf(reason.data(), reason.size(), "Windows error %lu", error);
  }
  // FormatMessageW replaces the line break at the end of its text by a blank.
  for (std::size_t size = std::strlen(reason.data()); size > 0 && reason[size - 1] == ' ';) {
    reason[--size] = '\0';
  }
}

}  // namespace kestrel::hip_binding
