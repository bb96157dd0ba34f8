#pragma once

namespace browsersweep::tests {

/**
 * Whether a test may set and delete cookies in the storages of `HTTPCookieStorage::shared`. On
 * macOS they are the account's own, which only the account's owner may open to a test, by setting
 * `BROWSERSWEEP_TEST_ACCOUNT_COOKIES`.
 */
bool mayUseAccountCookies();

/** Why a test is skipped that may not. */
inline constexpr const char* whyNoAccountCookies =
    "it would use the account's cookie storage; set BROWSERSWEEP_TEST_ACCOUNT_COOKIES to let it";

}  // namespace browsersweep::tests
