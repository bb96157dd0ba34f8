#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include "browsersweep/binarycoding/BinaryDataDecoder.h"
#include "browsersweep/binarycoding/BinaryDataEncoder.h"
#include "browsersweep/cookies/BinaryCookies.h"

#include "tests/support/BinaryCookieFileBuilder.h"

namespace browsersweep {
namespace {

using tests::cookieFile;
using tests::cookiePage;
using tests::CookieRecord;
using tests::emptyDictionary;

rc::Gen<CookieRecord> anyRecord() {
    const auto text = rc::gen::container<std::string>(rc::gen::inRange<char>(1, 127));
    return rc::gen::build<CookieRecord>(
        rc::gen::set(&CookieRecord::url, text), rc::gen::set(&CookieRecord::name, text),
        rc::gen::set(&CookieRecord::path, text), rc::gen::set(&CookieRecord::value, text),
        rc::gen::set(&CookieRecord::creation), rc::gen::set(&CookieRecord::flags),
        rc::gen::set(&CookieRecord::version),
        rc::gen::set(&CookieRecord::portMarker, rc::gen::inRange<std::uint32_t>(0, 2)),
        rc::gen::set(&CookieRecord::port));
}

Bytes anyFile() {
    constexpr double small = 0.2;  // pages of up to twenty cookies say as much as larger ones
    const auto records =
        *rc::gen::scale(small, rc::gen::container<std::vector<std::vector<CookieRecord>>>(
                                   rc::gen::container<std::vector<CookieRecord>>(anyRecord())));
    std::vector<Bytes> pages;
    for (const std::vector<CookieRecord>& page : records) {
        std::vector<Bytes> data;
        for (const CookieRecord& record : page) {
            data.push_back(record.data());
        }
        pages.push_back(cookiePage(data));
    }
    return cookieFile(pages, emptyDictionary());
}

BinaryCookies modelOf(const Bytes& file) {
    return BinaryDataDecoder().decode<BinaryCookies>(file);
}

}  // namespace

RC_GTEST_PROP(BinaryCookiesProperty, writesAnyTightlyPackedFileBackToTheSameBytes, ()) {
    const Bytes file = anyFile();
    RC_ASSERT(BinaryDataEncoder().encode(modelOf(file)) == file);
}

RC_GTEST_PROP(BinaryCookiesProperty, readsBackTheModelThatItWrote, ()) {
    const BinaryCookies cookies = modelOf(anyFile());
    RC_ASSERT(modelOf(BinaryDataEncoder().encode(cookies)) == cookies);
}

}  // namespace browsersweep
