"""The data of the Chromium-based browsers: two profiles each, as the browsers lay them out on macOS."""

import datetime
import json
import struct

from common import NEWEST, day_of, host_of, write_database

# Folder under Application Support and Caches, and whether the browser is an old one: old ones keep
# addresses in tables of their own and the data of Flash.
BROWSERS = (
    ("Quenby/Browser", True),
    ("TARROW Software/Browser", True),
    ("BraveSoftware/Brave-Browser", False),
    ("Chromium", False),
    ("Google/Chrome", False),
    ("Microsoft Edge", False),
    ("Orvo", True),
    ("Brellis/Browser", True),
    ("com.operasoftware.Opera", False),
    ("Vivaldi", False),
    ("Yandex/YandexBrowser", False),
)

# Folder, display name, and the share of PAGES that the profile has seen.
PROFILES = (("Default", "Personal", 1), ("Profile 1", "Work", 2))

HOSTS = ("www.example.com", "news.example.org", "shop.example.net", "mail.example.com")
PAGES = tuple(f"https://{host}/page/{number}" for number in range(1, 7) for host in HOSTS)
EPOCH = datetime.datetime(1601, 1, 1)

HISTORY = """
CREATE TABLE meta(key LONGVARCHAR NOT NULL UNIQUE PRIMARY KEY, value LONGVARCHAR);
CREATE TABLE urls(id INTEGER PRIMARY KEY AUTOINCREMENT, url LONGVARCHAR, title LONGVARCHAR,
    visit_count INTEGER DEFAULT 0 NOT NULL, typed_count INTEGER DEFAULT 0 NOT NULL,
    last_visit_time INTEGER NOT NULL, hidden INTEGER DEFAULT 0 NOT NULL);
CREATE TABLE visits(id INTEGER PRIMARY KEY AUTOINCREMENT, url INTEGER NOT NULL,
    visit_time INTEGER NOT NULL, from_visit INTEGER, external_referrer_url TEXT,
    transition INTEGER DEFAULT 0 NOT NULL, segment_id INTEGER,
    visit_duration INTEGER DEFAULT 0 NOT NULL);
CREATE TABLE segments(id INTEGER PRIMARY KEY, name VARCHAR, url_id INTEGER NON NULL);
CREATE TABLE segment_usage(id INTEGER PRIMARY KEY, segment_id INTEGER NOT NULL,
    time_slot INTEGER NOT NULL, visit_count INTEGER DEFAULT 0 NOT NULL);
CREATE TABLE keyword_search_terms(keyword_id INTEGER NOT NULL, url_id INTEGER NOT NULL,
    term LONGVARCHAR NOT NULL, normalized_term LONGVARCHAR NOT NULL);
CREATE TABLE downloads(id INTEGER PRIMARY KEY, guid VARCHAR NOT NULL,
    current_path LONGVARCHAR NOT NULL, target_path LONGVARCHAR NOT NULL,
    start_time INTEGER NOT NULL, received_bytes INTEGER NOT NULL, total_bytes INTEGER NOT NULL,
    state INTEGER NOT NULL, danger_type INTEGER NOT NULL, interrupt_reason INTEGER NOT NULL,
    hash BLOB NOT NULL, end_time INTEGER NOT NULL, opened INTEGER NOT NULL,
    last_access_time INTEGER NOT NULL, transient INTEGER NOT NULL, referrer VARCHAR NOT NULL,
    site_url VARCHAR NOT NULL, embedder_download_data VARCHAR NOT NULL, tab_url VARCHAR NOT NULL,
    tab_referrer_url VARCHAR NOT NULL, http_method VARCHAR NOT NULL, by_ext_id VARCHAR NOT NULL,
    by_ext_name VARCHAR NOT NULL, by_web_app_id VARCHAR NOT NULL, etag VARCHAR NOT NULL,
    last_modified VARCHAR NOT NULL, mime_type VARCHAR(255) NOT NULL,
    original_mime_type VARCHAR(255) NOT NULL);
CREATE TABLE downloads_url_chains(id INTEGER NOT NULL, chain_index INTEGER NOT NULL,
    url LONGVARCHAR NOT NULL, PRIMARY KEY(id, chain_index));
CREATE INDEX visits_url_index ON visits(url);
CREATE INDEX visits_time_index ON visits(visit_time);
CREATE INDEX segments_name ON segments(name);
CREATE INDEX urls_url_index ON urls(url);
INSERT INTO meta VALUES('version', '70'), ('last_compatible_version', '16');
"""

