# Finds CLI11, as kestrelcore_find_headers() says.
include(HostHeaders)
kestrelcore_find_headers(CLI11 CLI CLI/CLI.hpp)
