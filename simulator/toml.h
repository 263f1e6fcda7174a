#pragma once

// HIP's header turns this attribute, of which toml++ asks the compiler, into a macro.
#pragma push_macro("__noinline__")
#undef __noinline__
#include <toml++/toml.h>
#pragma pop_macro("__noinline__")
