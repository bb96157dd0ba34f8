#include "tests/support/SampleHome.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <system_error>
#include <utility>

#include "browsersweep/catalogue/BrowserCleaners.h"
#include "browsersweep/profiles/chromium/ChromiumBasedProfileReader.h"

#include "tests/support/BinaryCookieFileBuilder.h"
#include "tests/support/FirefoxDatabases.h"
#include "tests/support/GuardedFileManager.h"

namespace browsersweep::tests {
namespace {

namespace fs = std::filesystem;

constexpr const char* localState = R"({"profile": {"info_cache": {
    "Default": {"name": "Me", "is_consented_primary_account": true}},
    "last_active_profiles": ["Default"]}})";

constexpr const char* chromiumBookmarks = R"({"roots": {"bookmark_bar": {"children": [
    {"name": "Kept", "url": "https://kept.example/"}], "name": "Bar"}}})";

constexpr const char* preferences = R"({"profile": {"content_settings": {"exceptions": {
    "notifications": {"https://push.example:443,*": {"setting": 1, "last_modified": "1"}}}}}})";

constexpr const char* profilesIni =
    "[Profile0]\nName=default\nIsRelative=1\n"
    "Path=Profiles/abc.default\nDefault=1\n";

constexpr const char* safariBookmarks = R"(<plist><dict><key>Children</key><array><dict>
    <key>URLString</key><string>https://kept.example/</string></dict></array></dict></plist>)";

constexpr const char* permissions = R"(<plist><dict><key>1</key><dict><key>Allowed Domains</key>
    <array><string>https://push.example/</string></array></dict></dict></plist>)";

/** A table of Chromium's with a column for the address (or host) and one for the time. */
struct ChromiumTable {
    std::string_view file;
    std::string_view table;
    std::string_view column;
};

// clang-format off
constexpr std::array<ChromiumTable, 9> chromiumTables{{
    {"Favicons",                 "favicons",                 "url"},
    {"Favicons",                 "icon_mapping",             "page_url"},
    {"History",                  "urls",                     "url"},
    {"History",                  "segments",                 "name"},
    {"History",                  "downloads",                "target_path"},
    {"Network Action Predictor", "network_action_predictor", "url"},
    {"Top Sites",                "top_sites",                "url"},
    {"Cookies",                  "cookies",                  "host_key"},
    {"Web Data",                 "autofill",                 "value"},
}};
// clang-format on

constexpr const char* preciousTable =
    "CREATE TABLE precious (text TEXT); INSERT INTO precious VALUES ('kept'), ('kept too');";

std::string chromiumTable(const ChromiumTable& row) {
    const std::string table(row.table);
    return "CREATE TABLE " + table + " (id INTEGER PRIMARY KEY, " + std::string(row.column) +
           " TEXT, last_visit_time INTEGER); INSERT INTO " + table + " VALUES " +
           "(1, 'https://one.example/', 13300000000000000),"
           "(2, 'https://two.test/', 13350000000000000), (3, 'three.example', 0);";
}

/** A log for tests, which must reach nothing outside. */
class SilentLog : public SystemLog {
public:
    void debug(std::string_view /*message*/) const noexcept override {}
};

void write(const fs::path& file, std::string_view contents) {
    fs::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << contents;
}

std::string contentsOf(const fs::directory_entry& entry) {
    if (entry.is_symlink()) {
        return "-> " + fs::read_symlink(entry.path()).string();
    }
    return entry.is_directory() ? "" : readFile(entry.path());
}

std::string folderOf(Browser browser) {
    const auto cleaner = browsersweep::cleaner(browser, FileManager::forHome("/nowhere"));
    const auto* reader = dynamic_cast<const ChromiumBasedProfileReader*>(&cleaner->profileReader());
    return reader == nullptr ? "" : reader->applicationSupportRelativePath().string();
}

/** What no clean may take out of a database. */
std::string preciousContents(const Database& database, std::string_view name) {
    std::string rows = database.text("SELECT group_concat(text) FROM precious");
    if (name.ends_with("places.sqlite")) {
        rows += database.text(
            "SELECT group_concat(b.title || p.url) FROM moz_bookmarks b "
            "JOIN moz_places p ON p.id = b.fk");
    }
    return rows;
}

constexpr std::string_view support = "Library/Application Support/";
constexpr std::string_view caches = "Library/Caches/";

}  // namespace

Files filesBelow(const fs::path& folder) {
    Files files;
    const std::size_t start = folder.native().size() + 1;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        std::string name = entry.path().native().substr(start);
        if (entry.is_directory() && !entry.is_symlink()) {
            name += "/";
        }
        files.emplace(std::move(name), contentsOf(entry));
    }
    return files;
}

