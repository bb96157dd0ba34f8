# libpsl, the public suffix list: the target LibPSL::LibPSL.

find_path(LibPSL_INCLUDE_DIR libpsl.h)
find_library(LibPSL_LIBRARY psl)
include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(LibPSL REQUIRED_VARS LibPSL_LIBRARY LibPSL_INCLUDE_DIR)
if(LibPSL_FOUND AND NOT TARGET LibPSL::LibPSL)
  add_library(LibPSL::LibPSL UNKNOWN IMPORTED)
  set_target_properties(LibPSL::LibPSL PROPERTIES IMPORTED_LOCATION ${LibPSL_LIBRARY}
                                                  INTERFACE_INCLUDE_DIRECTORIES ${LibPSL_INCLUDE_DIR})
endif()
mark_as_advanced(LibPSL_INCLUDE_DIR LibPSL_LIBRARY)
