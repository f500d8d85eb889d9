# The project's targets. All names have the prefix zelvo_, so that the project can be part of another one; the arguments of the
# functions below are without it.

# zelvo_prefixed(OUT NAME...): the targets of these names. A name with "::" is that of an imported target.
function(zelvo_prefixed OUT)
  list(TRANSFORM ARGN PREPEND zelvo_ REGEX "^[^:]+$")
  set(${OUT} ${ARGN} PARENT_SCOPE)
endfunction()

# Lets clang-tidy accept the includes of joined sources.
function(zelvo_lint_unity TARGET)
  set_target_properties(${TARGET} PROPERTIES
    UNITY_BUILD_CODE_BEFORE_INCLUDE "// NOLINTNEXTLINE(bugprone-suspicious-include)")
endfunction()

# zelvo_library(NAME SOURCES file... [USES target...] [WRAPS target...])
#   The library target of one layer (one folder). USES: the lower layers whose headers its files include;
#   script/check-includes allows no others. WRAPS: third-party libraries that only its sources include.
function(zelvo_library NAME)
  cmake_parse_arguments(ARG "" "" "SOURCES;USES;WRAPS" ${ARGN})
  zelvo_prefixed(uses ${ARG_USES})
  zelvo_prefixed(wraps ${ARG_WRAPS})
  set(target zelvo_${NAME})
  add_library(${target} STATIC ${ARG_SOURCES})
  add_library(Zelvo::${NAME} ALIAS ${target})
  set_target_properties(${target} PROPERTIES EXPORT_NAME ${NAME} ZELVO_USES "${uses}" ZELVO_WRAPS "${wraps}")
  target_compile_features(${target} PUBLIC cxx_std_20)
  target_include_directories(${target} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}> $<INSTALL_INTERFACE:include/zelvo>)
  target_link_libraries(${target} PUBLIC ${uses} PRIVATE $<BUILD_INTERFACE:zelvo_flags> ${wraps})
  zelvo_lint_unity(${target})
endfunction()

# zelvo_executable(NAME SOURCES file... [USES target...]): the one kind of target whose name has no prefix.
function(zelvo_executable NAME)
  cmake_parse_arguments(ARG "" "" "SOURCES;USES" ${ARGN})
  zelvo_prefixed(uses ${ARG_USES})
  add_executable(${NAME} ${ARG_SOURCES})
  target_include_directories(${NAME} PRIVATE ${PROJECT_SOURCE_DIR})
  target_link_libraries(${NAME} PRIVATE ${uses} zelvo_flags)
  zelvo_lint_unity(${NAME})
endfunction()
