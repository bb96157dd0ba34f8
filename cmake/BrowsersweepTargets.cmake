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

# browsersweep_use_build_options(target): warnings, language level and sanitizers of this project. Each
# file is compiled by itself, even in a project that compiles its own together: what a file keeps in an
# unnamed namespace is named without a thought of other files.
function(browsersweep_use_build_options target)
  target_link_libraries(${target} PRIVATE $<BUILD_INTERFACE:browsersweep_build_options>)
  set_target_properties(${target} PROPERTIES UNITY_BUILD OFF CXX_EXTENSIONS OFF CXX_VISIBILITY_PRESET hidden
                                             VISIBILITY_INLINES_HIDDEN ON OBJCXX_STANDARD 20
                                             OBJCXX_STANDARD_REQUIRED ON OBJCXX_EXTENSIONS OFF
                                             OBJCXX_VISIBILITY_PRESET hidden)
endfunction()

# browsersweep_emulate_darwin(target source...): with BROWSERSWEEP_EMULATE_DARWIN, shows those sources
# that are written for macOS the calls of macOS, and lets the emulation answer them.
function(browsersweep_emulate_darwin target)
  if(BROWSERSWEEP_EMULATE_DARWIN)
    list(FILTER ARGN INCLUDE REGEX "/darwin/(emulation/)?[^/]+\\.cpp$")
    set_source_files_properties(
      ${ARGN} PROPERTIES COMPILE_OPTIONS "-isystem;${PROJECT_SOURCE_DIR}/tests/darwin/include")
    target_link_libraries(${target} PUBLIC darwin_emulation)
  endif()
endfunction()

# browsersweep_precompile(target header...): with BROWSERSWEEP_PRECOMPILE, reads these headers once for
# the whole target. A build without it proves that every file includes what it needs.
function(browsersweep_precompile target)
  if(BROWSERSWEEP_PRECOMPILE)
    target_precompile_headers(${target} PRIVATE ${ARGN})
  endif()
endfunction()

# browsersweep_show_to_fuzzer(target): with BROWSERSWEEP_BUILD_FUZZERS, lets libFuzzer see which ways are
# taken through the target, which is optimized so that it takes more of them.
function(browsersweep_show_to_fuzzer target)
  if(BROWSERSWEEP_BUILD_FUZZERS)
    target_compile_options(${target} PRIVATE -O1 -fsanitize=fuzzer-no-link)
  endif()
endfunction()
