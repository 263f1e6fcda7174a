# Masks what depends on the machine in the output of kestrel.

string(REGEX REPLACE "((physical|available|committable) +)[0-9.]+ [KMGTP]?i?B" "\\1(real)" actual
                     "${actual}")
string(REGEX REPLACE "((physical|available|committable)_bytes\"?:? )[0-9]+" "\\1(real)" actual
                     "${actual}")
string(REGEX REPLACE "(physical-mib=)[0-9]+" "\\1(real)" actual "${actual}")
string(REGEX REPLACE "(limited by +)[^\n]*[^\n)]" "\\1(real)" actual "${actual}")
string(REGEX REPLACE "(\"?limit(_group)?\"?(: |=))(\"[^\"\n]*\"|null)" "\\1(real)" actual "${actual}")
string(REGEX REPLACE "[0-9.]+ [KMGTP]?i?B (available|committable)" "(real) \\1" actual "${actual}")
string(REGEX REPLACE "[0-9.]+ [KMGTP]?i?B (too much .\\(real)" "(real) \\1" actual "${actual}")
string(REGEX REPLACE "(fits: 1 B leaves )[0-9.]+ [KMGTP]?i?B" "\\1(real)" actual "${actual}")
string(REGEX REPLACE "(\"?version\"?(: |=)\")[0-9.]+" "\\1(real)" actual "${actual}")
string(REGEX REPLACE "(Recorded by kestrel )[0-9.]+[0-9]" "\\1(real)" actual "${actual}")
string(REGEX REPLACE "(RAM )[0-9.]+ [KMGTP]?i?B" "\\1(real)" actual "${actual}")
string(REGEX REPLACE "(\"time_ms\":|\"memory_available_bytes\":)[0-9]+" "\\1(real)" actual "${actual}")
# The name of the program has a suffix on Windows.
string(REPLACE "kestrel.exe" "kestrel" actual "${actual}")
