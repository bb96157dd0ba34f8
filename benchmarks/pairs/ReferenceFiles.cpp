#include <array>
#include <cstddef>
#include <cstring>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "Reference.h"

namespace reference {
namespace {

std::string readAll(const std::string& path) {
    std::ifstream stream(path, std::ios::binary | std::ios::ate);
    std::string bytes(static_cast<std::size_t>(stream.tellg()), '\0');
    stream.seekg(0);
    stream.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    return bytes;
}

template <typename Value>
Value at(const char* bytes) {
    Value value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

std::uint32_t bigEndian(const char* bytes) {
    return __builtin_bswap32(at<std::uint32_t>(bytes));
}

/** A cookie as a flat parser sees it: its place in the file, its date and its texts. */
struct Cookie {
    std::string_view record;
    double created = 0;
    std::array<std::string, 6> texts;
};

struct Page {
    std::vector<Cookie> cookies;
};

struct File {
    std::vector<Page> pages;
    std::string_view tail;
};

Cookie readCookie(const char* start) {
    Cookie cookie{{start, at<std::uint32_t>(start)}, at<double>(start + 48), {}};
    for (std::size_t index = 0; index < cookie.texts.size(); ++index) {
        const auto offset = at<std::uint32_t>(start + 16 + 4 * index);
        if (offset != 0) {
            cookie.texts[index] = start + offset;
        }
    }
    return cookie;
}

Page readPage(const char* start) {
    Page page;
    const auto count = at<std::uint32_t>(start + 4);
    page.cookies.reserve(count);
    for (std::uint32_t index = 0; index < count; ++index) {
        page.cookies.push_back(
            readCookie(start + at<std::uint32_t>(start + 8 + std::size_t{4} * index)));
    }
    return page;
}

File parse(const std::string& bytes) {
    const std::uint32_t pageCount = bigEndian(&bytes[4]);
    File file;
    std::size_t position = 8 + std::size_t{4} * pageCount;
    for (std::uint32_t index = 0; index < pageCount; ++index) {
        file.pages.push_back(readPage(&bytes[position]));
        position += bigEndian(&bytes[8 + std::size_t{4} * index]);
    }
    file.tail = std::string_view(bytes).substr(position + 4);
    return file;
}

template <typename Value>
void append(std::string& out, Value value) {
    std::array<char, sizeof value> bytes;
    std::memcpy(bytes.data(), &value, sizeof value);
    out.append(bytes.data(), bytes.size());
}

std::string encodePage(const Page& page) {
    std::string out;
    append(out, std::uint32_t{0x00010000});
    append(out, static_cast<std::uint32_t>(page.cookies.size()));
    auto offset = static_cast<std::uint32_t>(12 + 4 * page.cookies.size());
    for (const Cookie& cookie : page.cookies) {
        append(out, offset);
        offset += static_cast<std::uint32_t>(cookie.record.size());
    }
    append(out, std::uint32_t{0});
    for (const Cookie& cookie : page.cookies) {
        out += cookie.record;
    }
    return out;
}

std::string encode(const File& file) {
    std::string header = "cook";
    std::string body;
    std::uint32_t checksum = 0;
    append(header, __builtin_bswap32(static_cast<std::uint32_t>(file.pages.size())));
    for (const Page& page : file.pages) {
        const std::string encoded = encodePage(page);
        append(header, __builtin_bswap32(static_cast<std::uint32_t>(encoded.size())));
        for (std::size_t index = 0; index < encoded.size(); index += 4) {
            checksum += static_cast<unsigned char>(encoded[index]);
        }
        body += encoded;
    }
    append(body, __builtin_bswap32(checksum));
    return header + body + std::string(file.tail);
}

}  // namespace

std::uint64_t parseJson(const std::string& file) {
    const std::string bytes = readAll(file);
    const auto document = nlohmann::json::parse(bytes);
    return bytes.size() + document.size() * 0;
}

std::uint64_t readCookies(const std::string& file) {
    const std::string bytes = readAll(file);
    std::uint64_t count = 0;
    for (const Page& page : parse(bytes).pages) {
        count += page.cookies.size();
    }
    return count;
}

std::uint64_t rewriteCookies(const std::string& file, double oldestKept) {
    const std::string bytes = readAll(file);
    File parsed = parse(bytes);
    for (Page& page : parsed.pages) {
        std::erase_if(page.cookies,
                      [&](const Cookie& cookie) { return cookie.created < oldestKept; });
    }
    std::erase_if(parsed.pages, [](const Page& page) { return page.cookies.empty(); });
    return encode(parsed).size();
}

}  // namespace reference
