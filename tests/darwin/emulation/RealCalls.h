#pragma once

#include <dlfcn.h>

namespace browsersweep::emulation {

/** The function of the C library behind the one of the same name that stands before it here. */
template <typename Function>
Function* realCall(const char* name) noexcept {
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

}  // namespace browsersweep::emulation
