# Universal binaries: one file for Apple's processors and Intel's. Used on a Mac.

set(CMAKE_OSX_ARCHITECTURES "arm64;x86_64" CACHE STRING "Processors to build for")
set(CMAKE_OSX_DEPLOYMENT_TARGET "12.0" CACHE STRING "The oldest system to run on")
