# Turns tests/exports.tsv (one row per export: name, family, type, tier,
# shape, frame, guard, warnings) into ORV_EXPORT_ROW(...) lines.
file(STRINGS "${TSV}" rows)
set(out "// Generated from tests/exports.tsv; do not edit.\n")
foreach(row IN LISTS rows)
  if(row MATCHES "^name\t")
    continue()
  endif()
  string(REPLACE "`" "" row "${row}")
  string(REPLACE "\t" "\", \"" row "${row}")
  string(APPEND out "ORV_EXPORT_ROW(\"${row}\")\n")
endforeach()
file(WRITE "${OUT}.tmp" "${out}")
file(COPY_FILE "${OUT}.tmp" "${OUT}" ONLY_IF_DIFFERENT)
