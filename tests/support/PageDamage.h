#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>

namespace browsersweep::tests {

/**
 * Damages a database as failing disks do, a page at a time: a page becomes other bytes, zeros, or a
 * copy of another one. The same seed gives the same damage.
 */
class PageDamage {
public:
    explicit PageDamage(std::uint32_t seed) : random_(seed) {}

    /** The database with one to three of its pages damaged. */
    std::string damaged(std::string database);

    /** Whether the next database is to be damaged at all; true two times out of three. */
    bool hitsNext() { return below(3) != 0; }

private:
    std::size_t below(std::size_t limit) { return random_() % limit; }
    std::string page(const std::string& database, std::size_t size);

    std::mt19937 random_;
};

/** The size of a database's pages, as its header has it. */
std::size_t pageSizeOf(const std::string& database);

}  // namespace browsersweep::tests