FAVICONS = """
CREATE TABLE meta(key LONGVARCHAR NOT NULL UNIQUE PRIMARY KEY, value LONGVARCHAR);
CREATE TABLE icon_mapping(id INTEGER PRIMARY KEY, page_url LONGVARCHAR NOT NULL, icon_id INTEGER,
    page_url_type INTEGER DEFAULT 0);
CREATE TABLE favicons(id INTEGER PRIMARY KEY, url LONGVARCHAR NOT NULL,
    icon_type INTEGER DEFAULT 1);
CREATE TABLE favicon_bitmaps(id INTEGER PRIMARY KEY, icon_id INTEGER NOT NULL,
    last_updated INTEGER DEFAULT 0, image_data BLOB, width INTEGER DEFAULT 0,
    height INTEGER DEFAULT 0, last_requested INTEGER DEFAULT 0);
CREATE INDEX icon_mapping_page_url_idx ON icon_mapping(page_url);
CREATE INDEX favicons_url ON favicons(url);
INSERT INTO meta VALUES('version', '9'), ('last_compatible_version', '9');
"""

TOP_SITES = """
CREATE TABLE meta(key LONGVARCHAR NOT NULL UNIQUE PRIMARY KEY, value LONGVARCHAR);
CREATE TABLE top_sites(url TEXT NOT NULL PRIMARY KEY, url_rank INTEGER NOT NULL,
    title TEXT NOT NULL);
INSERT INTO meta VALUES('version', '5'), ('last_compatible_version', '5');
"""

COOKIES = """
CREATE TABLE meta(key LONGVARCHAR NOT NULL UNIQUE PRIMARY KEY, value LONGVARCHAR);
CREATE TABLE cookies(creation_utc INTEGER NOT NULL, host_key TEXT NOT NULL,
    top_frame_site_key TEXT NOT NULL, name TEXT NOT NULL, value TEXT NOT NULL,
    encrypted_value BLOB NOT NULL, path TEXT NOT NULL, expires_utc INTEGER NOT NULL,
    is_secure INTEGER NOT NULL, is_httponly INTEGER NOT NULL, last_access_utc INTEGER NOT NULL,
    has_expires INTEGER NOT NULL, is_persistent INTEGER NOT NULL, priority INTEGER NOT NULL,
    samesite INTEGER NOT NULL, source_scheme INTEGER NOT NULL, source_port INTEGER NOT NULL,
    last_update_utc INTEGER NOT NULL, source_type INTEGER NOT NULL,
    has_cross_site_ancestor INTEGER NOT NULL);
CREATE UNIQUE INDEX cookies_unique_index ON cookies(host_key, top_frame_site_key,
    has_cross_site_ancestor, name, path, source_scheme, source_port);
INSERT INTO meta VALUES('version', '24'), ('last_compatible_version', '24');
"""

WEB_DATA = """
CREATE TABLE meta(key LONGVARCHAR NOT NULL UNIQUE PRIMARY KEY, value LONGVARCHAR);
CREATE TABLE autofill(name VARCHAR, value VARCHAR, value_lower VARCHAR,
    date_created INTEGER DEFAULT 0, date_last_used INTEGER DEFAULT 0, count INTEGER DEFAULT 1,
    PRIMARY KEY(name, value));
CREATE INDEX autofill_name ON autofill(name);
INSERT INTO meta VALUES('version', '92'), ('last_compatible_version', '92');
"""

WEB_DATA_OF_OLD_BROWSERS = """
CREATE TABLE autofill_profiles(guid VARCHAR PRIMARY KEY, company_name VARCHAR,
    street_address VARCHAR, dependent_locality VARCHAR, city VARCHAR, state VARCHAR,
    zipcode VARCHAR, sorting_code VARCHAR, country_code VARCHAR,
    date_modified INTEGER NOT NULL DEFAULT 0, origin VARCHAR DEFAULT '', language_code VARCHAR,
    use_count INTEGER NOT NULL DEFAULT 0, use_date INTEGER NOT NULL DEFAULT 0);
CREATE TABLE autofill_profile_names(guid VARCHAR, first_name VARCHAR, middle_name VARCHAR,
    last_name VARCHAR, full_name VARCHAR);
CREATE TABLE autofill_profile_emails(guid VARCHAR, email VARCHAR);
CREATE TABLE autofill_profile_phones(guid VARCHAR, number VARCHAR);
CREATE TABLE autofill_profile_addresses(guid VARCHAR, street_address VARCHAR, city VARCHAR,
    state VARCHAR, zip_code VARCHAR, country_code VARCHAR);
CREATE TABLE autofill_profiles_trash(guid VARCHAR);
INSERT INTO autofill_profiles(guid, city) VALUES('00000000-0000-4000-8000-000000000001', 'Vienna');
INSERT INTO autofill_profile_names
    VALUES('00000000-0000-4000-8000-000000000001', 'Ann', '', 'Example', 'Ann Example');
INSERT INTO autofill_profile_emails
    VALUES('00000000-0000-4000-8000-000000000001', 'ann@example.com');
INSERT INTO autofill_profile_phones VALUES('00000000-0000-4000-8000-000000000001', '+43 1 5550100');
"""