std::vector<std::string> differences(const Files& before, const Files& after) {
    std::set<std::string> names;
    for (const auto& [name, contents] : before) {
        const auto found = after.find(name);
        if (found == after.end() || found->second != contents) {
            names.insert(name);
        }
    }
    for (const auto& [name, contents] : after) {
        if (before.find(name) == before.end()) {
            names.insert(name);
        }
    }
    return {names.begin(), names.end()};
}

SampleHome::SampleHome(std::span<const Browser> browsers) {
    fs::create_directory(temporaryFolder());
    precious("Documents/letter.txt", "Dear reader");
    precious("Documents/album/one.jpg", "picture");
    for (const Browser browser : browsers) {
        add(browser);
    }
    for (const std::string& name : databases_) {
        preciousRows_.emplace(name, preciousContents(Database(path() / name), name));
    }
    original_ = files();
}

void SampleHome::add(Browser browser) {
    if (browser == Browser::firefox) {
        addFirefox();
    } else if (browser == Browser::safari) {
        addSafari();
    } else {
        addChromium(folderOf(browser));
    }
}

void SampleHome::addChromium(std::string_view folder) {
    const std::string data = std::string(support).append(folder) + "/";
    const std::string profile = data + "Default/";
    precious(data + "Local State", localState);
    precious(profile + "Bookmarks", chromiumBookmarks);
    precious(profile + "Preferences", preferences);
    precious(profile + "Login Data", "passwords");
    selected(profile + "Sessions/Session_1", "session");
    selected(profile + "Sessions/Tabs_1", "tabs");
    selected(profile + "Local Storage/leveldb/1.ldb", "stored");
    selected(profile + "Pepper Data/Shockwave/1.sol", "flash");
    std::map<std::string, std::string> sql;
    for (const ChromiumTable& row : chromiumTables) {
        sql[std::string(row.file)] += chromiumTable(row);
    }
    for (const auto& [file, statements] : sql) {
        database(profile + file, statements + preciousTable);
    }
    precious(std::string(caches).append(folder) + "/other", "not in the profile's cache");
    addCacheTree(std::string(caches).append(folder) + "/Default/");
}

void SampleHome::addFirefox() {
    const std::string data = std::string(support) + "Firefox/";
    const std::string profile = data + "Profiles/abc.default/";
    precious(data + "profiles.ini", profilesIni);
    precious(profile + "logins.json", "passwords");
    precious(profile + "key4.db", "keys");
    makePlacesDatabase(path() / (profile + "places.sqlite"));
    database(profile + "places.sqlite", std::string(preciousTable) + R"(
        INSERT INTO moz_places (id, url, foreign_count, last_visit_date) VALUES
            (1, 'https://kept.example/', 1, 1600000000000000),
            (2, 'https://one.example/', 0, 1600000000000000), (3, 'http://two.test/', 0, NULL);
        INSERT INTO moz_historyvisits (id, place_id, visit_date) VALUES
            (1, 1, 1600000000000000), (2, 2, 1700000000000000);
        INSERT INTO moz_inputhistory VALUES (2, 'one', 1);
        INSERT INTO moz_keywords VALUES (1, 'k', 2, '');
        INSERT INTO moz_bookmarks (id, type, fk, title) VALUES (1, 1, 1, 'Kept');)");
    makeCookiesDatabase(path() / (profile + "cookies.sqlite"));
    database(profile + "cookies.sqlite", std::string(preciousTable) + R"(
        INSERT INTO moz_cookies (id, name, host) VALUES (1, 'a', '.one.example'),
            (2, 'b', 'two.test');)");
    makeFormHistoryDatabase(path() / (profile + "formhistory.sqlite"));
    database(profile + "formhistory.sqlite", std::string(preciousTable) + R"(
        INSERT INTO moz_formhistory (id, fieldname, value) VALUES (1, 'q', 'v');)");
    makeWebAppsStoreDatabase(path() / (profile + "webappsstore.sqlite"));
    database(profile + "webappsstore.sqlite", std::string(preciousTable) + R"(
        INSERT INTO webappsstore2 VALUES ('', 'elpmaxe.eno.:https:443', '', 'k', 'v');)");
    makePermissionsDatabase(path() / (profile + "permissions.sqlite"));
    database(profile + "permissions.sqlite", std::string(preciousTable) + R"(
        INSERT INTO moz_perms (id, origin, type, permission) VALUES
            (1, 'https://push.example', 'desktop-notification', 1);)");
    selected_.erase(profile + "permissions.sqlite");
    precious(std::string(caches) + "Firefox/Profiles/abc.default/startupCache/1", "start");
    addCacheTree(std::string(caches) + "Firefox/Profiles/abc.default/cache2/");
}

