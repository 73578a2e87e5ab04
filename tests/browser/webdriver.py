"""A browser without a window, driven through the protocol that all browsers share (WebDriver)."""

import base64
import json
import shutil
import subprocess
import tempfile
import time
import urllib.error
import urllib.request

ELEMENT = "element-6066-11e4-a52e-4f735466cecf"
ANSWER_LIMIT = 120


class BrowserError(Exception):
    """What the browser could not do, in its own words."""


class Element:
    def __init__(self, browser, identifier):
        self._browser, self._identifier = browser, identifier

    def _call(self, method, path, body=None):
        return self._browser.call(method, f"/element/{self._identifier}{path}", body)

    def reference(self):
        """What a script gets as an argument."""
        return {ELEMENT: self._identifier}

    def click(self):
        self._call("POST", "/click", {})

    def type(self, text):
        self._call("POST", "/clear", {})
        self._call("POST", "/value", {"text": text})

    def text(self):
        return self._call("GET", "/text")

    def property(self, name):
        return self._call("GET", f"/property/{name}")


class Browser:
    """Use with `with`; everything it wrote and started goes at the end."""

    def __init__(self, width=1280, height=900):
        self._width, self._height = width, height

    def __enter__(self):
        self._profile = tempfile.mkdtemp(prefix="quillon-browser-")
        self._driver = subprocess.Popen(["chromedriver", "--port=0"], stdin=subprocess.DEVNULL,
                                        stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        self._session = None
        try:
            self._address = f"http://127.0.0.1:{self._driver_port()}"
            self._session = self._request("POST", "/session", self._capabilities())["sessionId"]
        except BaseException:
            self.__exit__()
            raise
        return self

    def __exit__(self, *_):
        try:
            if self._session:
                self._request("DELETE", f"/session/{self._session}")
        finally:
            self._driver.terminate()
            self._driver.communicate()
            shutil.rmtree(self._profile, ignore_errors=True)

    def _driver_port(self):
        for line in self._driver.stdout:
            if "started successfully on port" in line:
                return int(line.rstrip(".\n").rsplit(" ", 1)[1])
        raise BrowserError("chromedriver did not start")

    def _capabilities(self):
        # No sandbox: as root, as in a container, the browser refuses to start with one.
        arguments = ["--headless=new", "--no-sandbox", "--disable-dev-shm-usage", "--disable-gpu",
                     "--no-first-run", "--disable-background-networking", "--hide-scrollbars",
                     f"--user-data-dir={self._profile}",
                     f"--window-size={self._width},{self._height}"]
        return {"capabilities": {"alwaysMatch": {"browserName": "chrome",
                                                 "timeouts": {"script": 1000 * ANSWER_LIMIT},
                                                 "goog:chromeOptions": {"args": arguments},
                                                 "goog:loggingPrefs": {"browser": "ALL"}}}}

    def _request(self, method, path, body=None):
        data = json.dumps(body).encode() if body is not None else None
        request = urllib.request.Request(self._address + path, data, method=method,
                                         headers={"Content-Type": "application/json"})
        try:
            with urllib.request.urlopen(request, timeout=ANSWER_LIMIT) as answer:
                return json.load(answer)["value"]
        except urllib.error.HTTPError as error:
            value = json.load(error)["value"]
            raise BrowserError(f"{value['error']}: {value['message'].splitlines()[0]}") from None

    def call(self, method, path, body=None):
        return self._request(method, f"/session/{self._session}{path}", body)

    def open(self, address):
        self.call("POST", "/url", {"url": address})

    def address(self):
        return self.call("GET", "/url")

    def title(self):
        return self.call("GET", "/title")

    def run(self, script, *arguments):
        """What the script returns; it runs whatever scripts the page itself may hold."""
        return self.call("POST", "/execute/sync", {"script": script, "args": list(arguments)})

    def run_to_end(self, script, *arguments):
        """What the script hands to the function that is its last argument."""
        return self.call("POST", "/execute/async", {"script": script, "args": list(arguments)})

    def all(self, selector, using="css selector"):
        found = self.call("POST", "/elements", {"using": using, "value": selector})
        return [Element(self, element[ELEMENT]) for element in found]

    def links(self, text):
        """The links that show exactly this text."""
        return self.all(text, "link text")

    def wait(self, what, condition):
        """Waits until the condition gives something true, and gives it back."""
        end = time.monotonic() + 30
        while time.monotonic() < end:
            value = condition()
            if value:
                return value
            time.sleep(0.02)
        raise BrowserError(f"waited in vain for {what} at {self.address()}")

    def console(self):
        """Messages of the browser's console since the last look."""
        return self.call("POST", "/se/log", {"type": "browser"})

    def developer(self, command, **parameters):
        """A command of the browser's developer tools."""
        return self.call("POST", "/goog/cdp/execute", {"cmd": command, "params": parameters})

    def resize(self, width, height):
        """The page's size as that of a screen; a narrow one is a phone's."""
        self.developer("Emulation.setDeviceMetricsOverride", width=width, height=height,
                       deviceScaleFactor=1, mobile=width < 600)

    def prefer(self, scheme):
        """"light" or "dark", as somebody has set up their system."""
        self.developer("Emulation.setEmulatedMedia",
                       features=[{"name": "prefers-color-scheme", "value": scheme}])

    def screenshot(self, file, most=1e6):
        """The whole page, also what is below the window's edge, down to `most` pixels."""
        size = self.developer("Page.getLayoutMetrics")["cssContentSize"]
        clip = {"x": 0, "y": 0, "width": size["width"], "height": min(size["height"], most),
                "scale": 1}
        shot = self.developer("Page.captureScreenshot", clip=clip, captureBeyondViewport=True)
        file.write_bytes(base64.b64decode(shot["data"]))
