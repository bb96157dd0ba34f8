#include <filesystem>
#include <stdexcept>
#include <string>
#include <system_error>

#include <gtest/gtest.h>
#include <sqlite3.h>

#include "browsersweep/binarycoding/BinaryDecodingError.h"
#include "browsersweep/documents/DecodingError.h"
#include "browsersweep/sqlite/SQLiteError.h"

#include "cli/ErrorText.h"

namespace browsersweep::cli {
namespace {

std::string ofFile(std::errc code) {
    const auto text = errorText(std::filesystem::filesystem_error("m", std::make_error_code(code)));
    return text.substr(0, text.find(':'));
}

TEST(ErrorText, saysWhatKindOfFailureItIs) {
    EXPECT_EQ(ofFile(std::errc::permission_denied), "no permission");
    EXPECT_EQ(ofFile(std::errc::operation_not_permitted), "no permission");
    EXPECT_EQ(ofFile(std::errc::no_such_file_or_directory), "nothing there");
    EXPECT_EQ(errorText(SQLiteError("database is locked", SQLITE_BUSY)),
              "locked by a running browser: database is locked");
    EXPECT_EQ(errorText(SQLiteError("unable to open database file", SQLITE_CANTOPEN)),
              "no permission: unable to open database file");
    EXPECT_EQ(errorText(SQLiteError("bad parameter or other API misuse", SQLITE_CANTOPEN)),
              "no permission: bad parameter or other API misuse");
    EXPECT_EQ(errorText(SQLiteError("file is not a database", SQLITE_NOTADB)),
              "not understood: file is not a database");
    EXPECT_EQ(errorText(SQLiteError("database disk image is malformed", SQLITE_CORRUPT)),
              "not understood: database disk image is malformed");
    EXPECT_EQ(errorText(BinaryDecodingError::dataCorrupted("no cookies")),
              "not understood: no cookies");
    EXPECT_EQ(errorText(DecodingError(DecodingError::Kind::dataCorrupted, "no list", {"a"})),
              "not understood: no list (at a)");
}

TEST(ErrorText, looksAtTheCodesOfSQLiteAndNotAtItsWords) {
    EXPECT_EQ(errorText(SQLiteError("anything", SQLITE_BUSY)),
              "locked by a running browser: anything");
    EXPECT_EQ(errorText(SQLiteError("no such column: locked", SQLITE_ERROR)),
              "not understood: no such column: locked");
    EXPECT_EQ(errorText(SQLiteError("malformed", SQLITE_NOMEM)), "malformed");
}

TEST(ErrorText, keepsAnErrorOfNoSuchKindAsItIs) {
    EXPECT_EQ(errorText(SQLiteError("disk I/O error", SQLITE_IOERR)), "disk I/O error");
    EXPECT_EQ(errorText(std::runtime_error("else")), "else");
    EXPECT_EQ(errorText(SQLiteError(std::nullopt)), "an error without a message");
}

TEST(ErrorText, tellsAMissingPermissionFromOtherFailures) {
    EXPECT_TRUE(saysNoPermission(errorText(SQLiteError("authorization denied", SQLITE_AUTH))));
    EXPECT_TRUE(saysNoPermission(ofFile(std::errc::operation_not_permitted)));
    EXPECT_FALSE(saysNoPermission(errorText(SQLiteError("database is locked", SQLITE_BUSY))));
    EXPECT_FALSE(saysNoPermission(errorText(std::runtime_error("there is no permission"))));
}

TEST(ErrorText, isOneLineOfUTF8) {
    EXPECT_EQ(errorText(std::runtime_error("a\nb\xFF")), "a�b�");
}

}  // namespace
}  // namespace browsersweep::cli
