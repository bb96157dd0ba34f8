"""A real Firefox, driven over Marionette, its own remote protocol."""

import contextlib
import json
import select
import socket
import subprocess
import time
from pathlib import Path

from browser import (CALL_TIMEOUT, START_TIMEOUT, BrowserError, RunningBrowser,
                     process_environment)


def firefox_preferences(proxy_port, downloads):
    return {
        "marionette.port": 0,
        "network.proxy.type": 1,
        "network.proxy.http": "127.0.0.1",
        "network.proxy.http_port": proxy_port,
        "network.proxy.ssl": "127.0.0.1",
        "network.proxy.ssl_port": proxy_port,
        "network.proxy.allow_hijacking_localhost": True,
        "network.proxy.no_proxies_on": "",
        "dom.security.https_first": False,
        "dom.security.https_first_schemeless": False,
        "browser.download.folderList": 2,
        "browser.download.dir": str(downloads),
        "browser.download.useDownloadDir": True,
        "browser.download.always_ask_before_handling_new_types": False,
        "browser.helperApps.neverAsk.saveToDisk": "application/octet-stream",
        "browser.shell.checkDefaultBrowser": False,
        "browser.aboutwelcome.enabled": False,
        "browser.startup.homepage_override.mstone": "ignore",
        "datareporting.policy.dataSubmissionEnabled": False,
        "toolkit.telemetry.enabled": False,
        "app.update.enabled": False,
        "network.captive-portal-service.enabled": False,
        "network.connectivity-service.enabled": False,
        "extensions.update.enabled": False,
        "app.normandy.enabled": False,
        "services.settings.server": "data:,#remote-settings-dummy/v1",
    }


class Marionette:
    """Firefox's own remote protocol: length-prefixed JSON over TCP."""

    def __init__(self, port):
        self._socket = socket.create_connection(("127.0.0.1", port), timeout=CALL_TIMEOUT)
        self._buffer, self._next_id = b"", 0
        self._read_message()
        self.call("WebDriver:NewSession", {"capabilities": {"alwaysMatch": {
            "pageLoadStrategy": "normal"}}})

    def close(self):
        self._socket.close()

    def call(self, command, params=None):
        self._next_id += 1
        data = json.dumps([0, self._next_id, command, params or {}]).encode()
        self._socket.sendall(str(len(data)).encode() + b":" + data)
        _, number, error, result = self._read_message()
        if number != self._next_id:
            raise BrowserError(f"{command}: answer out of order")
        if error:
            raise BrowserError(f"{command}: {error.get('error')}: {error.get('message')}")
        return result.get("value", result) if isinstance(result, dict) else result

    def navigate(self, url):
        self.call("WebDriver:Navigate", {"url": url})

    def element(self, css):
        found = self.call("WebDriver:FindElement", {"using": "css selector", "value": css})
        return next(iter(found.values()))

    def type_text(self, css, text):
        self.call("WebDriver:ElementSendKeys", {"id": self.element(css), "text": text})

    def click(self, css):
        self.call("WebDriver:ElementClick", {"id": self.element(css)})

    def chrome(self, body, *arguments):
        """Run an async function body with the browser's own privileges; `args` are its values."""
        script = ("const [args, done] = [arguments[0], arguments[arguments.length - 1]];"
                  f"(async () => {{ {body} }})().then(value => done({{value}}),"
                  " error => done({error: String(error)}));")
        self.call("Marionette:SetContext", {"value": "chrome"})
        try:
            answer = self.call("WebDriver:ExecuteAsyncScript",
                               {"script": script, "args": [list(arguments)]})
        finally:
            self.call("Marionette:SetContext", {"value": "content"})
        if "error" in answer:
            raise BrowserError(f"browser script failed: {answer['error']}")
        return answer.get("value")

    def _read_message(self):
        while b":" not in self._buffer:
            self._receive()
        size, rest = self._buffer.split(b":", 1)
        while len(rest) < int(size):
            self._buffer = rest
            self._receive()
            rest = self._buffer
        self._buffer = rest[int(size):]
        return json.loads(rest[:int(size)])

    def _receive(self):
        data = self._socket.recv(1 << 16)
        if not data:
            raise BrowserError("Firefox closed its connection")
        self._buffer += data


def create_firefox_profile(binary, layout, name, folder_name):
    """Let Firefox register a profile under Firefox/Profiles in its profiles.ini."""
    (layout.firefox / "Profiles").mkdir(parents=True, exist_ok=True)
    with process_environment(layout) as env:
        folder = Path(env["HOME"]) / ".mozilla" / "firefox" / "Profiles" / folder_name
        done = subprocess.run([binary, "--headless", "-CreateProfile", f"{name} {folder}"],
                              env=env, capture_output=True, text=True, timeout=START_TIMEOUT,
                              check=False)
    if done.returncode or not (layout.firefox / "profiles.ini").is_file():
        raise BrowserError(f"Firefox did not create the profile {name}: {done.stderr[-300:]}")


class Firefox(RunningBrowser):
    """A running Firefox, which Marionette drives."""

    def __init__(self, binary, layout, name, folder, proxy_port, log, preferences=None):
        super().__init__(layout)
        self._user_js = folder / "user.js"
        self._port_file = folder / "MarionetteActivePort"
        self._lock_link = folder / "lock"  # Linux only, left behind; macOS has none
        self._port_file.unlink(missing_ok=True)
        values = {**firefox_preferences(proxy_port, layout.downloads), **(preferences or {})}
        self._user_js.write_text("".join(
            f"user_pref({json.dumps(key)}, {json.dumps(value)});\n"
            for key, value in values.items()), "utf-8")
        with open(log, "ab") as log_file:
            self.process = subprocess.Popen(
                [binary, "--headless", "--marionette", "-remote-allow-system-access",
                 "-no-remote", "-P", name],
                env=self.environment, stdin=subprocess.DEVNULL, stdout=log_file, stderr=log_file,
                start_new_session=True)
        self.marionette = None

    def _connect(self):
        self.marionette = Marionette(self._wait_for_port())

    def _ask_to_quit(self):
        self.marionette.call("Marionette:Quit", {"flags": ["eAttemptQuit"]})

    def _let_go(self):
        if self.marionette:
            self.marionette.close()
        self._user_js.unlink(missing_ok=True)
        self._port_file.unlink(missing_ok=True)
        self._lock_link.unlink(missing_ok=True)

    def _wait_for_port(self):
        """Firefox writes the port it listens on into its profile; there is nothing to wait on."""
        deadline = time.monotonic() + START_TIMEOUT
        while time.monotonic() < deadline:
            if self.process.poll() is not None:
                raise BrowserError(f"Firefox ended at once with status {self.process.returncode}")
            with contextlib.suppress(OSError, ValueError):
                return int(self._port_file.read_text())
            select.select([], [], [], 0.05)
        raise BrowserError("Firefox did not open its remote port in time")
