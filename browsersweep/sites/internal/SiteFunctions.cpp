#include "browsersweep/sites/internal/SiteFunctions.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <new>
#include <span>
#include <string>
#include <utility>

#include <sqlite3.h>

#include "browsersweep/sites/internal/HostDigests.h"
#include "browsersweep/sqlite/SQLiteError.h"

namespace browsersweep {
namespace {

using Values = std::span<sqlite3_value*>;

std::string_view textOf(sqlite3_value* value) noexcept {
    const void* const bytes = sqlite3_value_type(value) == SQLITE_BLOB
                                  ? sqlite3_value_blob(value)
                                  : static_cast<const void*>(sqlite3_value_text(value));
    const auto count = static_cast<std::size_t>(sqlite3_value_bytes(value));
    return bytes == nullptr ? std::string_view()
                            : std::string_view(static_cast<const char*>(bytes), count);
}

/** Answers, or with an error of SQLite: that memory ran out, or what else was wrong. */
template <typename Make>
void answerOrFail(sqlite3_context* context, Make make) {
    try {
        make();
    } catch (const std::bad_alloc&) {
        sqlite3_result_error_nomem(context);
    } catch (const std::exception& error) {
        sqlite3_result_error(context, error.what(), -1);
    }
}

/** Answers with true or false. */
template <typename Answer>
void answer(sqlite3_context* context, int count, sqlite3_value** values, Answer ask) {
    answerOrFail(context, [&] {
        auto& functions = *static_cast<SiteFunctions*>(sqlite3_user_data(context));
        const bool yes = ask(functions, Values(values, static_cast<std::size_t>(count)));
        sqlite3_result_int(context, yes ? 1 : 0);
    });
}

void namesSite(sqlite3_context* context, int count, sqlite3_value** values) {
    answer(context, count, values, [](SiteFunctions& functions, Values given) {
        for (std::size_t index = 0; index + 1 < given.size(); index += 2) {
            const auto form = static_cast<SiteForm>(sqlite3_value_int(given[index]));
            if (functions.names(form, textOf(given[index + 1]))) {
                return true;
            }
        }
        return false;
    });
}

void isProtectedAddress(sqlite3_context* context, int count, sqlite3_value** values) {
    answer(context, count, values, [](const SiteFunctions& functions, Values given) {
        return functions.isProtected(textOf(given.front()));
    });
}

void md5OfText(sqlite3_context* context, int count, sqlite3_value** values) {
    answerOrFail(context, [&] {
        const Values given(values, static_cast<std::size_t>(count));
        const std::string digest = md5OfHost(std::string(textOf(given.front())));
        sqlite3_result_text(context, digest.c_str(), -1, SQLITE_TRANSIENT);
    });
}

// As SQLite counts: letters up to the first NUL; what cannot begin a letter counts as one.
std::int64_t lettersIn(const unsigned char* text) noexcept {
    std::int64_t count = 0;
    while (*text != 0) {
        const bool mayHaveMore = *text++ >= 0xC0;
        while (mayHaveMore && (*text & 0xC0U) == 0x80) {
            ++text;
        }
        ++count;
    }
    return count;
}

std::int64_t digitsOf(std::int64_t number) noexcept {
    std::int64_t count = number < 0 ? 2 : 1;
    for (number /= 10; number != 0; number /= 10) {
        ++count;
    }
    return count;
}

/** 0 of NULL, and of what memory does not suffice for. */
std::int64_t lengthOf(sqlite3_value* value) noexcept {
    switch (sqlite3_value_type(value)) {
        case SQLITE_NULL:
            return 0;
        case SQLITE_INTEGER:
            return digitsOf(sqlite3_value_int64(value));
        case SQLITE_TEXT: {
            const unsigned char* const text = sqlite3_value_text(value);
            return text == nullptr ? 0 : lettersIn(text);
        }
        default:
            return sqlite3_value_bytes(value);
    }
}

// One call for a row rather than two for each value; a number is not written down to be measured.
void lengths(sqlite3_context* context, int count, sqlite3_value** values) {
    std::int64_t sum = 0;
    for (sqlite3_value* const value : Values(values, static_cast<std::size_t>(count))) {
        sum += lengthOf(value);
    }
    sqlite3_result_int64(context, sum);
}

struct KnownFunction {
    const char* name;
    int argumentCount;  // negative: any
    void (*call)(sqlite3_context*, int, sqlite3_value**);
};

constexpr std::array<KnownFunction, 4> knownFunctions{{
    {"namesSite", -1, namesSite},
    {"isProtected", 1, isProtectedAddress},
    {"md5Of", 1, md5OfText},
    {"lengths", -1, lengths},
}};

}  // namespace

SiteFunctions::SiteFunctions(sqlite3* database, const SiteSelection& selection,
                             ProtectedAddresses protectedAddresses)
    : database_(database),
      matcher_(SiteSelection::only(selection.sites())),
      protectedAddresses_(std::move(protectedAddresses)) {
    for (const auto& [name, count, call] : knownFunctions) {
        const int code = sqlite3_create_function(
            database_, name, count, SQLITE_UTF8 | SQLITE_DIRECTONLY, this, call, nullptr, nullptr);
        if (code != SQLITE_OK) {
            throw SQLiteError(sqlite3_errmsg(database_), code);
        }
    }
}

SiteFunctions::~SiteFunctions() {
    for (const KnownFunction& known : knownFunctions) {
        sqlite3_create_function(database_, known.name, known.argumentCount, SQLITE_UTF8, nullptr,
                                nullptr, nullptr, nullptr);
    }
}

bool SiteFunctions::names(SiteForm form, std::string_view text) {
    return matcher_.selects(form, text);
}

bool SiteFunctions::isProtected(std::string_view address) const {
    return protectedAddresses_.contains(address);
}

}  // namespace browsersweep
