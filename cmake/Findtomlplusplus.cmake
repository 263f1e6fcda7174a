# Finds toml++, as kestrelcore_find_headers() says.
include(HostHeaders)
kestrelcore_find_headers(tomlplusplus toml++ toml++/toml.h)
