# SPDX-License-Identifier: MIT
# Run with cmake -P: writes the files that FOLDER/manifest.json lists to OUTPUT as C++, each as it is and
# compressed. The bytes are taken in by the assembler, as all compilers here have it.
cmake_policy(VERSION 3.25)

file(MAKE_DIRECTORY ${MADE})
set(entries "")
set(symbols "")
if(NOT WANTED STREQUAL "OFF" AND EXISTS ${FOLDER}/manifest.json)
  file(READ ${FOLDER}/manifest.json manifest)
  string(JSON count LENGTH "${manifest}")
  math(EXPR last "${count} - 1")
  foreach(i RANGE ${last})
    foreach(member IN ITEMS path file type immutable)
      string(JSON ${member} GET "${manifest}" ${i} ${member})
    endforeach()
    execute_process(COMMAND ${GZIP} -9nc ${FOLDER}/${file} OUTPUT_FILE ${MADE}/${i}.gz COMMAND_ERROR_IS_FATAL ANY)
    configure_file(${FOLDER}/${file} ${MADE}/${i} COPYONLY)
    file(SHA256 ${FOLDER}/${file} hash)
    string(SUBSTRING ${hash} 0 32 tag)
    if(immutable)
      set(immutable true)
    else()
      set(immutable false)
    endif()
    foreach(kind IN ITEMS plain packed)
      set(data ${MADE}/${i})
      if(kind STREQUAL "packed")
        set(data ${MADE}/${i}.gz)
      endif()
      string(APPEND symbols "EMBED(page_${i}_${kind}, \"${data}\")\n")
    endforeach()
    string(APPEND entries "      {\"${path}\", \"${type}\", \"\\\"${tag}\\\"\", ${immutable}, "
      "TEXT_OF(page_${i}_plain), TEXT_OF(page_${i}_packed)},\n")
  endforeach()
endif()

file(WRITE ${OUTPUT}.new "// Made from web/dist. Do not edit.
#include \"tavelor/web/pages.hpp\"

// NOLINTBEGIN
#define EMBED(name, file) \\
  __asm__(\".pushsection .rodata\\n.global tavelor_\" #name \"\\n.hidden tavelor_\" #name \"\\ntavelor_\" #name \\
          \":\\n.incbin \\\"\" file \"\\\"\\n.global tavelor_\" #name \"_end\\n.hidden tavelor_\" #name \\
          \"_end\\ntavelor_\" #name \"_end:\\n.byte 0\\n.popsection\\n\"); \\
  extern \"C\" __attribute__((visibility(\"hidden\"))) const char tavelor_##name[], tavelor_##name##_end[];
#define TEXT_OF(name) {tavelor_##name, static_cast<std::size_t>(tavelor_##name##_end - tavelor_##name)}
${symbols}
namespace tavelor::web {

const std::vector<Page>& pages() {
  static const std::vector<Page> kPages = {
${entries}  };
  return kPages;
}

}  // namespace tavelor::web
// NOLINTEND
")
file(COPY_FILE ${OUTPUT}.new ${OUTPUT})
