#include "tests/support/PageDamage.h"

#include <algorithm>
#include <stdexcept>

namespace browsersweep::tests {

std::size_t pageSizeOf(const std::string& database) {
    constexpr std::size_t place = 16;
    constexpr std::size_t largest = 65536;
    const auto byte = [&](std::size_t index) {
        return std::size_t{static_cast<unsigned char>(database.at(index))};
    };
    const std::size_t written = (byte(place) << 8U) + byte(place + 1);
    const std::size_t size = written == 1 ? largest : written;
    if (size < 512 || database.size() % size != 0) {
        throw std::invalid_argument("not a whole database");
    }
    return size;
}

std::string PageDamage::page(const std::string& database, std::size_t size) {
    std::string bytes(size, '\0');
    switch (below(3)) {
        case 0:
            break;
        case 1:
            bytes = database.substr(below(database.size() / size) * size, size);
            break;
        default:
            std::generate(bytes.begin(), bytes.end(),
                          [this] { return static_cast<char>(below(256)); });
    }
    return bytes;
}

std::string PageDamage::damaged(std::string database) {
    const std::size_t size = pageSizeOf(database);
    for (std::size_t count = 1 + below(3); count > 0; --count) {
        const std::size_t target = below(database.size() / size) * size;
        database.replace(target, size, page(database, size));
    }
    return database;
}

}  // namespace browsersweep::tests
