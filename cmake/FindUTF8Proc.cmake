# utf8proc, Unicode's tables: the target UTF8Proc::UTF8Proc.

find_path(UTF8Proc_INCLUDE_DIR utf8proc.h)
find_library(UTF8Proc_LIBRARY utf8proc)
include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(UTF8Proc REQUIRED_VARS UTF8Proc_LIBRARY UTF8Proc_INCLUDE_DIR)
if(UTF8Proc_FOUND AND NOT TARGET UTF8Proc::UTF8Proc)
  add_library(UTF8Proc::UTF8Proc UNKNOWN IMPORTED)
  set_target_properties(UTF8Proc::UTF8Proc PROPERTIES IMPORTED_LOCATION ${UTF8Proc_LIBRARY}
                                                      INTERFACE_INCLUDE_DIRECTORIES ${UTF8Proc_INCLUDE_DIR})
endif()
mark_as_advanced(UTF8Proc_INCLUDE_DIR UTF8Proc_LIBRARY)
