"""A headless Chromium that a test drives over a pair of pipes."""

import base64
import fcntl
import json
import os
import subprocess
import tempfile

REPLY_LIMIT_SECONDS = 60
COMMAND_DESCRIPTOR, REPLY_DESCRIPTOR = 3, 4
FIRST_FREE_DESCRIPTOR = 10


class Browser:
    """One page at a time. Messages are JSON, each ended by a zero byte."""

    def __init__(self, program):
        self._profile = tempfile.TemporaryDirectory(prefix="tintora-browser-")
        command_read, self._commands = os.pipe()
        self._replies, reply_write = os.pipe()
        # Out of the way of the numbers that the browser expects.
        inherited = [fcntl.fcntl(number, fcntl.F_DUPFD, FIRST_FREE_DESCRIPTOR)
                     for number in (command_read, reply_write)]
        os.close(command_read)
        os.close(reply_write)

        def place_descriptors():
            os.dup2(inherited[0], COMMAND_DESCRIPTOR)
            os.dup2(inherited[1], REPLY_DESCRIPTOR)

        self._process = subprocess.Popen(
            [program, "--headless=new", "--no-sandbox", "--disable-gpu",
             "--disable-dev-shm-usage", "--hide-scrollbars",
             "--no-first-run", "--disable-background-networking",
             f"--user-data-dir={self._profile.name}",
             "--remote-debugging-pipe", "about:blank"],
            stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL, preexec_fn=place_descriptors,
            pass_fds=(COMMAND_DESCRIPTOR, REPLY_DESCRIPTOR))
        for number in inherited:
            os.close(number)
        self._buffer = b""
        self._last_id = 0
        self._session = None
        self.events = []
        target = self.call("Target.createTarget", url="about:blank")
        self._session = self.call("Target.attachToTarget", flatten=True,
                                  targetId=target["targetId"])["sessionId"]
        for domain in ("Page", "Runtime", "Network", "Log"):
            self.call(f"{domain}.enable")

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._session = None
        try:
            self.call("Browser.close")
            self._process.wait(REPLY_LIMIT_SECONDS)
        except (OSError, EOFError, subprocess.TimeoutExpired):
            self._process.kill()
            self._process.wait()
        os.close(self._commands)
        os.close(self._replies)
        self._profile.cleanup()

    def _read_message(self):
        while b"\0" not in self._buffer:
            chunk = os.read(self._replies, 1 << 16)
            if not chunk:
                raise EOFError("the browser has ended")
            self._buffer += chunk
        message, self._buffer = self._buffer.split(b"\0", 1)
        return json.loads(message)

    def _send(self, data):
        while data:
            data = data[os.write(self._commands, data):]

    def call(self, method, **parameters):
        """The result of a method; events that come before it are kept."""
        self._last_id += 1
        message = {"id": self._last_id, "method": method,
                   "params": parameters}
        if self._session:
            message["sessionId"] = self._session
        self._send(json.dumps(message).encode() + b"\0")
        while True:
            reply = self._read_message()
            if reply.get("id") != self._last_id:
                self.events.append(reply)
            elif "error" in reply:
                raise RuntimeError(f"{method}: {reply['error']}")
            else:
                return reply["result"]

    def resize(self, width, height, scale=1):
        self.call("Emulation.setDeviceMetricsOverride", width=width,
                  height=height, deviceScaleFactor=scale, mobile=width < 600)

    def open(self, path):
        """Opens a file and waits until its pictures are there."""
        self.events.clear()
        self.call("Page.navigate", url=f"file://{path}")
        while not any(event.get("method") == "Page.loadEventFired"
                      for event in self.events):
            self.events.append(self._read_message())
        self.value("Promise.all([...document.images].filter(i => i.src)"
                   ".map(i => i.decode())).then(() => true)")

    def value(self, expression):
        """What a JavaScript expression, or the promise it gives, comes to."""
        result = self.call("Runtime.evaluate", expression=expression,
                           awaitPromise=True, returnByValue=True)
        if "exceptionDetails" in result:
            raise RuntimeError(f"{expression}: {result['exceptionDetails']}")
        return result["result"].get("value")

    def mouse(self, kind, x, y):
        self.call("Input.dispatchMouseEvent", type=kind, x=x, y=y,
                  button="left", clickCount=1,
                  buttons=0 if kind == "mouseReleased" else 1)

    def click(self, x, y):
        self.mouse("mousePressed", x, y)
        self.mouse("mouseReleased", x, y)

    def press(self, key, code):
        for kind in ("keyDown", "keyUp"):
            self.call("Input.dispatchKeyEvent", type=kind, key=key, code=key,
                      windowsVirtualKeyCode=code)

    def centre_of(self, selector, scroll=True):
        """Where the middle of an element is in the window."""
        return self.value(f"""(() => {{
            const element = document.querySelector({json.dumps(selector)});
            if ({json.dumps(scroll)}) element.scrollIntoView({{block: "center"}});
            const box = element.getBoundingClientRect();
            return [box.left + box.width / 2, box.top + box.height / 2];
        }})()""")

    def screenshot(self, whole=False):
        """The page as a PNG file."""
        return base64.b64decode(self.call(
            "Page.captureScreenshot", format="png",
            captureBeyondViewport=whole)["data"])

    def pdf(self):
        return base64.b64decode(self.call("Page.printToPDF",
                                          printBackground=False)["data"])
