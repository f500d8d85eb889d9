# What `cmake --install` puts where, and the packages: `zelvo` (the programs) and `libzelvo-dev` (libraries and headers).

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

# The programs. The tool finds the other two in ../libexec/zelvo.
install(TARGETS zelvo RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT zelvo)
install(TARGETS zelvo_document_worker zelvo_document_cleaner
  RUNTIME DESTINATION ${CMAKE_INSTALL_LIBEXECDIR}/zelvo COMPONENT zelvo)

install(FILES README.md CHANGELOG.md CONTRIBUTING.md SECURITY.md DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT zelvo)
install(DIRECTORY docs examples DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT zelvo)
foreach(host python node)
  install(FILES hosts/${host}/README.md DESTINATION ${CMAKE_INSTALL_DOCDIR}/hosts/${host} COMPONENT zelvo)
endforeach()
install(DIRECTORY schemas/ DESTINATION ${CMAKE_INSTALL_DATADIR}/zelvo/schemas COMPONENT zelvo FILES_MATCHING PATTERN "*.json")

# systemd units with the prefix of the installation, which cpack and `cmake --install --prefix` choose after the configuration.
if(NOT APPLE)
  install(CODE "
    cmake_path(ABSOLUTE_PATH CMAKE_INSTALL_PREFIX NORMALIZE OUTPUT_VARIABLE LIBEXEC)
    cmake_path(APPEND LIBEXEC \"${CMAKE_INSTALL_LIBEXECDIR}\")
    foreach(PROGRAM worker cleaner)
      foreach(kind .socket @.service)
        set(unit \"${CMAKE_CURRENT_BINARY_DIR}/systemd/zelvo-\${PROGRAM}\${kind}\")
        configure_file(\"${PROJECT_SOURCE_DIR}/deploy/systemd/zelvo-program\${kind}.in\" \"\${unit}\" @ONLY)
        file(INSTALL \"\${unit}\" DESTINATION \"\${CMAKE_INSTALL_PREFIX}/lib/systemd/system\")
      endforeach()
    endforeach()" COMPONENT zelvo)
  install(FILES deploy/systemd/sysusers.conf DESTINATION lib/sysusers.d RENAME zelvo.conf COMPONENT zelvo)
endif()

# Batches on several machines.
install(PROGRAMS deploy/run-shard deploy/merge-shards DESTINATION ${CMAKE_INSTALL_DATADIR}/zelvo/deploy COMPONENT zelvo)
install(DIRECTORY deploy/parallel deploy/slurm deploy/dask DESTINATION ${CMAKE_INSTALL_DATADIR}/zelvo/deploy
  COMPONENT zelvo USE_SOURCE_PERMISSIONS)

# zelvo_print(FILE DESTINATION ARGUMENT...): installs what the tool prints, or a program behind it.
function(zelvo_print FILE DESTINATION)
  set(folder ${CMAKE_CURRENT_BINARY_DIR}/printed)
  add_custom_command(OUTPUT ${folder}/${FILE}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${folder}
    COMMAND zelvo ${ARGN} > ${folder}/${FILE}
    DEPENDS zelvo)
  set_property(GLOBAL APPEND PROPERTY ZELVO_PRINTED ${folder}/${FILE})
  install(FILES ${folder}/${FILE} DESTINATION ${DESTINATION} COMPONENT zelvo)
endfunction()

# Completions, and the man page if there is scdoc to format it. A tool for another system cannot print them.
if(NOT CMAKE_CROSSCOMPILING)
  zelvo_print(zelvo ${CMAKE_INSTALL_DATADIR}/bash-completion/completions completion bash)
  zelvo_print(_zelvo ${CMAKE_INSTALL_DATADIR}/zsh/site-functions completion zsh)
  # Where Debian's zsh looks below /usr.
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/printed/_zelvo
    DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions COMPONENT zelvo)
  zelvo_print(zelvo.fish ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d completion fish)
  find_program(ZELVO_SCDOC scdoc)
  if(ZELVO_SCDOC)
    zelvo_print(zelvo.1 ${CMAKE_INSTALL_MANDIR}/man1 help --man-source | ${ZELVO_SCDOC})
  endif()
  get_property(printed GLOBAL PROPERTY ZELVO_PRINTED)
  add_custom_target(zelvo_printed ALL DEPENDS ${printed})
endif()

# The libraries: Host, Runtime, and all that they use, in the order in which a linker needs their archives.
function(zelvo_collect OUT)
  set(order ${${OUT}})
  foreach(target IN LISTS ARGN)
    list(REMOVE_ITEM order ${target})
    list(APPEND order ${target})
    get_target_property(uses ${target} ZELVO_USES)
    if(uses)
      zelvo_collect(order ${uses})
    endif()
  endforeach()
  set(${OUT} ${order} PARENT_SCOPE)
endfunction()
set(host_libraries)
zelvo_collect(host_libraries zelvo_DocumentWorkerHost)
set(runtime_libraries)
zelvo_collect(runtime_libraries zelvo_Cleaning zelvo_Engine zelvo_ResearchSlides zelvo_ResearchWorkbook)

set(libraries ${host_libraries} ${runtime_libraries} zelvo_UnicodeDataStub)
list(REMOVE_DUPLICATES libraries)
set_target_properties(zelvo_DocumentWorkerHost PROPERTIES EXPORT_NAME Host)
set_target_properties(zelvo_Runtime PROPERTIES EXPORT_NAME Runtime)
set_target_properties(zelvo_Research PROPERTIES EXPORT_NAME Research)
install(TARGETS ${libraries} zelvo_Runtime zelvo_Research EXPORT ZelvoTargets
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT dev)
install(DIRECTORY DocumentRuntime DocumentWorkerHost DocumentWorkerProtocol Sandbox System Text
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/zelvo COMPONENT dev FILES_MATCHING PATTERN "*.hpp")

# find_package(Zelvo).
set(package ${CMAKE_INSTALL_LIBDIR}/cmake/Zelvo)
install(EXPORT ZelvoTargets NAMESPACE Zelvo:: DESTINATION ${package} COMPONENT dev)
configure_package_config_file(cmake/ZelvoConfig.cmake.in ZelvoConfig.cmake INSTALL_DESTINATION ${package})
write_basic_package_version_file(ZelvoConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/ZelvoConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/ZelvoConfigVersion.cmake
  cmake/Libraries.cmake DESTINATION ${package} COMPONENT dev)

# pkg-config. What wraps a third-party archive names it; ICU's data stub must follow ICU.
function(zelvo_pkg_config NAME DESCRIPTION)
  set(flags)
  set(archives)
  foreach(target IN LISTS ARGN)
    string(APPEND flags " -l${target}")
    get_target_property(wraps ${target} ZELVO_WRAPS)
    if(wraps)
      list(APPEND archives ${wraps})
    endif()
  endforeach()
  list(REMOVE_DUPLICATES archives)
  foreach(archive IN LISTS archives)
    string(REPLACE zelvo_ "" name ${archive})
    string(REGEX REPLACE "^icu$" "icuuc -lzelvo_UnicodeDataStub" name ${name})
    string(APPEND flags " -l${name}")
  endforeach()
  # Relative to the file, so that a folder of installed files can be moved.
  file(RELATIVE_PATH prefix /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
  set(file ${CMAKE_CURRENT_BINARY_DIR}/${NAME}.pc)
  file(CONFIGURE OUTPUT ${file} @ONLY CONTENT "prefix=\${pcfiledir}/@prefix@
libdir=\${prefix}/@CMAKE_INSTALL_LIBDIR@
includedir=\${prefix}/@CMAKE_INSTALL_INCLUDEDIR@/zelvo

Name: @NAME@
Description: @DESCRIPTION@
Version: @PROJECT_VERSION@
Cflags: -I\${includedir} -std=c++20
Libs: -L\${libdir}@flags@ -pthread
")
  install(FILES ${file} DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT dev)
endfunction()
zelvo_pkg_config(zelvo-host "Starts confined document workers" ${host_libraries})
zelvo_pkg_config(zelvo-runtime "Reads and writes office documents; research workbooks and presentations"
  ${runtime_libraries})

# The hosts in other languages. `npm install` takes the folder of Node's.
install(DIRECTORY hosts/python/zelvo DESTINATION lib/python3/dist-packages COMPONENT zelvo
  FILES_MATCHING PATTERN "*.py" PATTERN py.typed)
install(FILES hosts/node/package.json hosts/node/zelvo.js hosts/node/zelvo.d.ts hosts/node/README.md
  DESTINATION ${CMAKE_INSTALL_DATADIR}/nodejs/zelvo COMPONENT zelvo)

# Debian packages: cpack -G DEB.
set(CPACK_PACKAGE_NAME zelvo)
set(CPACK_PACKAGE_CONTACT "The maintainers of zelvo <zelvo@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Reads and writes office documents in confined processes")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_COMPONENTS_ALL zelvo dev)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_ZELVO_PACKAGE_NAME zelvo)
set(CPACK_DEBIAN_ZELVO_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_ZELVO_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/deploy/systemd/postinst)
set(CPACK_DEBIAN_ZELVO_PACKAGE_SUGGESTS "nodejs (>= 18), parallel, python3 (>= 3.9), systemd (>= 252)")
set(CPACK_DEBIAN_DEV_PACKAGE_NAME libzelvo-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS
  "libboost-json1.81-dev, libboost-url1.81-dev, libdeflate-dev, libicu-dev, nettle-dev")
# A host starts the programs of its own release.
set(CPACK_DEBIAN_DEV_PACKAGE_RECOMMENDS "zelvo (= ${PROJECT_VERSION})")
set(CPACK_STRIP_FILES ON)
include(CPack)
