#pragma once

#include "hip_binding/runtime_library.h"

namespace kestrel::hip_binding {

// Converts to UTF-8. Leaves an empty text if it does not fit, and returns whether it does.
bool SetUtf8(const wchar_t* wide, char* text, std::size_t size) noexcept;

// Describes an error of Windows by its text, or by its number if `text` is null or does not fit.
void SetReason(unsigned long error, const wchar_t* text, ReasonText& reason) noexcept;

}  // namespace kestrel::hip_binding
