# Warnings, hardening and the sanitizers, for every target of the project.

add_library(zelvo_flags INTERFACE)
add_library(zelvo_warnings INTERFACE)  # alone: for programs that run while the project is built
target_link_libraries(zelvo_flags INTERFACE zelvo_warnings)

target_compile_features(zelvo_warnings INTERFACE cxx_std_20)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

target_compile_options(zelvo_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wnon-virtual-dtor -Wold-style-cast -Wimplicit-fallthrough
  # Designated initializers leave the other fields at their defaults on purpose.
  -Wno-missing-field-initializers
)
target_compile_options(zelvo_flags INTERFACE
  -fstack-protector-strong
  # Row heights are sums of doubles: fused multiply-adds would make their bytes depend on the machine.
  -ffp-contract=off
)
# Not as a part of another project: its compiler may know warnings that ours do not.
if(PROJECT_IS_TOP_LEVEL)
  target_compile_options(zelvo_warnings INTERFACE -Werror)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
  # GCC 12 falsely reports an overlap at the assignment of a literal to a string in inlined code.
  target_compile_options(zelvo_warnings INTERFACE -Wno-restrict)
endif()
target_compile_definitions(zelvo_flags INTERFACE _GLIBCXX_ASSERTIONS)

# Fortified functions need optimisation; the debug preset keeps it debuggable with -Og.
set(CMAKE_CXX_FLAGS_DEBUG "-Og -g")
target_compile_options(zelvo_flags INTERFACE -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)

if(ZELVO_SANITIZE)
  target_compile_definitions(zelvo_flags INTERFACE ZELVO_SANITIZE=1)
  target_compile_options(zelvo_flags INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(zelvo_flags INTERFACE -fsanitize=address,undefined)
  if(CMAKE_CXX_COMPILER_ID STREQUAL Clang)
    # Coverage for libFuzzer, also in the tests' build: the fuzz targets share its libraries.
    target_compile_options(zelvo_flags INTERFACE -fsanitize=fuzzer-no-link)
  endif()
endif()

if(NOT APPLE)
  target_link_options(zelvo_flags INTERFACE -Wl,-z,relro,-z,now,-z,noexecstack)
  if(ZELVO_STATIC_PIE)
    target_link_options(zelvo_flags INTERFACE -static-pie -Wl,--gc-sections)
    target_compile_options(zelvo_flags INTERFACE -ffunction-sections -fdata-sections)
  else()
    target_link_options(zelvo_flags INTERFACE -pie)
  endif()
endif()
