# What the Foundation backend is compiled and linked with: the system's framework on macOS, GNUstep
# elsewhere, where it is built for the tests alone. Included before the library, from the top.

if(APPLE)
  enable_language(OBJCXX)
  return()
endif()

add_library(browsersweep_foundation INTERFACE)

# g++ cannot compile the exceptions of this runtime; clang can, and its objects link with g++'s.
find_program(BROWSERSWEEP_OBJCXX NAMES clang++ REQUIRED)
if(NOT CMAKE_OBJCXX_COMPILER)
  set(CMAKE_OBJCXX_COMPILER ${BROWSERSWEEP_OBJCXX})
endif()
# CMake names and begins the precompiled headers of all languages as the compiler of the last one does. What
# is C++ is compiled as in every other build: what is found in the compiler's cache is not compiled again.
set(browsersweep_pch_extension ${CMAKE_PCH_EXTENSION})
set(browsersweep_pch_prologue ${CMAKE_PCH_PROLOGUE})
enable_language(OBJCXX)
set(CMAKE_PCH_EXTENSION ${browsersweep_pch_extension})
set(CMAKE_PCH_PROLOGUE ${browsersweep_pch_prologue})

# The runtime's headers lie in gcc's own include folder, which clang must not search: a link shows
# it the one folder that it needs.
file(GLOB browsersweep_objc_folders /usr/lib/gcc/*/*/include/objc)
if(NOT browsersweep_objc_folders)
  message(FATAL_ERROR "the headers of the Objective-C runtime are missing (libobjc-12-dev)")
endif()
list(POP_BACK browsersweep_objc_folders browsersweep_objc_folder)
set(browsersweep_objc_link ${PROJECT_BINARY_DIR}/objc-headers)
file(MAKE_DIRECTORY ${browsersweep_objc_link})
file(CREATE_LINK ${browsersweep_objc_folder} ${browsersweep_objc_link}/objc SYMBOLIC)

target_compile_options(
  browsersweep_foundation
  INTERFACE
    "$<$<COMPILE_LANGUAGE:OBJCXX>:-fobjc-runtime=gcc;-fobjc-exceptions;-fexceptions;-fconstant-string-class=NSConstantString;-pthread;-DGNUSTEP;-DGNUSTEP_BASE_LIBRARY=1;-DGNU_RUNTIME=1;-D_NATIVE_OBJC_EXCEPTIONS;-isystem/usr/include/GNUstep;-isystem${browsersweep_objc_link};-include${PROJECT_SOURCE_DIR}/tests/foundation/GNUstepStandIns.h>"
)
target_link_libraries(browsersweep_foundation INTERFACE gnustep-base objc)
