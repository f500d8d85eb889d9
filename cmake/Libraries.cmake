# Third-party libraries, all as static archives, one imported target each. Only the folder that wraps a library links it,
# and no public header of the project includes one. Installed, too: programs that link the libraries need the archives.

# zelvo_import(NAME HEADER ARCHIVE...): the target zelvo_NAME.
function(zelvo_import NAME HEADER)
  find_path(ZELVO_${NAME}_INCLUDE ${HEADER} REQUIRED)
  add_library(zelvo_${NAME} INTERFACE IMPORTED GLOBAL)
  target_include_directories(zelvo_${NAME} SYSTEM INTERFACE ${ZELVO_${NAME}_INCLUDE})
  foreach(archive IN LISTS ARGN)
    find_library(ZELVO_${archive}_ARCHIVE NAMES lib${archive}.a ${archive} REQUIRED)
    target_link_libraries(zelvo_${NAME} INTERFACE ${ZELVO_${archive}_ARCHIVE})
  endforeach()
endfunction()

find_package(Threads REQUIRED)
zelvo_import(deflate libdeflate.h deflate)
zelvo_import(icu unicode/uchar.h icuuc)
zelvo_import(nettle nettle/sha2.h nettle)
zelvo_import(boost_json boost/json.hpp boost_json)
zelvo_import(boost_url boost/url.hpp boost_url)
# ICU's data archive would add 30 MiB to every executable: see Text/UnicodeDataStub.cpp.
target_link_libraries(zelvo_icu INTERFACE Zelvo::UnicodeDataStub Threads::Threads)
target_link_libraries(zelvo_boost_json INTERFACE Threads::Threads)
