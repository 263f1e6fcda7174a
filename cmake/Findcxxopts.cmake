# Finds cxxopts, as kestrelcore_find_headers() says.
include(HostHeaders)
kestrelcore_find_headers(cxxopts cxxopts.hpp cxxopts.hpp CXXOPTS__VERSION_MAJOR)
