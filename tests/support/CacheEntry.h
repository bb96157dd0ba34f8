#pragma once

#include <cstddef>
#include <string>

namespace browsersweep::tests {

/** A file of an entry in Chromium's "simple" cache: a header, the key, the contents. */
inline std::string cacheEntry(const std::string& key, const std::string& contents) {
    std::string entry("\x30\x5C\x72\xA7\x1B\x6D\xFB\xFC\x05\0\0\0", 12);
    for (std::size_t shift = 0; shift < 32; shift += 8) {
        entry += static_cast<char>(key.size() >> shift);
    }
    return entry + std::string("hash\0\0\0\0", 8) + key + contents;
}

}  // namespace browsersweep::tests
