# Gathers the ORV_ACCURACY statements of the library sources into one file
# that the tests, the benchmarks and the report include with their own
# meaning of the macro.  A statement may span lines; it ends at its ';'.
set(records "// Generated from the ORV_ACCURACY lines of src/; do not edit.\n")
foreach(source IN LISTS SOURCES)
  file(READ "${source}" text)
  string(REGEX MATCHALL "\nORV_ACCURACY\\([^;]*\\)" found "${text}")
  foreach(statement IN LISTS found)
    string(REGEX REPLACE "[\r\n]+[ \t]*" " " statement "${statement}")
    string(STRIP "${statement}" statement)
    string(APPEND records "${statement}\n")
  endforeach()
endforeach()
if(EXISTS "${OUT}")
  file(READ "${OUT}" previous)
endif()
if(NOT "${previous}" STREQUAL "${records}")
  file(WRITE "${OUT}" "${records}")
endif()
