# Brings the help of kestrel into one layout. The words are kestrel's; the line breaks, blanks, headings and
# the mark of a default value are those of CLI11, and differ between its releases.

include("${CMAKE_CURRENT_LIST_DIR}/mask.cmake")
string(REGEX REPLACE "(^|\n)Usage: " "\\1" actual "${actual}")
string(REPLACE "SUBCOMMANDS:" "Subcommands:" actual "${actual}")
string(REPLACE "POSITIONALS:" "Positionals:" actual "${actual}")
string(REPLACE "OPTIONS:" "Options:" actual "${actual}")
string(REGEX REPLACE "(}|TIME|N)=([a-z0-9]+)" "\\1 [\\2]" actual "${actual}")
string(REGEX REPLACE "[ \n]+" " " actual "${actual}")
string(REGEX REPLACE " (--[a-z]|[A-Z][a-z]+:|---- )" "\n\\1" actual "${actual}")
string(REPLACE "-h,\n--help" "-h,--help" actual "${actual}")
string(STRIP "${actual}" actual)
string(APPEND actual "\n")