PREDICTOR = """
CREATE TABLE network_action_predictor(id TEXT PRIMARY KEY, user_text TEXT, url TEXT,
    number_of_hits INTEGER, number_of_misses INTEGER);
"""


def chromium_time(moment):
    """Microseconds since 1601, which is how these browsers store a time."""
    return (moment - EPOCH) // datetime.timedelta(microseconds=1)


def write_json(path, value):
    path.write_text(json.dumps(value, indent=3, ensure_ascii=False), encoding="utf-8")


def download_row(number, page):
    moment = chromium_time(day_of(number))
    name = f"/Users/sample/Downloads/report-{number}.pdf"
    columns = {
        "id": number,
        "guid": f"00000000-0000-4000-8000-{number:012d}",
        "current_path": name,
        "target_path": name,
        "start_time": moment,
        "received_bytes": 4096,
        "total_bytes": 4096,
        "state": 1,
        "danger_type": 0,
        "interrupt_reason": 0,
        "hash": b"",
        "end_time": moment + 1_000_000,
        "opened": 0,
        "last_access_time": 0,
        "transient": 0,
        "tab_url": page,
        "http_method": "GET",
        "mime_type": "application/pdf",
        "original_mime_type": "application/pdf",
    }
    empty = "referrer site_url embedder_download_data tab_referrer_url by_ext_id by_ext_name"
    empty += " by_web_app_id etag last_modified"
    columns.update({name: "" for name in empty.split()})
    return columns


def write_history(folder, pages):
    urls = [
        (number, page, f"Page {number}", 2, 1, chromium_time(day_of(number)))
        for number, page in enumerate(pages, 1)
    ]
    hosts = sorted({host_of(page) for page in pages})
    downloads = [download_row(number, page) for number, page in enumerate(pages[:2], 1)]
    write_database(
        folder / "History",
        HISTORY,
        {
            "urls": (("id", "url", "title", "visit_count", "typed_count", "last_visit_time"), urls),
            "visits": (("url", "visit_time"), [(row[0], row[5]) for row in urls]),
            "segments": (
                ("name", "url_id"),
                [(f"http://{host}/", number) for number, host in enumerate(hosts, 1)],
            ),
            "downloads": (tuple(downloads[0]), [tuple(row.values()) for row in downloads]),
        },
    )


def write_icons(folder, pages):
    hosts = sorted({host_of(page) for page in pages})
    icons = {host: number for number, host in enumerate(hosts, 1)}
    write_database(
        folder / "Favicons",
        FAVICONS,
        {
            "favicons": (
                ("id", "url"),
                [(number, f"https://{host}/favicon.ico") for host, number in icons.items()],
            ),
            "icon_mapping": (
                ("page_url", "icon_id"),
                [(page, icons[host_of(page)]) for page in pages],
            ),
            "favicon_bitmaps": (
                ("icon_id", "image_data", "width", "height"),
                [(number, bytes(64), 16, 16) for number in icons.values()],
            ),
        },
    )


def cookie_row(host, name):
    moment = chromium_time(NEWEST)
    expires = chromium_time(NEWEST + datetime.timedelta(days=3650))
    head = (moment, "." + host, "", name, "value", b"", "/", expires, 1, 0, moment)
    return head + (1, 1, 1, 0, 2, 443, moment, 0, 0)


def write_small_databases(folder, pages, old):
    hosts = sorted({host_of(page) for page in pages})
    write_database(
        folder / "Top Sites",
        TOP_SITES,
        {
            "top_sites": (
                ("url", "url_rank", "title"),
                [(f"https://{host}/", rank, host) for rank, host in enumerate(hosts)],
            )
        },
    )
    columns = COOKIES.split("TABLE cookies(")[1].split(");")[0].split(",")
    names = tuple(column.split()[0] for column in columns)
    rows = [cookie_row(host, name) for host in hosts for name in ("session", "theme")]
    write_database(folder / "Cookies", COOKIES, {"cookies": (names, rows)})
    form = [("email", "ann@example.com"), ("city", "Vienna"), ("query", "tea pots")]
    write_database(
        folder / "Web Data",
        WEB_DATA + (WEB_DATA_OF_OLD_BROWSERS if old else ""),
        {"autofill": (("name", "value", "value_lower"), [(n, v, v.lower()) for n, v in form])},
    )
    guesses = [(str(number), "exa", page, 2, 0) for number, page in enumerate(pages[:3])]
    write_database(
        folder / "Network Action Predictor",
        PREDICTOR,
        {
            "network_action_predictor": (
                ("id", "user_text", "url", "number_of_hits", "number_of_misses"),
                guesses,
            )
        },
    )


