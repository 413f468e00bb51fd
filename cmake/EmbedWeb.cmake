# The page (web/) compiled into the program as byte arrays, so the program is one file and
# serves its interface with no other files and no network.
#
# nocturnel_embed_web(TARGET WEB_DIR): adds a generated web_assets_data.cpp to TARGET holding
# every web/**/*.{html,css,js,mjs,json,svg,png,webmanifest} as a WebAsset (shell/web_assets.h).
# A missing or empty web/ gives an empty table. Run with -P, this file is the generator itself.

set(NOCTURNEL_WEB_PATTERNS html css js mjs json svg png webmanifest)

function(nocturnel_web_files WEB_DIR OUT_VAR)
  set(globs)
  foreach(ext ${NOCTURNEL_WEB_PATTERNS})
    list(APPEND globs ${WEB_DIR}/*.${ext})
  endforeach()
  if(EXISTS ${WEB_DIR})
    file(GLOB_RECURSE files ${ARGN} ${globs})
    # The page only: not the browser tests nor their npm packages.
    list(FILTER files EXCLUDE REGEX "/web/(node_modules|tests)/|/web/package(-lock)?\\.json$")
    list(SORT files)
  else()
    set(files)
  endif()
  set(${OUT_VAR} ${files} PARENT_SCOPE)
endfunction()

if(CMAKE_SCRIPT_MODE_FILE)
  # Generator: cmake -DWEB_DIR=... -DOUTPUT=... -P EmbedWeb.cmake
  nocturnel_web_files(${WEB_DIR} files)
  set(body "// Generated from web/ by cmake/EmbedWeb.cmake: do not edit.\n#include \"shell/web_assets.h\"\n\nnamespace nocturnel {\nnamespace {\n")
  set(table "")
  set(index 0)
  foreach(file ${files})
    file(RELATIVE_PATH rel ${WEB_DIR} ${file})
    file(READ ${file} hex HEX)
    string(LENGTH "${hex}" hexLength)
    math(EXPR size "${hexLength} / 2")
    if(size GREATER 0)
      string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${hex}")
    else()
      set(bytes "0")
    endif()
    string(APPEND body "const unsigned char kAsset${index}[] = {${bytes}};\n")
    string(APPEND table "    {\"${rel}\", kAsset${index}, ${size}},\n")
    math(EXPR index "${index} + 1")
  endforeach()
  string(APPEND body "const WebAsset kAssets[] = {\n${table}    {\"\", nullptr, 0},\n};\n}  // namespace\n\n")
  string(APPEND body "std::span<const WebAsset> webAssets() { return {kAssets, ${index}}; }\n\n}  // namespace nocturnel\n")
  file(WRITE ${OUTPUT}.tmp "${body}")
  file(COPY_FILE ${OUTPUT}.tmp ${OUTPUT} ONLY_IF_DIFFERENT)
  file(REMOVE ${OUTPUT}.tmp)
  return()
endif()

function(nocturnel_embed_web TARGET WEB_DIR)
  nocturnel_web_files(${WEB_DIR} files CONFIGURE_DEPENDS)
  set(output ${CMAKE_CURRENT_BINARY_DIR}/web_assets_data.cpp)
  add_custom_command(
    OUTPUT ${output}
    COMMAND ${CMAKE_COMMAND} -DWEB_DIR=${WEB_DIR} -DOUTPUT=${output} -P ${PROJECT_SOURCE_DIR}/cmake/EmbedWeb.cmake
    DEPENDS ${files} ${PROJECT_SOURCE_DIR}/cmake/EmbedWeb.cmake
    COMMENT "Embedding the web interface"
    VERBATIM)
  target_sources(${TARGET} PRIVATE ${output})
endfunction()
