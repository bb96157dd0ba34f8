"""What Chromium writes for what no protocol can do, such as typing at the address bar, and for what takes it
days of use. Rows are added to the databases of a closed browser that has made them itself."""

from __future__ import annotations

import contextlib
import sqlite3
from pathlib import Path

import plyvel

from planted import FRAME, GONE, KEPT, MARKED, Site

NOW = 13_439_821_254_805_914


def message(text: str) -> bytes:
    """A protocol buffer whose first field is this text."""
    return b"\x0a" + bytes([len(text)]) + text.encode()


def typed(site: Site) -> tuple:
    address = f"{site.host}/{site.marker('typd')}"
    return (
        ("Shortcuts", "omni_box_shortcuts", {
            "id": site.word, "text": site.marker("typd"), "fill_into_edit": address,
            "url": f"{site.scheme}://{address}", "document_type": 0, "contents": address,
            "contents_class": "0,1", "description": site.marker("titl"), "description_class": "0,0",
            "transition": 1, "type": 1, "keyword": "", "last_access_time": NOW, "number_of_hits": 1}),
        ("Network Action Predictor", "network_action_predictor", {
            "id": site.word, "user_text": site.marker("typd"), "url": site.bookmark,
            "number_of_hits": 1, "number_of_misses": 0}),
        ("Top Sites", "top_sites", {
            "url": site.bookmark, "url_rank": ord(site.word[0]), "title": site.marker("titl")}),
    )


def predicted(site: Site) -> tuple:
    return tuple(
        ("Network Action Predictor", table, {"key": site.host, "proto": message(site.origin)})
        for table in ("resource_prefetch_predictor_host_redirect", "resource_prefetch_predictor_origin",
                      "lcp_critical_path_predictor", "lcp_critical_path_predictor_initiator_origin")
    ) + (
        ("heavy_ad_intervention_opt_out.db", "previews_v1", {
            "host_name": site.host, "time": NOW, "opt_out": 0, "type": 0}),
        ("Trust Tokens", "trust_tokens_issuer_config", {
            "key": site.origin, "proto": message(site.origin)}),
        ("Trust Tokens", "trust_tokens_toplevel_config", {
            "key": site.origin, "proto": message(site.origin)}),
        ("DIPS", "popups", {
            "opener_site": site.registrable, "popup_site": FRAME.registrable, "access_id": 1,
            "last_popup_time": NOW, "is_current_interaction": 1, "is_authentication_interaction": 0}),
    )


def of_visits(site: Site, number: int, visit: int) -> tuple:
    """What depends on an address and on a visit of it."""
    return (
        ("History", "keyword_search_terms", {
            "keyword_id": 2, "url_id": number, "term": site.marker("srch"),
            "normalized_term": site.marker("srch")}),
        ("History", "clusters", {
            "cluster_id": visit, "should_show_on_prominent_ui_surfaces": 1, "label": site.marker("titl"),
            "raw_label": site.marker("titl"), "triggerability_calculated": 1,
            "originator_cache_guid": "", "originator_cluster_id": 0}),
        ("History", "clusters_and_visits", {
            "cluster_id": visit, "visit_id": visit, "url_for_deduping": site.bookmark,
            "normalized_url": site.bookmark, "url_for_display": site.host}),
        ("History", "cluster_keywords", {
            "cluster_id": visit, "keyword": site.marker("titl"), "type": 1, "score": 1,
            "collections": ""}),
        ("History", "content_annotations", {
            "visit_id": visit, "annotation_flags": 0, "related_searches": site.marker("srch"),
            "search_normalized_url": site.bookmark, "search_terms": site.marker("srch"),
            "alternative_title": site.marker("titl"), "has_url_keyed_image": 0}),
    )


def add_row(folder: Path, name: str, table: str, values: dict) -> None:
    with contextlib.closing(sqlite3.connect(folder / name)) as database, database:
        database.execute(f"INSERT OR REPLACE INTO {table} ({','.join(values)})"
                         f" VALUES ({','.join('?' * len(values))})", tuple(values.values()))


def visit_of(folder: Path, site: Site) -> tuple[int, int]:
    with contextlib.closing(sqlite3.connect(folder / "History")) as database:
        return database.execute("SELECT urls.id, visits.id FROM urls JOIN visits ON visits.url = urls.id"
                                " WHERE urls.url = ?", (site.bookmark,)).fetchone()


def add_search_engine(folder: Path) -> None:
    """As the settings do; the rest of the row is that of another search engine."""
    with contextlib.closing(sqlite3.connect(folder / "Web Data")) as database, database:
        database.execute("CREATE TEMP TABLE made AS SELECT * FROM keywords LIMIT 1")
        database.execute("UPDATE made SET id = (SELECT MAX(id) + 1 FROM keywords), prepopulate_id = 0,"
                         " short_name = 'planted', keyword = 'planted', url = ?, sync_guid = 'planted'",
                         (f"{MARKED.origin}/find?q={{searchTerms}}",))
        database.execute("INSERT INTO keywords SELECT * FROM made")


def add_files(folder: Path) -> None:
    """Files that know no site, and databases of those who wait for an occasion."""
    addresses = "\n".join(site.bookmark for site in (GONE, KEPT)).encode()
    for name in ("Visited Links", "SCT Auditing Pending Reports", "blob_storage/planted/0"):
        (folder / name).parent.mkdir(exist_ok=True)
        (folder / name).write_bytes(addresses)
    for name in ("BudgetDatabase", "Download Service/EntryDB"):
        with contextlib.closing(plyvel.DB(str(folder / name), create_if_missing=True)) as database:
            for site in (GONE, KEPT):
                database.put(site.origin.encode(), message(site.bookmark))


def add_rows(folder: Path) -> None:
    for site in (GONE, KEPT):
        rows = (*typed(site), *predicted(site), *of_visits(site, *visit_of(folder, site)))
        for name, table, values in rows:
            add_row(folder, name, table, values)
    add_search_engine(folder)
    add_files(folder)