void SampleHome::addSafari() {
    const std::string safari = "Library/Safari/";
    precious(safari + "Bookmarks.plist", safariBookmarks);
    precious(safari + "RemoteNotifications/Permissions.plist", permissions);
    precious(safari + "TopSites.plist", "top sites");
    selected(safari + "LocalStorage/https_one.example_0.localstorage", "stored");
    database(safari + "History.db", std::string(preciousTable) + R"(
        CREATE TABLE history_items (id INTEGER PRIMARY KEY, url TEXT NOT NULL UNIQUE);
        CREATE TABLE history_visits (id INTEGER PRIMARY KEY, history_item INTEGER NOT NULL,
            visit_time REAL NOT NULL);
        INSERT INTO history_items VALUES (1, 'https://one.example/'), (2, 'http://two.test/');
        INSERT INTO history_visits VALUES (1, 1, 600000000.0), (2, 1, 700000000.0), (3, 2, 1.5);)");
    const Bytes cookies =
        cookieFile({cookiePage({CookieRecord{}.data(), CookieRecord{"two.test", "n"}.data()})},
                   emptyDictionary());
    const std::string text(cookies.begin(), cookies.end());
    selected("Library/Cookies/Cookies.binarycookies", text);
    precious("Library/Cookies/HSTS.plist", "hsts");
    const std::string container = "Library/Containers/com.apple.Safari/Data/Library/";
    selected(container + "Cookies/Cookies.binarycookies", text);
    addCacheTree(container + "Caches/com.apple.Safari/");
    addCacheTree(container + "Caches/WebKit/");
    addCacheTree(std::string(caches) + "com.apple.Safari/");
    precious(std::string(caches) + "com.apple.Mail/1", "mail");
}

void SampleHome::addCacheTree(const std::string& folder) {
    selected(folder + "index", "index");
    selected(folder + "entries/0/one", "one");
    selected(folder + "entries/0/.hidden", "hidden");
    selected(folder + "entries/1/two", "two");
    fs::create_directory(path() / (folder + "empty"));
    fs::create_directory_symlink(path() / "Documents", path() / (folder + "entries/link"));
    selected_.insert(folder + "entries/link");
}

void SampleHome::selected(const std::string& file, std::string_view contents) {
    write(path() / file, contents);
    selected_.insert(file);
}

void SampleHome::precious(const std::string& file, std::string_view contents) {
    write(path() / file, contents);
}

Database SampleHome::database(const std::string& file, const std::string& sql) {
    Database made(path() / file);
    made.execute("BEGIN;" + sql + "COMMIT;");
    // The smallest pages: small files are quick to copy and compare, and their trees are deep.
    made.execute("PRAGMA page_size = 512; VACUUM;");
    selected_.insert(file);
    databases_.insert(file);
    return made;
}

std::shared_ptr<const FileManager> SampleHome::fileManager() const {
    return GuardedFileManager::forFixture(folder_);
}

SystemServices SampleHome::services() {
    auto services = SystemServices::isolated();
    services.operatingSystemVersion = [] { return OperatingSystemVersion{12, 0, 0}; };
    services.systemLog = std::make_shared<SilentLog>();
    return services;
}

std::unique_ptr<const BrowserCleaner> SampleHome::cleaner(
    Browser browser, std::shared_ptr<const FileManager> fileManager) {
    return browsersweep::cleaner(browser, Home(std::move(fileManager)).withServices(services()));
}

Files SampleHome::files() const {
    Files all = filesBelow(path());
    std::erase_if(all, [](const auto& file) { return file.first.compare(0, 4, "tmp/") == 0; });
    return all;
}

std::vector<std::string> SampleHome::changes() const {
    return differences(original_, files());
}

void SampleHome::restore(const std::vector<std::string>& changed) const {
    for (const std::string& name : changed) {
        fs::remove_all(path() / name);
        const auto found = original_.find(name);
        if (found == original_.end()) {
            continue;
        }
        if (found->second.compare(0, 3, "-> ") == 0) {
            fs::create_directory_symlink(found->second.substr(3), path() / name);
        } else if (name.back() == '/') {
            fs::create_directories(path() / name);
        } else {
            write(path() / name, found->second);
        }
    }
    for (const auto& entry : fs::directory_iterator(temporaryFolder())) {
        fs::remove_all(entry.path());
    }
}

std::vector<std::string> SampleHome::harm(const std::vector<std::string>& changed) const {
    std::vector<std::string> found;
    for (const std::string& name : changed) {
        if (selected_.count(name) == 0) {
            found.push_back(name);
        } else if (databases_.count(name) == 1) {
            const std::string verdict = databaseHarm(name);
            if (!verdict.empty()) {
                found.push_back(std::string(name).append(": ").append(verdict));
            }
        }
    }
    return found;
}

std::string SampleHome::databaseHarm(const std::string& name) const {
    if (!fs::exists(path() / name)) {
        return "gone";
    }
    const Database opened(path() / name);
    std::string verdict = opened.text("PRAGMA integrity_check");
    if (verdict != "ok") {
        return verdict;
    }
    return preciousContents(opened, name) == preciousRows_.at(name) ? "" : "rows are lost";
}

}  // namespace browsersweep::tests
