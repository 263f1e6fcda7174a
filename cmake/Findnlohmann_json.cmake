# Finds nlohmann-json, as kestrelcore_find_headers() says.
include(HostHeaders)
kestrelcore_find_headers(nlohmann_json nlohmann nlohmann/json.hpp)
