#include <algorithm>
#include <stdexcept>

#include "browsersweep/binarycoding/BinaryDataDecoder.h"
#include "browsersweep/binarycoding/BinaryDataEncoder.h"
#include "browsersweep/binarycoding/BinaryDecodingError.h"
#include "browsersweep/binarycoding/BinaryEncodingError.h"
#include "browsersweep/cookies/BinaryCookies.h"
#include "browsersweep/documents/DecodingError.h"

#include "fuzz/targets/Rule.h"
#include "fuzz/targets/Targets.h"

namespace browsersweep::fuzz {
namespace {

/** A damaged record may claim another size than its parts have; it cannot come back as it was. */
bool claimsItsSize(const BinaryCookies::Cookie& cookie) {
    return BinaryDataEncoder().encode(cookie).size() == cookie.size;
}

void checkRoundTrip(const BinaryCookies& cookies) {
    const Bytes written = BinaryDataEncoder().encode(cookies);
    const auto all = cookies.cookies();
    if (!std::all_of(all.begin(), all.end(), claimsItsSize)) {
        return;
    }
    const auto again = BinaryDataDecoder().decode<BinaryCookies>(written);
    require(again.cookieCount() == cookies.cookieCount(), "a written file holds every cookie");
    require(BinaryDataEncoder().encode(again) == written, "writing what was written changes it");
}

void checkRemoval(BinaryCookies cookies) {
    const std::size_t before = cookies.cookieCount();
    std::size_t removed = 0;
    cookies.remove([&](const BinaryCookies::Cookie& cookie) {
        const bool isSelected = cookie.name.size() % 2 == 0;
        removed += isSelected ? 1U : 0U;
        return isSelected;
    });
    require(cookies.cookieCount() + removed == before, "removing takes what was selected alone");
}

}  // namespace

void cookieFile(BytesView input) {
    try {
        const auto cookies = BinaryDataDecoder().decode<BinaryCookies>(input);
        checkRemoval(cookies);
        checkRoundTrip(cookies);
    } catch (const BinaryDecodingError&) {
        return;
    } catch (const DecodingError&) {  // the property list at the end
        return;
    } catch (const BinaryEncodingError&) {
        return;
    } catch (const std::length_error&) {  // sizes that do not fit in their fields
        return;
    }
}

}  // namespace browsersweep::fuzz
