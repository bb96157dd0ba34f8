"""A real Chromium, driven over the DevTools protocol on a pair of pipes."""

import json
import os
import select
import subprocess
import sys
import time

from browser import CALL_TIMEOUT, START_TIMEOUT, BrowserError, RunningBrowser

# Puts the two pipe ends on descriptors 3 and 4, where --remote-debugging-pipe expects them.
_PIPE_LAUNCHER = """import fcntl, os, sys
read_end, write_end = (fcntl.fcntl(int(n), fcntl.F_DUPFD_CLOEXEC, 20) for n in sys.argv[1:3])
os.dup2(read_end, 3)
os.dup2(write_end, 4)
os.execv(sys.argv[3], sys.argv[3:])"""

CHROMIUM_FLAGS = (
    "--headless=new", "--disable-gpu", "--disable-quic", "--no-first-run",
    "--no-default-browser-check", "--disable-background-networking", "--disable-component-update",
    "--disable-sync", "--disable-dev-shm-usage", "--password-store=basic", "--use-mock-keychain",
    "--proxy-bypass-list=<-loopback>", "--remote-debugging-pipe",
    "--enable-unsafe-extension-debugging",
    "--disable-features=HttpsUpgrades,HttpsFirstBalancedModeAutoEnable",
)


class DevTools:
    """The DevTools protocol over a pair of pipe descriptors."""

    def __init__(self, read_fd, write_fd):
        self._read_fd, self._write_fd = read_fd, write_fd
        self._buffer, self._messages, self._next_id = b"", [], 0

    def close(self):
        os.close(self._read_fd)
        os.close(self._write_fd)

    def call(self, method, params=None, session=None, timeout=CALL_TIMEOUT):
        self._next_id += 1
        message = {"id": self._next_id, "method": method, "params": params or {}}
        if session:
            message["sessionId"] = session
        data = json.dumps(message).encode() + b"\0"
        while data:
            data = data[os.write(self._write_fd, data):]
        number = self._next_id
        reply = self._wait(lambda m: m.get("id") == number, timeout, method)
        if "error" in reply:
            raise BrowserError(f"{method}: {reply['error'].get('message')}")
        return reply["result"]

    def wait_event(self, method, session=None, matches=lambda params: True, timeout=CALL_TIMEOUT):
        return self._wait(lambda m: m.get("method") == method and m.get("sessionId") == session
                          and matches(m["params"]), timeout, method)["params"]

    def forget_events(self):
        self._messages.clear()

    def _wait(self, wanted, timeout, what):
        deadline = time.monotonic() + timeout
        while True:
            for index, message in enumerate(self._messages):
                if wanted(message):
                    return self._messages.pop(index)
            self._read_more(deadline, what)

    def _read_more(self, deadline, what):
        left = deadline - time.monotonic()
        if left <= 0 or not select.select([self._read_fd], [], [], left)[0]:
            raise BrowserError(f"the browser did not answer in time ({what})")
        data = os.read(self._read_fd, 1 << 20)
        if not data:
            raise BrowserError(f"the browser closed its connection ({what})")
        *complete, self._buffer = (self._buffer + data).split(b"\0")
        self._messages += [json.loads(text) for text in complete if text]


class ChromiumPage:
    """One tab."""

    def __init__(self, tools, target):
        self.tools, self.target = tools, target
        self.session = tools.call("Target.attachToTarget",
                                  {"targetId": target, "flatten": True})["sessionId"]
        tools.call("Page.enable", session=self.session)

    def navigate(self, url, transition="link"):
        self.tools.forget_events()
        result = self.tools.call("Page.navigate", {"url": url, "transitionType": transition},
                                 self.session)
        if result.get("errorText") and not result.get("isDownload"):
            raise BrowserError(f"{url}: {result['errorText']}")
        if not result.get("isDownload"):
            self.tools.wait_event("Page.loadEventFired", self.session)

    def evaluate(self, expression):
        result = self.tools.call("Runtime.evaluate", {
            "expression": expression, "awaitPromise": True, "returnByValue": True,
            "userGesture": True}, self.session)
        if "exceptionDetails" in result:
            details = result["exceptionDetails"]
            text = details.get("exception", {}).get("description") or details.get("text")
            raise BrowserError(f"script failed: {text}")
        return result["result"].get("value")

    def click(self, selector):
        """As a person does it, which counts as using the page, and wait for the page it leads to."""
        self.tools.forget_events()
        place = self.evaluate("(() => { const box = document.querySelector(%s).getBoundingClientRect();"
                              "return {x: box.x + box.width / 2, y: box.y + box.height / 2}; })()"
                              % json.dumps(selector))
        for kind in ("mousePressed", "mouseReleased"):
            self.tools.call("Input.dispatchMouseEvent", {
                **place, "type": kind, "button": "left", "clickCount": 1}, self.session)
        self.tools.wait_event("Page.loadEventFired", self.session)

    def type_text(self, element_id, text):
        self.evaluate(f"document.getElementById({json.dumps(element_id)}).focus()")
        for character in text:
            for kind in ("keyDown", "keyUp"):
                self.tools.call("Input.dispatchKeyEvent",
                                {"type": kind, "text": character, "key": character}, self.session)

    def press_enter(self):
        for kind in ("keyDown", "keyUp"):
            self.tools.call("Input.dispatchKeyEvent", {
                "type": kind, "key": "Enter", "code": "Enter", "text": "\r",
                "windowsVirtualKeyCode": 13, "nativeVirtualKeyCode": 13}, self.session)


class Chromium(RunningBrowser):
    """A running Chromium, which DevTools drives."""

    def __init__(self, binary, layout, profile_directory, proxy_port, log, flags=()):
        super().__init__(layout)
        env = {**self.environment, "XDG_CONFIG_HOME": str(layout.application_support),
               "XDG_CACHE_HOME": str(layout.caches),
               "BREAKPAD_DUMP_LOCATION": self.environment["HOME"] + "/crashes"}
        flags = [*CHROMIUM_FLAGS, *flags, f"--user-data-dir={layout.chromium}",
                 f"--profile-directory={profile_directory}",
                 f"--proxy-server=http://127.0.0.1:{proxy_port}"]
        if os.geteuid() == 0:
            flags.append("--no-sandbox")
        to_browser, from_browser = os.pipe(), os.pipe()
        with open(log, "ab") as log_file:
            self.process = subprocess.Popen(
                [sys.executable, "-c", _PIPE_LAUNCHER, str(to_browser[0]), str(from_browser[1]),
                 binary, *flags, "about:blank"],
                pass_fds=(to_browser[0], from_browser[1]), env=env,
                stdin=subprocess.DEVNULL, stdout=log_file, stderr=log_file,
                start_new_session=True)
        os.close(to_browser[0])
        os.close(from_browser[1])
        self.tools = DevTools(from_browser[0], to_browser[1])

    def _connect(self):
        self.tools.call("Browser.getVersion", timeout=START_TIMEOUT)

    def _ask_to_quit(self):
        self.tools.call("Browser.close")

    def _let_go(self):
        self.tools.close()

    def new_page(self):
        target = self.tools.call("Target.createTarget", {"url": "about:blank"})["targetId"]
        return ChromiumPage(self.tools, target)
