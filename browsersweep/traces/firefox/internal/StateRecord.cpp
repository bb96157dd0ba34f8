#include "browsersweep/traces/firefox/internal/StateRecord.h"

#include <algorithm>
#include <charconv>

namespace browsersweep {
namespace {

constexpr std::size_t numberSize = 2;
constexpr std::size_t headSize = 3 * numberSize;  // a sum, on how many days it was used, the last
constexpr std::size_t keySize = 256;

/** Of a key and a value of the largest size, two numbers and three tabs. */
constexpr std::size_t longestLine = keySize + 1024 + 32;

/** As so many bits hold it. */
constexpr unsigned lastDay = 0xFFFF;

unsigned numberAt(std::string_view bytes, std::size_t place) noexcept {
    const auto high = static_cast<unsigned char>(bytes[place]);
    const auto low = static_cast<unsigned char>(bytes[place + 1]);
    return 256U * high + low;
}

/** All numbers of a record make zero together, the first of them being what is lacking. */
bool isWhole(std::string_view slot) noexcept {
    unsigned sum = 0;
    for (std::size_t place = 0; place < slot.size(); place += numberSize) {
        sum ^= numberAt(slot, place);
    }
    return sum == 0;
}

std::string_view withoutZeros(std::string_view text) noexcept {
    const auto last = text.find_last_not_of('\0');
    return text.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

std::optional<Date> dateOfDay(unsigned day) noexcept {
    constexpr double secondsInDay = 86400;
    return day == 0 || day > lastDay ? std::nullopt
                                     : std::optional(dateFrom1970Seconds(day * secondsInDay));
}

StateRecord recordIn(std::string_view slot, std::size_t size) {
    StateRecord record{slot, {}, {}, {}, withoutZeros(slot).empty()};
    if (!record.isUnused && slot.size() == size && isWhole(slot)) {
        record.key = withoutZeros(slot.substr(headSize, keySize));
        record.value = withoutZeros(slot.substr(headSize + keySize));
        record.lastUsed = dateOfDay(numberAt(slot, 2 * numberSize));
    }
    return record;
}

std::string_view takeUpTo(char mark, std::string_view& text) noexcept {
    const std::string_view piece = text.substr(0, text.find(mark));
    text.remove_prefix(std::min(piece.size() + 1, text.size()));
    return piece;
}

/** Where the next one begins. Empty lines in a row are one: each would take more than its byte. */
std::size_t endOfLine(std::string_view file) noexcept {
    const bool isEmpty = file.starts_with('\n');
    const auto end = isEmpty ? file.find_first_not_of('\n') : file.find('\n');
    return isEmpty || end == std::string_view::npos ? end : end + 1;
}

/** A key, on how many days it was used, the last of them, and the value, in which tabs may be. */
StateRecord recordInLine(std::string_view line) {
    StateRecord record{line, {}, {}, {}, line.starts_with('\n')};
    std::string_view text = line.substr(0, line.find('\n'));
    if (text.size() > longestLine || std::count(text.begin(), text.end(), '\t') < 3) {
        return record;
    }
    record.key = takeUpTo('\t', text);
    takeUpTo('\t', text);
    const std::string_view digits = takeUpTo('\t', text);
    unsigned day = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), day);
    record.lastUsed = dateOfDay(day);
    record.value = text;
    return record;
}

}  // namespace

std::vector<StateRecord> stateRecordsInSlots(std::string_view file, std::size_t valueSize) {
    const std::size_t size = headSize + keySize + valueSize;
    std::vector<StateRecord> records;
    while (!file.empty()) {
        const std::string_view slot = file.substr(0, size);
        records.push_back(recordIn(slot, size));
        file.remove_prefix(slot.size());
    }
    return records;
}

std::vector<StateRecord> stateRecordsInLines(std::string_view file) {
    std::vector<StateRecord> records;
    while (!file.empty()) {
        const std::string_view line = file.substr(0, endOfLine(file));
        records.push_back(recordInLine(line));
        file.remove_prefix(line.size());
    }
    return records;
}

}  // namespace browsersweep
