"""Opens pages in WebKitGTK and runs scripts in them; a program of its own, because the engine ends with it.

    xvfb-run -a python3 webkitdriver.py < JOB

JOB is a JSON object: `version`, that of the engine's interface, 6.0 or 4.1, of which the older one keeps
storage in the older layout; `data` and `cache`, the engine's folders; `port`, the proxy's; `visits`, a list
of objects with `address` and `script`, the body of an asynchronous function whose result is told. Prints
the results as a list in JSON.
"""

from __future__ import annotations

import json
import sys

import gi

# Far longer than all pages and scripts take.
TIMEOUT = 300_000
# The engine writes some of what it keeps only after a while, and does not tell when.
SETTLING = 3_000


def engine_of(job: dict):
    """The interface, and a view with its window."""
    if job["version"] == "4.1":
        return older_engine(job)
    gi.require_version("Gtk", "4.0")
    gi.require_version("WebKit", "6.0")
    from gi.repository import Gtk, WebKit  # pylint: disable=import-outside-toplevel
    Gtk.init()
    session = WebKit.NetworkSession.new(job["data"], job["cache"])
    set_up(WebKit, session, session.set_proxy_settings, job)
    view = WebKit.WebView(network_session=session)
    view.get_context().set_cache_model(WebKit.CacheModel.WEB_BROWSER)
    window = Gtk.Window()
    window.set_child(view)
    window.present()
    return WebKit, view, window


def older_engine(job: dict):
    gi.require_version("Gtk", "3.0")
    gi.require_version("WebKit2", "4.1")
    from gi.repository import Gtk, WebKit2  # pylint: disable=import-outside-toplevel
    manager = WebKit2.WebsiteDataManager(base_data_directory=job["data"],
                                         base_cache_directory=job["cache"])
    set_up(WebKit2, manager, manager.set_network_proxy_settings, job)
    context = WebKit2.WebContext.new_with_website_data_manager(manager)
    context.set_cache_model(WebKit2.CacheModel.WEB_BROWSER)
    view = WebKit2.WebView.new_with_context(context)
    window = Gtk.Window()
    window.add(view)
    window.show_all()
    return WebKit2, view, window


def set_up(webkit, manager, set_proxy, job: dict) -> None:
    manager.set_itp_enabled(True)
    manager.set_tls_errors_policy(webkit.TLSErrorsPolicy.IGNORE)
    set_proxy(webkit.NetworkProxyMode.CUSTOM,
              webkit.NetworkProxySettings.new(f"http://127.0.0.1:{job['port']}", None))
    manager.get_cookie_manager().set_persistent_storage(
        f"{job['data']}/cookies.sqlite", webkit.CookiePersistentStorage.SQLITE)


class Browser:
    def __init__(self, job: dict) -> None:
        self._webkit, self._view, self._window = engine_of(job)
        from gi.repository import GLib  # pylint: disable=import-outside-toplevel
        self._glib, self._loop = GLib, GLib.MainLoop()
        for feature in ("FileSystem", "FileSystemWritableStream", "StorageAPI"):
            self._enable(feature)
        self._view.connect("load-changed", self._changed)
        self._view.connect("load-failed", self._failed)
        self._visits, self._script = iter(job["visits"]), ""
        self._results: list = []

    def _enable(self, name: str) -> None:
        """What Safari has and the engine for other systems keeps off."""
        features = self._webkit.Settings.get_all_features()
        for index in range(features.get_length()):
            if features.get(index).get_identifier() == name:
                self._view.get_settings().set_feature_enabled(features.get(index), True)

    def run(self) -> list:
        self._glib.timeout_add(TIMEOUT, self._end, "the pages took too long")
        self._next()
        self._loop.run()
        return self._results

    def _next(self) -> None:
        visit = next(self._visits, None)
        if visit is None:
            self._glib.timeout_add(SETTLING, self._loop.quit)
            return
        self._script = visit["script"]
        self._view.load_uri(visit["address"])

    def _changed(self, view, event) -> None:
        if event == self._webkit.LoadEvent.FINISHED and self._script:
            script, self._script = self._script, ""
            view.call_async_javascript_function(script, -1, None, None, None, None, self._done)

    def _failed(self, _view, _event, address, error) -> bool:
        self._end(f"{address}: {error.message}")
        return True

    def _done(self, view, result) -> None:
        try:
            value = view.call_async_javascript_function_finish(result)
        except self._glib.Error as error:
            self._end(error.message)
            return
        self._results.append(json.loads(value.to_json(0) or "null"))
        self._next()

    def _end(self, error: str) -> None:
        self._results = [{"error": error}]
        self._loop.quit()


if __name__ == "__main__":
    print(json.dumps(Browser(json.load(sys.stdin)).run()))
