# zelvo_library(NAME SOURCES file... [USES target...] [WRAPS target...])
#   The library target of one layer (one folder). USES: the lower layers whose headers its files include;
#   script/check-includes allows no others. WRAPS: third-party libraries that only its sources include.
function(zelvo_library NAME)
  cmake_parse_arguments(ARG "" "" "SOURCES;USES;WRAPS" ${ARGN})
  add_library(${NAME} STATIC ${ARG_SOURCES})
  target_compile_features(${NAME} PUBLIC cxx_std_20)
  target_include_directories(${NAME} PUBLIC ${PROJECT_SOURCE_DIR})
  target_link_libraries(${NAME} PUBLIC ${ARG_USES} PRIVATE zelvo_flags ${ARG_WRAPS})
endfunction()

# zelvo_executable(NAME SOURCES file... [USES target...])
function(zelvo_executable NAME)
  cmake_parse_arguments(ARG "" "" "SOURCES;USES" ${ARGN})
  add_executable(${NAME} ${ARG_SOURCES})
  target_include_directories(${NAME} PRIVATE ${PROJECT_SOURCE_DIR})
  target_link_libraries(${NAME} PRIVATE ${ARG_USES} zelvo_flags)
endfunction()
