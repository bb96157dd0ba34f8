#include "Mutation.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string_view>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

namespace browsersweep::mutation {
namespace {

unsigned numberIn(const char* variable) noexcept {
    const char* const text = std::getenv(variable);
    return text == nullptr ? 0 : static_cast<unsigned>(std::strtoul(text, nullptr, 10));
}

/** The number of each test in the order in which the program lists them; 0 is outside of tests. */
std::size_t currentTest() {
    static std::map<const testing::TestInfo*, std::size_t> numbers;
    static const testing::TestInfo* last = nullptr;
    static std::size_t numberOfLast = 0;
    const testing::UnitTest& all = *testing::UnitTest::GetInstance();
    const testing::TestInfo* const current = all.current_test_info();
    if (current == last) {
        return numberOfLast;
    }
    if (current == nullptr) {
        return 0;  // while variables are made, not all tests are known yet
    }
    if (numbers.empty()) {
        std::size_t number = 0;
        for (int suite = 0; suite < all.total_test_suite_count(); ++suite) {
            for (int test = 0; test < all.GetTestSuite(suite)->total_test_count(); ++test) {
                numbers.emplace(all.GetTestSuite(suite)->GetTestInfo(test), ++number);
            }
        }
    }
    last = current;
    numberOfLast = numbers.at(current);
    return numberOfLast;
}

/** A byte for each test and mutant, in a file that child processes write to as well. */
class Map {
public:
    Map() : width_(numberIn("BROWSERSWEEP_MUTANTS")) {
        const char* const path = std::getenv("BROWSERSWEEP_MUTANT_MAP");
        const int file = path == nullptr ? -1 : ::open(path, O_RDWR | O_CLOEXEC);
        if (file >= 0) {
            size_ = static_cast<std::size_t>(::lseek(file, 0, SEEK_END));
            void* const memory =
                ::mmap(nullptr, size_, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
            bytes_ = memory == MAP_FAILED ? nullptr : static_cast<char*>(memory);
            ::close(file);
        }
    }

    void note(unsigned number) const {
        if (bytes_ != nullptr) {
            const std::size_t place = currentTest() * width_ + number;
            if (place < size_) {
                bytes_[place] = 1;
            }
        }
    }

private:
    std::size_t width_;
    std::size_t size_ = 0;
    char* bytes_ = nullptr;
};

}  // namespace

bool chosen(unsigned number) noexcept {
    static const unsigned only = numberIn("BROWSERSWEEP_MUTANT");
    static const Map map;
    map.note(number);
    return number == only;
}

}  // namespace browsersweep::mutation

// In the place of the system's, because all but one folder is out of reach here.

/** What is printed is captured in a file of /tmp: it lies in the current folder. */
extern "C" int mkstemp(char* pattern) {
    constexpr std::string_view unreachable = "/tmp/";
    if (std::string_view(pattern).substr(0, unreachable.size()) == unreachable) {
        std::memmove(pattern, pattern + unreachable.size(),
                     std::strlen(pattern + unreachable.size()) + 1);
    }
    return ::mkostemp(pattern, 0);
}

/** Fixtures lie in memory where they can. */
extern "C" int access(const char* path, int mode) {
    return std::string_view(path) == "/dev/shm" ? -1 : ::faccessat(AT_FDCWD, path, mode, 0);
}
