#pragma once

// HIP's header defines this compiler attribute, which toml++ uses, as a macro.
#pragma push_macro("__noinline__")
#undef __noinline__
#include <toml++/toml.h>
#pragma pop_macro("__noinline__")