def bookmark(name, url):
    return {"type": "url", "name": name, "url": url}


def bookmark_folder(name, children):
    return {"type": "folder", "name": name, "children": children}


def write_documents(folder, name):
    bar = [
        bookmark("Example", "https://www.example.com/"),
        bookmark_folder("Reading", [bookmark(f"News of {name}", "https://news.example.org/")]),
    ]
    roots = {
        "bookmark_bar": bookmark_folder("Bookmarks bar", bar),
        "other": bookmark_folder("Other bookmarks", []),
        "synced": bookmark_folder("Mobile bookmarks", []),
    }
    write_json(folder / "Bookmarks", {"checksum": "", "roots": roots, "version": 1})
    stamp = str(chromium_time(NEWEST))
    notifications = {
        "https://mail.example.com:443,*": {"last_modified": stamp, "setting": 1},
        "https://shop.example.net:443,*": {"last_modified": stamp, "setting": 2},
    }
    exceptions = {"notifications": notifications}
    profile = {"name": name, "content_settings": {"exceptions": exceptions}}
    write_json(folder / "Preferences", {"profile": profile})


def write_file(path, size):
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(bytes(size))


def crc32c(data):
    """The checksum of LevelDB's logs, of Castagnoli's polynomial."""
    sum_so_far = 0xFFFFFFFF
    for byte in data:
        sum_so_far ^= byte
        for _ in range(8):
            sum_so_far = (sum_so_far >> 1) ^ (0x82F63B78 if sum_so_far & 1 else 0)
    return sum_so_far ^ 0xFFFFFFFF


def leveldb_record(contents):
    """A whole record of a log: its masked checksum, its length and that it is whole."""
    sum_of_all = crc32c(b"\1" + contents)
    masked = ((sum_of_all >> 15 | sum_of_all << 17) + 0xA282EAD8) & 0xFFFFFFFF
    return struct.pack("<IHB", masked, len(contents), 1) + contents


def write_leveldb(folder):
    """A database without a record. What follows in a file is room that was reserved."""
    numbers = {2: 3, 3: 4, 4: 0}  # the log's number, the next file's, the last change's
    manifest = leveldb_record(bytes(byte for pair in numbers.items() for byte in pair))
    write_file(folder / "000003.log", 4096)
    write_file(folder / "LOCK", 0)
    (folder / "MANIFEST-000001").write_bytes(manifest.ljust(23, b"\0"))
    (folder / "CURRENT").write_text("MANIFEST-000001\n", encoding="ascii")


def write_folders(folder, cache, old):
    for name in ("Session_13363718400000001", "Tabs_13363718400000002"):
        write_file(folder / "Sessions" / name, 2048)
    write_leveldb(folder / "Local Storage" / "leveldb")
    if old:
        flash = folder / "Pepper Data" / "Shockwave Flash" / "WritableRoot" / "#SharedObjects"
        write_file(flash / "A1B2C3D4" / "www.example.com" / "settings.sol", 220)
    for number in range(1, 25):
        write_file(cache / "Cache" / "Cache_Data" / f"{number:016x}_0", 1000 * number)
    for number in range(1, 7):
        write_file(cache / "Code Cache" / "js" / f"{number:016x}_0", 5000)


def write_local_state(folder):
    info = {
        profile: {"is_consented_primary_account": False, "name": name}
        for profile, name, _ in PROFILES
    }
    state = {"info_cache": info, "last_active_profiles": ["Default"], "last_used": "Default"}
    write_json(folder / "Local State", {"profile": state})


def make_browser(home, relative_path, old):
    folder = home / "Library" / "Application Support" / relative_path
    for profile, name, step in PROFILES:
        inner = folder / profile
        inner.mkdir(parents=True)
        pages = PAGES[::step]
        write_history(inner, pages)
        write_icons(inner, pages)
        write_small_databases(inner, pages, old)
        write_documents(inner, name)
        write_folders(inner, home / "Library" / "Caches" / relative_path / profile, old)
    write_local_state(folder)


def make(home):
    for relative_path, old in BROWSERS:
        make_browser(home, relative_path, old)
