#include "tests/support/ChromiumSchemas.h"

#include <map>
#include <string>

namespace browsersweep::tests {
namespace {

// As Chromium 156 makes them, with tables of older versions beside them.
const std::map<std::string, std::string> schemas{
    {"History", R"sql(
CREATE TABLE meta(key LONGVARCHAR NOT NULL UNIQUE PRIMARY KEY, value LONGVARCHAR);
CREATE TABLE urls(id INTEGER PRIMARY KEY AUTOINCREMENT,url LONGVARCHAR,title
  LONGVARCHAR,visit_count INTEGER DEFAULT 0 NOT NULL,typed_count INTEGER DEFAULT 0 NOT
  NULL,last_visit_time INTEGER NOT NULL,hidden INTEGER DEFAULT 0 NOT NULL);
CREATE TABLE visits(id INTEGER PRIMARY KEY AUTOINCREMENT,url INTEGER NOT NULL,visit_time INTEGER
  NOT NULL,from_visit INTEGER,external_referrer_url TEXT,transition INTEGER DEFAULT 0 NOT
  NULL,segment_id INTEGER,visit_duration INTEGER DEFAULT 0 NOT
  NULL,incremented_omnibox_typed_score BOOLEAN DEFAULT FALSE NOT NULL,opener_visit
  INTEGER,originator_cache_guid TEXT,originator_visit_id INTEGER,originator_from_visit
  INTEGER,originator_opener_visit INTEGER,is_known_to_sync BOOLEAN DEFAULT FALSE NOT
  NULL,consider_for_ntp_most_visited BOOLEAN DEFAULT FALSE NOT NULL,visited_link_id INTEGER
  DEFAULT 0 NOT NULL,app_id TEXT);
CREATE TABLE visit_source(id INTEGER PRIMARY KEY,source INTEGER NOT NULL);
CREATE TABLE keyword_search_terms (keyword_id INTEGER NOT NULL,url_id INTEGER NOT NULL,term
  LONGVARCHAR NOT NULL,normalized_term LONGVARCHAR NOT NULL);
CREATE TABLE downloads (id INTEGER PRIMARY KEY,guid VARCHAR NOT NULL,current_path LONGVARCHAR
  NOT NULL,target_path LONGVARCHAR NOT NULL,start_time INTEGER NOT NULL,received_bytes INTEGER
  NOT NULL,total_bytes INTEGER NOT NULL,state INTEGER NOT NULL,danger_type INTEGER NOT
  NULL,interrupt_reason INTEGER NOT NULL,hash BLOB NOT NULL,end_time INTEGER NOT NULL,opened
  INTEGER NOT NULL,last_access_time INTEGER NOT NULL,transient INTEGER NOT NULL,referrer VARCHAR
  NOT NULL,site_url VARCHAR NOT NULL,embedder_download_data VARCHAR NOT NULL,tab_url VARCHAR NOT
  NULL,tab_referrer_url VARCHAR NOT NULL,http_method VARCHAR NOT NULL,by_ext_id VARCHAR NOT
  NULL,by_ext_name VARCHAR NOT NULL,by_web_app_id VARCHAR NOT NULL,etag VARCHAR NOT
  NULL,last_modified VARCHAR NOT NULL,mime_type VARCHAR(255) NOT NULL,original_mime_type
  VARCHAR(255) NOT NULL);
CREATE TABLE downloads_url_chains (id INTEGER NOT NULL,chain_index INTEGER NOT NULL,url
  LONGVARCHAR NOT NULL, PRIMARY KEY (id, chain_index) );
CREATE TABLE downloads_slices (download_id INTEGER NOT NULL,offset INTEGER NOT
  NULL,received_bytes INTEGER NOT NULL,finished INTEGER NOT NULL DEFAULT 0,PRIMARY KEY
  (download_id, offset) );
CREATE TABLE segments (id INTEGER PRIMARY KEY,name VARCHAR,url_id INTEGER NON NULL);
CREATE TABLE segment_usage (id INTEGER PRIMARY KEY,segment_id INTEGER NOT NULL,time_slot INTEGER
  NOT NULL,visit_count INTEGER DEFAULT 0 NOT NULL);
CREATE TABLE content_annotations(visit_id INTEGER PRIMARY KEY,visibility_score
  NUMERIC,floc_protected_score NUMERIC,categories VARCHAR,page_topics_model_version
  INTEGER,annotation_flags INTEGER NOT NULL,entities VARCHAR,related_searches
  VARCHAR,search_normalized_url VARCHAR,search_terms LONGVARCHAR,alternative_title
  VARCHAR,page_language VARCHAR,password_state INTEGER DEFAULT 0 NOT NULL,has_url_keyed_image
  BOOLEAN NOT NULL);
CREATE TABLE context_annotations(visit_id INTEGER PRIMARY KEY,context_annotation_flags INTEGER
  NOT NULL,duration_since_last_visit INTEGER,page_end_reason INTEGER,total_foreground_duration
  INTEGER,browser_type INTEGER DEFAULT 0 NOT NULL,window_id INTEGER DEFAULT -1 NOT NULL,tab_id
  INTEGER DEFAULT -1 NOT NULL,task_id INTEGER DEFAULT -1 NOT NULL,root_task_id INTEGER DEFAULT
  -1 NOT NULL,parent_task_id INTEGER DEFAULT -1 NOT NULL,response_code INTEGER DEFAULT 0 NOT
  NULL);
CREATE TABLE clusters(cluster_id INTEGER PRIMARY KEY
  AUTOINCREMENT,should_show_on_prominent_ui_surfaces BOOLEAN NOT NULL,label VARCHAR NOT
  NULL,raw_label VARCHAR NOT NULL,triggerability_calculated BOOLEAN NOT
  NULL,originator_cache_guid TEXT NOT NULL,originator_cluster_id INTEGER NOT NULL);
CREATE TABLE clusters_and_visits(cluster_id INTEGER NOT NULL,visit_id INTEGER NOT NULL,score
  NUMERIC DEFAULT 0 NOT NULL,engagement_score NUMERIC DEFAULT 0 NOT NULL,url_for_deduping
  LONGVARCHAR NOT NULL,normalized_url LONGVARCHAR NOT NULL,url_for_display LONGVARCHAR NOT
  NULL,interaction_state INTEGER DEFAULT 0 NOT NULL,PRIMARY KEY(cluster_id,visit_id))WITHOUT
  ROWID;
CREATE TABLE cluster_keywords(cluster_id INTEGER NOT NULL,keyword VARCHAR NOT NULL,type INTEGER
  NOT NULL,score NUMERIC NOT NULL,collections VARCHAR NOT NULL);
CREATE TABLE cluster_visit_duplicates(visit_id INTEGER NOT NULL,duplicate_visit_id INTEGER NOT
  NULL,PRIMARY KEY(visit_id,duplicate_visit_id))WITHOUT ROWID;
CREATE TABLE visited_links(id INTEGER PRIMARY KEY AUTOINCREMENT,link_url_id INTEGER NOT
  NULL,top_level_url LONGVARCHAR NOT NULL,frame_url LONGVARCHAR NOT NULL,visit_count INTEGER
  DEFAULT 0 NOT NULL);
CREATE TABLE history_sync_metadata (storage_key INTEGER PRIMARY KEY NOT NULL, value BLOB);
CREATE TABLE journeys (journey_id TEXT PRIMARY KEY NOT NULL, title TEXT NOT NULL, emoji TEXT,
  overview TEXT, short_overview TEXT, creation_time_micros INTEGER NOT NULL);
CREATE TABLE journey_history_entries (journey_id TEXT NOT NULL, visit_timestamp_micros INTEGER
  NOT NULL, PRIMARY KEY (journey_id, visit_timestamp_micros)) WITHOUT ROWID;
CREATE TABLE journey_continuation_queries (id INTEGER PRIMARY KEY, journey_id TEXT NOT NULL,
  title TEXT NOT NULL, prompt TEXT NOT NULL);
CREATE TABLE journey_sync_metadata (storage_key TEXT PRIMARY KEY NOT NULL, value BLOB NOT NULL);
CREATE INDEX visits_url_index ON visits (url);
CREATE INDEX visits_from_index ON visits (from_visit);
CREATE INDEX visits_time_index ON visits (visit_time);
CREATE INDEX visits_originator_id_index ON visits (originator_visit_id);
CREATE INDEX keyword_search_terms_index1 ON keyword_search_terms (keyword_id, normalized_term);
CREATE INDEX keyword_search_terms_index2 ON keyword_search_terms (url_id);
CREATE INDEX keyword_search_terms_index3 ON keyword_search_terms (term);
CREATE INDEX segments_name ON segments(name);
CREATE INDEX segments_url_id ON segments(url_id);
CREATE INDEX segment_usage_time_slot_segment_id ON segment_usage(time_slot, segment_id);
CREATE INDEX segments_usage_seg_id ON segment_usage(segment_id);
CREATE INDEX clusters_for_visit ON clusters_and_visits(visit_id);
CREATE INDEX cluster_keywords_cluster_id_index ON cluster_keywords(cluster_id);
CREATE INDEX visited_links_index ON visited_links (link_url_id, top_level_url, frame_url);
CREATE INDEX journeys_creation_time_idx ON journeys (creation_time_micros);
CREATE INDEX journey_history_entries_timestamp_idx ON journey_history_entries
  (visit_timestamp_micros);
CREATE INDEX journey_continuation_queries_journey_id_idx ON journey_continuation_queries
  (journey_id);
CREATE INDEX urls_url_index ON urls (url);
)sql"},
    {"Favicons", R"sql(
PRAGMA page_size = 2048;
CREATE TABLE meta(key LONGVARCHAR NOT NULL UNIQUE PRIMARY KEY, value LONGVARCHAR);
CREATE TABLE icon_mapping(id INTEGER PRIMARY KEY,page_url LONGVARCHAR NOT NULL,icon_id
  INTEGER,page_url_type INTEGER DEFAULT 0);
CREATE TABLE favicons(id INTEGER PRIMARY KEY,url LONGVARCHAR NOT NULL,icon_type INTEGER DEFAULT
  1);
CREATE TABLE favicon_bitmaps(id INTEGER PRIMARY KEY,icon_id INTEGER NOT NULL,last_updated
  INTEGER DEFAULT 0,image_data BLOB,width INTEGER DEFAULT 0,height INTEGER DEFAULT
  0,last_requested INTEGER DEFAULT 0);
CREATE INDEX icon_mapping_page_url_idx ON icon_mapping(page_url);
CREATE INDEX icon_mapping_icon_id_idx ON icon_mapping(icon_id);
CREATE INDEX favicons_url ON favicons(url);
CREATE INDEX favicon_bitmaps_icon_id ON favicon_bitmaps(icon_id);
)sql"},
    {"Network Action Predictor", R"sql(
CREATE TABLE network_action_predictor(id TEXT PRIMARY KEY, user_text TEXT, url TEXT,
  number_of_hits INTEGER, number_of_misses INTEGER);
CREATE TABLE resource_prefetch_predictor_metadata ( key TEXT, value INTEGER, PRIMARY KEY (key));
CREATE TABLE resource_prefetch_predictor_host_redirect ( key TEXT, proto BLOB, PRIMARY KEY(key));
CREATE TABLE resource_prefetch_predictor_origin ( key TEXT, proto BLOB, PRIMARY KEY(key));
CREATE TABLE lcp_critical_path_predictor ( key TEXT, proto BLOB, PRIMARY KEY(key));
CREATE TABLE lcp_critical_path_predictor_initiator_origin ( key TEXT, proto BLOB, PRIMARY
  KEY(key));
CREATE TABLE resource_prefetch_predictor_url (key TEXT, proto BLOB, PRIMARY KEY(key));
CREATE TABLE resource_prefetch_predictor_url_redirect (key TEXT, proto BLOB, PRIMARY KEY(key));
CREATE TABLE resource_prefetch_predictor_host (key TEXT, proto BLOB, PRIMARY KEY(key));
CREATE TABLE resource_prefetch_predictor_manifest (key TEXT, proto BLOB, PRIMARY KEY(key));
)sql"},
    {"Top Sites", R"sql(
CREATE TABLE meta(key LONGVARCHAR NOT NULL UNIQUE PRIMARY KEY, value LONGVARCHAR);
CREATE TABLE top_sites(url TEXT NOT NULL PRIMARY KEY,url_rank INTEGER NOT NULL,title TEXT NOT
  NULL);
CREATE TABLE thumbnails (url LONGVARCHAR PRIMARY KEY, url_rank INTEGER, title LONGVARCHAR,
  thumbnail BLOB, last_updated INTEGER DEFAULT 0);
)sql"},
    {"Shortcuts", R"sql(
CREATE TABLE meta(key LONGVARCHAR NOT NULL UNIQUE PRIMARY KEY, value LONGVARCHAR);
CREATE TABLE omni_box_shortcuts(id VARCHAR PRIMARY KEY,text VARCHAR,fill_into_edit VARCHAR,url
  VARCHAR,document_type INTEGER,contents VARCHAR,contents_class VARCHAR,description
  VARCHAR,description_class VARCHAR,transition INTEGER,type INTEGER,keyword
  VARCHAR,last_access_time INTEGER,number_of_hits INTEGER);
)sql"},
    {"Cookies", R"sql(
CREATE TABLE meta(key LONGVARCHAR NOT NULL UNIQUE PRIMARY KEY, value LONGVARCHAR);
CREATE TABLE cookies(creation_utc INTEGER NOT NULL,host_key TEXT NOT NULL,top_frame_site_key
  TEXT NOT NULL,name TEXT NOT NULL,value TEXT NOT NULL,encrypted_value BLOB NOT NULL,path TEXT
  NOT NULL,expires_utc INTEGER NOT NULL,is_secure INTEGER NOT NULL,is_httponly INTEGER NOT
  NULL,last_access_utc INTEGER NOT NULL,has_expires INTEGER NOT NULL,is_persistent INTEGER NOT
  NULL,priority INTEGER NOT NULL,samesite INTEGER NOT NULL,source_scheme INTEGER NOT
  NULL,source_port INTEGER NOT NULL,last_update_utc INTEGER NOT NULL,source_type INTEGER NOT
  NULL,has_cross_site_ancestor INTEGER NOT NULL);
CREATE UNIQUE INDEX cookies_unique_index ON cookies(host_key, top_frame_site_key,
  has_cross_site_ancestor, name, path, source_scheme, source_port);
)sql"},
    {"Web Data", R"sql(
PRAGMA page_size = 2048;
CREATE TABLE meta(key LONGVARCHAR NOT NULL UNIQUE PRIMARY KEY, value LONGVARCHAR);
CREATE TABLE autocomplete (name VARCHAR, label VARCHAR, label_normalized VARCHAR, value VARCHAR,
  value_lower VARCHAR, date_created INTEGER DEFAULT 0, date_last_used INTEGER DEFAULT 0, count
  INTEGER DEFAULT 1, PRIMARY KEY (name, label, value));
CREATE TABLE autofill (name VARCHAR, value VARCHAR, value_lower VARCHAR, date_created INTEGER
  DEFAULT 0, date_last_used INTEGER DEFAULT 0, count INTEGER DEFAULT 1, PRIMARY KEY (name,
  value));
CREATE TABLE addresses (guid VARCHAR PRIMARY KEY, use_count INTEGER NOT NULL DEFAULT 0, use_date
  INTEGER NOT NULL DEFAULT 0, date_modified INTEGER NOT NULL DEFAULT 0, language_code VARCHAR,
  label VARCHAR, initial_creator_id INTEGER DEFAULT 0, record_type INTEGER);
CREATE TABLE credit_cards (guid VARCHAR PRIMARY KEY, name_on_card VARCHAR, expiration_month
  INTEGER, expiration_year INTEGER, card_number_encrypted BLOB, date_modified INTEGER NOT NULL
  DEFAULT 0, use_count INTEGER NOT NULL DEFAULT 0, use_date INTEGER NOT NULL DEFAULT 0,
  billing_address_id VARCHAR, nickname VARCHAR, is_user_confirmed INTEGER NOT NULL DEFAULT 0);
CREATE TABLE keywords (id INTEGER PRIMARY KEY,short_name VARCHAR NOT NULL,keyword VARCHAR NOT
  NULL,favicon_url VARCHAR NOT NULL,url VARCHAR NOT NULL,safe_for_autoreplace
  INTEGER,originating_url VARCHAR,date_created INTEGER DEFAULT 0,usage_count INTEGER DEFAULT
  0,input_encodings VARCHAR,suggest_url VARCHAR,prepopulate_id INTEGER DEFAULT
  0,created_by_policy INTEGER DEFAULT 0,last_modified INTEGER DEFAULT 0,sync_guid
  VARCHAR,alternate_urls VARCHAR,image_url VARCHAR,search_url_post_params
  VARCHAR,suggest_url_post_params VARCHAR,image_url_post_params VARCHAR,new_tab_url
  VARCHAR,last_visited INTEGER DEFAULT 0, created_from_play_api INTEGER DEFAULT 0, is_active
  INTEGER DEFAULT 0, starter_pack_id INTEGER DEFAULT 0, enforced_by_policy INTEGER DEFAULT 0,
  featured_by_policy INTEGER DEFAULT 0, url_hash BLOB);
CREATE INDEX autocomplete_name_label_normalized_value_lower ON autocomplete(name,
  label_normalized, value_lower);
CREATE INDEX autocomplete_label_normalized_value_lower ON autocomplete(label_normalized,
  value_lower);
CREATE INDEX autocomplete_value_date_last_used ON autocomplete(value, date_last_used);
CREATE INDEX autocomplete_name_label_value ON autocomplete(name, label, value);
CREATE INDEX autofill_name ON autofill(name);
CREATE INDEX autofill_name_value_lower ON autofill(name, value_lower);
)sql"},
    {"DIPS", R"sql(
PRAGMA journal_mode = WAL;
CREATE TABLE meta(key LONGVARCHAR NOT NULL UNIQUE PRIMARY KEY, value LONGVARCHAR);
CREATE TABLE config(key TEXT NOT NULL,int_value INTEGER,PRIMARY KEY (`key`));
CREATE TABLE bounces(site TEXT PRIMARY KEY NOT NULL,first_user_activation_time
  INTEGER,last_user_activation_time INTEGER,first_bounce_time INTEGER,last_bounce_time
  INTEGER,first_web_authn_assertion_time INTEGER,last_web_authn_assertion_time INTEGER);
CREATE TABLE popups(opener_site TEXT NOT NULL,popup_site TEXT NOT NULL,access_id
  INT64,last_popup_time INTEGER,is_current_interaction BOOLEAN,is_authentication_interaction
  BOOLEAN,PRIMARY KEY (`opener_site`,`popup_site`));
)sql"},
    {"Reporting and NEL", R"sql(
CREATE TABLE meta(key LONGVARCHAR NOT NULL UNIQUE PRIMARY KEY, value LONGVARCHAR);
CREATE TABLE nel_policies ( nik TEXT NOT NULL, origin_scheme TEXT NOT NULL, origin_host TEXT NOT
  NULL, origin_port INTEGER NOT NULL, received_ip_address TEXT NOT NULL, group_name TEXT NOT
  NULL, expires_us_since_epoch INTEGER NOT NULL, success_fraction REAL NOT NULL,
  failure_fraction REAL NOT NULL, is_include_subdomains INTEGER NOT NULL,
  last_access_us_since_epoch INTEGER NOT NULL, UNIQUE (origin_scheme, origin_host, origin_port,
  nik));
CREATE TABLE reporting_endpoints ( nik TEXT NOT NULL, origin_scheme TEXT NOT NULL, origin_host
  TEXT NOT NULL, origin_port INTEGER NOT NULL, group_name TEXT NOT NULL, url TEXT NOT NULL,
  priority INTEGER NOT NULL, weight INTEGER NOT NULL, UNIQUE (origin_scheme, origin_host,
  origin_port, group_name, url, nik));
CREATE TABLE reporting_endpoint_groups ( nik TEXT NOT NULL, origin_scheme TEXT NOT NULL,
  origin_host TEXT NOT NULL, origin_port INTEGER NOT NULL, group_name TEXT NOT NULL,
  is_include_subdomains INTEGER NOT NULL, expires_us_since_epoch INTEGER NOT NULL,
  last_access_us_since_epoch INTEGER NOT NULL, UNIQUE (origin_scheme, origin_host, origin_port,
  group_name, nik));
)sql"},
    {"Trust Tokens", R"sql(
CREATE TABLE meta(key LONGVARCHAR NOT NULL UNIQUE PRIMARY KEY, value LONGVARCHAR);
CREATE TABLE trust_tokens_issuer_config ( key TEXT, proto BLOB, PRIMARY KEY(key));
CREATE TABLE trust_tokens_toplevel_config ( key TEXT, proto BLOB, PRIMARY KEY(key));
CREATE TABLE trust_tokens_issuer_toplevel_pair_config ( key TEXT, proto BLOB, PRIMARY KEY(key));
)sql"},
    {"heavy_ad_intervention_opt_out.db", R"sql(
CREATE TABLE previews_v1 (host_name VARCHAR NOT NULL, time INTEGER NOT NULL, opt_out INTEGER NOT
  NULL, type INTEGER NOT NULL, PRIMARY KEY(host_name, time DESC, opt_out, type));
CREATE TABLE enabled_previews_v1 (type INTEGER NOT NULL, version INTEGER NOT NULL, PRIMARY
  KEY(type));
)sql"},
    {"declarative_performance_observer.db", R"sql(
CREATE TABLE meta(key LONGVARCHAR NOT NULL UNIQUE PRIMARY KEY, value LONGVARCHAR);
CREATE TABLE declarative_performance_observer_policies (origin TEXT PRIMARY KEY NOT NULL,
  capture_early_failures BOOLEAN NOT NULL, created_at INTEGER NOT NULL);
CREATE TABLE declarative_performance_observer_reports (id INTEGER PRIMARY KEY AUTOINCREMENT,
  origin TEXT NOT NULL, payload TEXT NOT NULL, created_at INTEGER NOT NULL);
CREATE INDEX idx_reports_origin ON declarative_performance_observer_reports(origin);
)sql"},
    {"WebStorage/QuotaManager", R"sql(
CREATE TABLE meta(key LONGVARCHAR NOT NULL UNIQUE PRIMARY KEY, value LONGVARCHAR);
CREATE TABLE buckets(id INTEGER PRIMARY KEY AUTOINCREMENT, storage_key TEXT NOT NULL, host TEXT
  NOT NULL, name TEXT NOT NULL, use_count INTEGER NOT NULL, last_accessed INTEGER NOT NULL,
  last_modified INTEGER NOT NULL, expiration INTEGER NOT NULL, quota INTEGER NOT NULL,
  persistent INTEGER NOT NULL, durability INTEGER NOT NULL) STRICT;
CREATE UNIQUE INDEX buckets_by_storage_key ON buckets(storage_key, name);
CREATE INDEX buckets_by_host ON buckets(host);
CREATE INDEX buckets_by_last_accessed ON buckets(last_accessed);
CREATE INDEX buckets_by_last_modified ON buckets(last_modified);
CREATE INDEX buckets_by_expiration ON buckets(expiration);
CREATE TABLE quota (host TEXT NOT NULL, type INTEGER NOT NULL, quota INTEGER NOT NULL, PRIMARY
  KEY(host, type));
CREATE TABLE eviction_info (origin TEXT NOT NULL, type INTEGER NOT NULL, last_eviction_time
  INTEGER NOT NULL, PRIMARY KEY(origin, type));
)sql"},
    {"Shared Dictionary/db", R"sql(
CREATE TABLE meta(key LONGVARCHAR NOT NULL UNIQUE PRIMARY KEY, value LONGVARCHAR);
CREATE TABLE dictionaries(primary_key INTEGER NOT NULL PRIMARY KEY AUTOINCREMENT,frame_origin
  TEXT NOT NULL,top_frame_site TEXT NOT NULL,host TEXT NOT NULL,match TEXT NOT NULL,match_dest
  TEXT NOT NULL,id TEXT NOT NULL,url TEXT NOT NULL,last_fetch_time INTEGER NOT NULL,res_time
  INTEGER NOT NULL,exp_time INTEGER NOT NULL,last_used_time INTEGER NOT NULL,size INTEGER NOT
  NULL,sha256 BLOB NOT NULL,token_high INTEGER NOT NULL,token_low INTEGER NOT NULL);
CREATE UNIQUE INDEX unique_index ON
  dictionaries(frame_origin,top_frame_site,host,match,match_dest);
CREATE INDEX top_frame_site_index ON dictionaries(top_frame_site);
CREATE INDEX isolation_index ON dictionaries(frame_origin,top_frame_site);
CREATE INDEX token_index ON dictionaries(token_high, token_low);
CREATE INDEX exp_time_index ON dictionaries(exp_time);
CREATE INDEX last_used_time_index ON dictionaries(last_used_time);
)sql"},
    {"segmentation_platform/ukm_db", R"sql(
PRAGMA journal_mode = WAL;
CREATE TABLE metrics(id INTEGER PRIMARY KEY NOT NULL,event_timestamp INTEGER NOT
  NULL,ukm_source_id INTEGER NOT NULL,url_id INTEGER NOT NULL,event_id INTEGER NOT
  NULL,event_hash TEXT NOT NULL,metric_hash TEXT NOT NULL,metric_value INTEGER NOT NULL);
CREATE TABLE urls(url_id INTEGER PRIMARY KEY NOT NULL,url TEXT NOT NULL,last_timestamp INTEGER
  NOT NULL,counter INTEGER,title TEXT,profile_id TEXT);
CREATE TABLE uma_metrics(id INTEGER PRIMARY KEY NOT NULL,event_timestamp INTEGER NOT
  NULL,profile_id INTEGER NOT NULL,type INTEGER NOT NULL,metric_hash TEXT NOT NULL,metric_value
  INTEGER NOT NULL);
CREATE INDEX event_timestamp_index ON metrics(event_timestamp);
CREATE INDEX ukm_source_id_index ON metrics(ukm_source_id);
CREATE INDEX url_id_index ON metrics(url_id);
CREATE INDEX event_hash_index ON metrics(event_hash);
CREATE INDEX uma_event_timestamp_index ON uma_metrics(event_timestamp);
CREATE INDEX uma_profile_id_index ON uma_metrics(profile_id);
CREATE INDEX uma_type_index ON uma_metrics(type);
CREATE INDEX uma_metric_hash_index ON uma_metrics(metric_hash);
)sql"},
};

}  // namespace

Database makeChromiumDatabase(const std::filesystem::path& folder, const std::string& file) {
    Database database(folder / file);
    database.execute(schemas.at(file));
    return database;
}

}  // namespace browsersweep::tests
