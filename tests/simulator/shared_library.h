#pragma once

namespace kestrel::tests {

// Cast it to the type of the function that it is.
using Function = void (*)();

// Loads a library for the rest of the process. Returns null if it cannot be loaded.
void* LoadLibraryFile(const char* file);

// Returns null if the library exports no such function.
Function FindFunction(void* library, const char* name);

}  // namespace kestrel::tests
