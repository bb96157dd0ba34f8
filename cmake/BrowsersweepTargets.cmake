# What every target of the project shares. Nothing here is put on a target that is exported, except
# where it says so: a project that links the library keeps its own flags.

add_library(browsersweep_build_options INTERFACE)
target_compile_features(browsersweep_build_options INTERFACE cxx_std_20)
target_compile_options(
  browsersweep_build_options
  INTERFACE $<$<COMPILE_LANGUAGE:CXX,OBJCXX>:-Wall -Wextra -Wpedantic -Wconversion -Wshadow>
            $<$<AND:$<BOOL:${BROWSERSWEEP_WARNINGS_AS_ERRORS}>,$<COMPILE_LANGUAGE:C,CXX,OBJCXX>>:-Werror>)

# When it optimises, g++ 12 warns of overlapping copies in its own string concatenation and of empty
# optionals that are never read.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  target_compile_options(
    browsersweep_build_options
    INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-Wno-restrict> $<$<COMPILE_LANGUAGE:CXX>:-Wno-maybe-uninitialized>)
endif()

if(BROWSERSWEEP_SANITIZE)
  target_compile_options(
    browsersweep_build_options INTERFACE -fsanitize=${BROWSERSWEEP_SANITIZE}
                                         -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(browsersweep_build_options INTERFACE -fsanitize=${BROWSERSWEEP_SANITIZE})
endif()

# browsersweep_use_build_options(target): warnings, language level and sanitizers of this project.
function(browsersweep_use_build_options target)
  target_link_libraries(${target} PRIVATE $<BUILD_INTERFACE:browsersweep_build_options>)
  set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF CXX_VISIBILITY_PRESET hidden
                                             VISIBILITY_INLINES_HIDDEN ON OBJCXX_STANDARD 20
                                             OBJCXX_STANDARD_REQUIRED ON OBJCXX_EXTENSIONS OFF
                                             OBJCXX_VISIBILITY_PRESET hidden)
endfunction()

# browsersweep_precompile(target header...): with BROWSERSWEEP_PRECOMPILE, reads these headers once for
# the whole target. A build without it proves that every file includes what it needs.
function(browsersweep_precompile target)
  if(BROWSERSWEEP_PRECOMPILE)
    target_precompile_headers(${target} PRIVATE ${ARGN})
  endif()
endfunction()

# browsersweep_compile_together(target): with CMAKE_UNITY_BUILD, the files of a target are compiled in a
# few pieces of about the same size, in a fraction of the time: most of it goes into the headers that
# they share. Names in unnamed namespaces therefore differ within a target. A build without it proves
# that every file includes what it needs.
function(browsersweep_compile_together target)
  set(bytes_of_a_piece 100000)
  get_target_property(sources ${target} SOURCES)
  list(FILTER sources EXCLUDE REGEX "\\.h$")
  set(sizes "")
  set(total 0)
  foreach(source IN LISTS sources)
    file(SIZE ${source} bytes)
    list(APPEND sizes ${bytes})
    math(EXPR total "${total} + ${bytes}")
  endforeach()
  math(EXPR pieces "(${total} + ${bytes_of_a_piece} - 1) / ${bytes_of_a_piece}")
  set(before 0)
  foreach(source bytes IN ZIP_LISTS sources sizes)
    math(EXPR piece "${before} * ${pieces} / ${total}")
    set_source_files_properties(${source} PROPERTIES UNITY_GROUP "${piece}")
    math(EXPR before "${before} + ${bytes}")
  endforeach()
  set_target_properties(${target} PROPERTIES UNITY_BUILD_MODE GROUP)
  # To g++ whatever is included lies in a header, the other files of the piece too.
  if(CMAKE_UNITY_BUILD AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(${target} PRIVATE $<$<COMPILE_LANGUAGE:CXX>:-Wno-subobject-linkage>)
  endif()
endfunction()
