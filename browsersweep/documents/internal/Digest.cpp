#include "browsersweep/documents/internal/Digest.h"

#include <bit>
#include <cmath>
#include <cstddef>
#include <string>

namespace browsersweep {
namespace {

constexpr std::size_t blockSize = 64;
constexpr std::size_t wordSize = 4;
constexpr std::size_t roundCount = 64;
constexpr unsigned bitsPerByte = 8;

using Words = std::array<std::uint32_t, blockSize / wordSize>;

/** Where the bytes of a word and of the length stand: SHA begins with the highest, MD5 not. */
enum class Order { highestFirst, lowestFirst };

unsigned shiftOf(std::size_t place, std::size_t count, Order order) noexcept {
    const std::size_t back = order == Order::lowestFirst ? place : count - 1 - place;
    return static_cast<unsigned>(back) * bitsPerByte;
}

/** A text in whole blocks: after it one bit, zeros, and how many bits it has. */
std::string padded(std::string_view text, Order order) {
    constexpr std::size_t lengthSize = 8;
    std::string result(text);
    result += '\x80';
    while (result.size() % blockSize != blockSize - lengthSize) {
        result += '\0';
    }
    const std::uint64_t bits = std::uint64_t{text.size()} * bitsPerByte;
    for (std::size_t place = 0; place < lengthSize; ++place) {
        result += static_cast<char>(bits >> shiftOf(place, lengthSize, order));
    }
    return result;
}

Words wordsOf(std::string_view block, Order order) noexcept {
    Words words{};
    for (std::size_t place = 0; place < blockSize; ++place) {
        const std::uint32_t byte = static_cast<unsigned char>(block[place]);
        words[place / wordSize] |= byte << shiftOf(place % wordSize, wordSize, order);
    }
    return words;
}

template <std::size_t count>
std::array<std::uint8_t, count * wordSize> bytesOf(const std::array<std::uint32_t, count>& words,
                                                   Order order) noexcept {
    std::array<std::uint8_t, count * wordSize> bytes{};
    for (std::size_t place = 0; place < bytes.size(); ++place) {
        bytes[place] = static_cast<std::uint8_t>(words[place / wordSize] >>
                                                 shiftOf(place % wordSize, wordSize, order));
    }
    return bytes;
}

/** The state after all blocks of a text. */
template <typename State, typename Mix>
State digested(std::string_view text, State state, Order order, Mix mix) {
    const std::string blocks = padded(text, order);
    for (std::size_t place = 0; place < blocks.size(); place += blockSize) {
        State mixed = state;
        mix(mixed, wordsOf(std::string_view(blocks).substr(place, blockSize), order));
        for (std::size_t index = 0; index < state.size(); ++index) {
            state[index] += mixed[index];
        }
    }
    return state;
}

using State256 = std::array<std::uint32_t, 8>;
using State128 = std::array<std::uint32_t, 4>;

// clang-format off
constexpr std::array<std::uint32_t, roundCount> roundsOf256{
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2,
};
constexpr std::array<std::array<std::uint32_t, 4>, 4> turnsOfMD5{{
    {7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21},
}};
constexpr State256 startOf256{0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                              0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};
constexpr State128 startOfMD5{0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476};
// clang-format on

void mix256(State256& state, const Words& words) noexcept {
    std::array<std::uint32_t, roundCount> all{};
    for (std::size_t round = 0; round < roundCount; ++round) {
        if (round < words.size()) {
            all[round] = words[round];
        } else {
            const std::uint32_t early = all[round - 15];
            const std::uint32_t late = all[round - 2];
            all[round] = all[round - 16] + all[round - 7] +
                         (std::rotr(early, 7) ^ std::rotr(early, 18) ^ (early >> 3U)) +
                         (std::rotr(late, 17) ^ std::rotr(late, 19) ^ (late >> 10U));
        }
        const auto [a, b, c, d, e, f, g, h] = state;
        const std::uint32_t first = h + (std::rotr(e, 6) ^ std::rotr(e, 11) ^ std::rotr(e, 25)) +
                                    ((e & f) ^ (~e & g)) + roundsOf256[round] + all[round];
        const std::uint32_t second =
            (std::rotr(a, 2) ^ std::rotr(a, 13) ^ std::rotr(a, 22)) + ((a & b) ^ (a & c) ^ (b & c));
        state = {first + second, a, b, c, d + first, e, f, g};
    }
}

/** What each quarter of the rounds makes of three words, and which word of the block it takes. */
std::uint32_t partOfMD5(std::size_t quarter, const State128& state) noexcept {
    const auto [a, b, c, d] = state;
    switch (quarter) {
        case 0:
            return (b & c) | (~b & d);
        case 1:
            return (d & b) | (~d & c);
        case 2:
            return b ^ c ^ d;
        default:
            return c ^ (b | ~d);
    }
}

// Libraries do not agree on the type of what `std::rotl` takes.
std::uint32_t turnedLeft(std::uint32_t word, std::uint32_t places) noexcept {
    return word << places | word >> (32U - places);
}

void mixMD5(State128& state, const Words& words) noexcept {
    constexpr std::array<std::size_t, 4> steps{1, 5, 3, 7};
    constexpr std::array<std::size_t, 4> starts{0, 1, 5, 0};
    constexpr double twoTo32 = 4294967296.0;
    for (std::size_t round = 0; round < roundCount; ++round) {
        const std::size_t quarter = round / words.size();
        const std::size_t word = (starts[quarter] + steps[quarter] * round) % words.size();
        const auto constant = static_cast<std::uint32_t>(
            std::floor(std::abs(std::sin(static_cast<double>(round + 1))) * twoTo32));
        const auto [a, b, c, d] = state;
        const std::uint32_t sum = a + partOfMD5(quarter, state) + constant + words[word];
        state = {d, b + turnedLeft(sum, turnsOfMD5[quarter][round % 4]), b, c};
    }
}

}  // namespace

std::array<std::uint8_t, 32> sha256(std::string_view text) {
    constexpr auto order = Order::highestFirst;
    return bytesOf(digested(text, startOf256, order, mix256), order);
}

std::array<std::uint8_t, 16> md5(std::string_view text) {
    constexpr auto order = Order::lowestFirst;
    return bytesOf(digested(text, startOfMD5, order, mixMD5), order);
}

std::string md5InDigits(std::string_view text) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string result;
    for (const std::uint8_t byte : md5(text)) {
        result += digits[byte / digits.size()];
        result += digits[byte % digits.size()];
    }
    return result;
}

}  // namespace browsersweep
