# What is installed and packaged: the library with its public headers, a CMake package, a file for
# pkg-config, and the host program. Included from the top, last.

include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

# A header is public unless it lies in a folder named "internal".
file(GLOB_RECURSE browsersweep_public_headers CONFIGURE_DEPENDS
     RELATIVE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/browsersweep/*.h
     ${PROJECT_SOURCE_DIR}/browsersweep/*.modulemap ${PROJECT_SOURCE_DIR}/browsersweep/*.apinotes)
list(FILTER browsersweep_public_headers EXCLUDE REGEX "/internal/")
foreach(header IN LISTS browsersweep_public_headers)
  get_filename_component(folder ${header} DIRECTORY)
  install(FILES ${PROJECT_SOURCE_DIR}/${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${folder}
          COMPONENT development)
endforeach()

target_include_directories(browsersweep PUBLIC $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
# The archive and the link without a version are for who builds with the library.
install(TARGETS browsersweep EXPORT browsersweepTargets
        LIBRARY COMPONENT library NAMELINK_COMPONENT development
        ARCHIVE COMPONENT development)
if(TARGET browsersweep_program)
  file(RELATIVE_PATH browsersweep_library_folder "/${CMAKE_INSTALL_BINDIR}" "/${CMAKE_INSTALL_LIBDIR}")
  if(APPLE)
    set(browsersweep_rpath "@loader_path/${browsersweep_library_folder}")
  else()
    set(browsersweep_rpath "$ORIGIN/${browsersweep_library_folder}")
  endif()
  set_target_properties(browsersweep_program PROPERTIES INSTALL_RPATH "${browsersweep_rpath}")
  install(TARGETS browsersweep_program RUNTIME COMPONENT program)
endif()

set(browsersweep_package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/browsersweep)
install(EXPORT browsersweepTargets NAMESPACE browsersweep:: DESTINATION ${browsersweep_package_folder}
        COMPONENT development)

# Who links the archive links what it needs; a shared library has found that already.
get_target_property(browsersweep_kind browsersweep TYPE)
set(browsersweep_dependencies "")
set(browsersweep_requires "")
set(browsersweep_libraries "")
set(browsersweep_pkg_config_flags "")
set(browsersweep_library_path "")
if(browsersweep_kind STREQUAL "STATIC_LIBRARY")
  set(browsersweep_dependencies "find_dependency(SQLite3)\nfind_dependency(EXPAT)\n")
  if(BROWSERSWEEP_BACKEND STREQUAL "portable")
    string(APPEND browsersweep_dependencies "find_dependency(ICU COMPONENTS uc i18n)\n")
  endif()
  if(BROWSERSWEEP_SITES)
    string(APPEND browsersweep_dependencies
           "list(APPEND CMAKE_MODULE_PATH \"\${CMAKE_CURRENT_LIST_DIR}\")\n"
           "find_dependency(LibPSL)\nfind_dependency(LZ4)\n"
           "find_dependency(Threads)\nfind_dependency(leveldb CONFIG)\n"
           "list(POP_BACK CMAKE_MODULE_PATH)\n")
    install(FILES ${PROJECT_SOURCE_DIR}/cmake/FindLibPSL.cmake ${PROJECT_SOURCE_DIR}/cmake/FindLZ4.cmake
            DESTINATION ${browsersweep_package_folder} COMPONENT development)
  endif()
  set(browsersweep_pkg_config_flags " -DBROWSERSWEEP_STATIC_DEFINE")
  if(APPLE)
    set(browsersweep_libraries "-lsqlite3 -lexpat -lc++ -framework Foundation")
  else()
    set(browsersweep_requires "sqlite3, expat, icu-i18n, icu-uc")
    set(browsersweep_libraries "-lstdc++")
  endif()
  if(BROWSERSWEEP_SITES)
    string(PREPEND browsersweep_libraries "-lleveldb -llz4 -lpsl ")
  endif()
else()
  # Who links a shared library in a folder of its own must find it again when the program starts.
  set(browsersweep_library_path " -Wl,-rpath,\${libdir}")
endif()

configure_package_config_file(
  ${PROJECT_SOURCE_DIR}/cmake/browsersweepConfig.cmake.in
  ${PROJECT_BINARY_DIR}/generated/browsersweepConfig.cmake
  INSTALL_DESTINATION ${browsersweep_package_folder})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/generated/browsersweepConfigVersion.cmake
                                 COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/generated/browsersweepConfig.cmake
              ${PROJECT_BINARY_DIR}/generated/browsersweepConfigVersion.cmake
        DESTINATION ${browsersweep_package_folder} COMPONENT development)

# The file says where things are by its own place, so that the folder can be moved.
file(RELATIVE_PATH browsersweep_prefix "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
string(REGEX REPLACE "/$" "" browsersweep_prefix "${browsersweep_prefix}")
configure_file(${PROJECT_SOURCE_DIR}/cmake/browsersweep.pc.in
               ${PROJECT_BINARY_DIR}/generated/browsersweep.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/generated/browsersweep.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

set(CPACK_PACKAGE_NAME browsersweep)
set(CPACK_PACKAGE_CONTACT "The authors of browsersweep <browsersweep@example.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_STRIP_FILES ON)
set(CPACK_GENERATOR TGZ)
if(NOT APPLE)
  set(CPACK_GENERATOR DEB)
endif()

# Debian's way: a package of the shared library, which programs need; one of what is needed to build with
# it; and one of the host program. An archive has no package of its own to run with.
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME libbrowsersweep${browsersweep_interface_version})
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libbrowsersweep-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME browsersweep)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SECTION utils)
set(CPACK_COMPONENT_LIBRARY_DESCRIPTION "The shared library")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "Headers and what is needed to build with the library")
set(CPACK_COMPONENT_PROGRAM_DESCRIPTION "The program for the command line")
set(CPACK_COMPONENTS_ALL development program)
if(browsersweep_kind STREQUAL "SHARED_LIBRARY")
  list(APPEND CPACK_COMPONENTS_ALL library)
  set(browsersweep_library_package
      "${CPACK_DEBIAN_LIBRARY_PACKAGE_NAME} (= ${PROJECT_VERSION})")
  set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${browsersweep_library_package}")
  set(CPACK_DEBIAN_PROGRAM_PACKAGE_DEPENDS "${browsersweep_library_package}")
  # The program finds the library that is packed beside it before that is installed.
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/browsersweep)
else()
  # For who links the archive; the program does without.
  set(browsersweep_needed "libsqlite3-dev, libexpat1-dev, libicu-dev")
  if(BROWSERSWEEP_SITES)
    string(APPEND browsersweep_needed ", libpsl-dev, liblz4-dev, libleveldb-dev")
  endif()
  set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${browsersweep_needed}")
endif()
include(CPack)
