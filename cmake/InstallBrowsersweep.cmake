# What is installed and packaged: the library with its public headers, a CMake package, a file for
# pkg-config, and the host program. Included from the top, last.

include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

# A header is public unless it lies in a folder named "internal".
file(GLOB_RECURSE browsersweep_public_headers CONFIGURE_DEPENDS
     RELATIVE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/browsersweep/*.h
     ${PROJECT_SOURCE_DIR}/browsersweep/*.modulemap)
list(FILTER browsersweep_public_headers EXCLUDE REGEX "/internal/")
foreach(header IN LISTS browsersweep_public_headers)
  get_filename_component(folder ${header} DIRECTORY)
  install(FILES ${PROJECT_SOURCE_DIR}/${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${folder})
endforeach()

target_include_directories(browsersweep PUBLIC $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
install(TARGETS browsersweep EXPORT browsersweepTargets)
if(TARGET browsersweep_program)
  file(RELATIVE_PATH browsersweep_library_folder "/${CMAKE_INSTALL_BINDIR}" "/${CMAKE_INSTALL_LIBDIR}")
  if(APPLE)
    set(browsersweep_rpath "@loader_path/${browsersweep_library_folder}")
  else()
    set(browsersweep_rpath "$ORIGIN/${browsersweep_library_folder}")
  endif()
  set_target_properties(browsersweep_program PROPERTIES INSTALL_RPATH "${browsersweep_rpath}")
  install(TARGETS browsersweep_program)
endif()

set(browsersweep_package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/browsersweep)
install(EXPORT browsersweepTargets NAMESPACE browsersweep:: DESTINATION ${browsersweep_package_folder})

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
            DESTINATION ${browsersweep_package_folder})
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
        DESTINATION ${browsersweep_package_folder})

# The file says where things are by its own place, so that the folder can be moved.
file(RELATIVE_PATH browsersweep_prefix "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
string(REGEX REPLACE "/$" "" browsersweep_prefix "${browsersweep_prefix}")
configure_file(${PROJECT_SOURCE_DIR}/cmake/browsersweep.pc.in
               ${PROJECT_BINARY_DIR}/generated/browsersweep.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/generated/browsersweep.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

set(CPACK_PACKAGE_NAME browsersweep)
set(CPACK_PACKAGE_CONTACT "The authors of browsersweep <browsersweep@example.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_STRIP_FILES ON)
set(CPACK_GENERATOR TGZ)
if(NOT APPLE)
  set(CPACK_GENERATOR DEB)
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEBIAN_PACKAGE_SECTION libdevel)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  if(browsersweep_kind STREQUAL "STATIC_LIBRARY")
    # For who links the archive; the program does without.
    set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "libsqlite3-dev, libexpat1-dev, libicu-dev")
    if(BROWSERSWEEP_SITES)
      string(APPEND CPACK_DEBIAN_PACKAGE_RECOMMENDS ", libpsl-dev, liblz4-dev, libleveldb-dev")
    endif()
  endif()
endif()
include(CPack)
