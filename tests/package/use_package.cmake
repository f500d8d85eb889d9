# Owns the install rules: installs to a folder, moves it, and builds and runs the C++ examples against it.

function(run)
  execute_process(COMMAND ${ARGV} RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "${ARGV}\nended with ${status}:\n${output}")
  endif()
endfunction()

set(examples ${SOURCE}/examples)
set(installed ${SCRATCH}/moved)
set(worker ${installed}/libexec/zelvo/zelvo_document_worker)
set(document_arguments ${worker} ${examples}/quarterly-sales.xlsx ${SCRATCH}/a.docx)
file(REMOVE_RECURSE ${SCRATCH})
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${SCRATCH}/installed)
file(RENAME ${SCRATCH}/installed ${installed})
run(${installed}/bin/zelvo inspect ${examples}/quarterly-sales.xlsx)

run(${CMAKE_COMMAND} -S ${examples}/cpp -B ${SCRATCH}/build -DCMAKE_PREFIX_PATH=${installed} -DCMAKE_CXX_COMPILER=${CXX})
run(${CMAKE_COMMAND} --build ${SCRATCH}/build)
run(${SCRATCH}/build/inspect_and_create ${document_arguments})
run(${SCRATCH}/build/research ${examples}/research-dataset.json ${SCRATCH}/a.xlsx
  ${examples}/research-presentation.json ${examples}/research-datasets.json ${SCRATCH}/a.pptx)

set(ENV{PKG_CONFIG_PATH} ${installed}/lib/pkgconfig)
run(sh -c "${CXX} ${examples}/cpp/inspect_and_create.cpp $(pkg-config --cflags --libs zelvo-host) -o ${SCRATCH}/host")
run(${SCRATCH}/host ${document_arguments})

# Beside targets of the same names, and without tests.
file(WRITE ${SCRATCH}/part/CMakeLists.txt "cmake_minimum_required(VERSION 3.25)\nproject(part LANGUAGES C CXX)\nadd_library(Text INTERFACE)\n"
  "add_subdirectory(${SOURCE} zelvo)\nadd_executable(host ${examples}/cpp/inspect_and_create.cpp)\ntarget_link_libraries(host Text Zelvo::Host)\n"
  "if(TARGET SystemTest)\nmessage(FATAL_ERROR tests)\nendif()\n")
run(${CMAKE_COMMAND} -S ${SCRATCH}/part -B ${SCRATCH}/part/build -DCMAKE_CXX_COMPILER=${CXX})
