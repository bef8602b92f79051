#!/usr/bin/env python3
"""The screen pages in a real browser.

Starts melodex-display on loopback, opens its main screen in headless
Chromium, sets a background image with `melodex display image --background`
(which goes through DisplayConnection), waits until the page reports the
picture on screen, takes a screenshot over the DevTools protocol and checks
the image's colour in it. Then shows a song section on the stage screen and
reads the text the stage page shows.

Usage: screen_pages_test.py SERVER MELODEX CHROMIUM DATA_DIR SONG
Everything is bounded in time; the whole test takes a few seconds.
"""

import base64
import json
import os
import shutil
import socket
import struct
import subprocess
import sys
import tempfile
import time
import urllib.request
import zlib

DEADLINE = time.monotonic() + 18


def remaining():
    left = DEADLINE - time.monotonic()
    if left <= 0:
        raise TimeoutError("the browser test ran out of time")
    return left


def fail(message):
    print("FAIL: " + message)
    sys.exit(1)


def start_server(program):
    server = subprocess.Popen([program, "--port", "0", "--http-port", "0"],
                              stdout=subprocess.PIPE, text=True)
    first = server.stdout.readline()
    second = server.stdout.readline()
    port = int(first.rsplit(":", 1)[1])
    http_port = int(second.split("http://127.0.0.1:", 1)[1].split("/", 1)[0])
    return server, port, http_port


class Controller:
    """The display protocol over TCP, following the state events."""

    def __init__(self, port):
        self.sock = socket.create_connection(("127.0.0.1", port), timeout=remaining())
        self.file = self.sock.makefile("rwb")
        self.screens = {}
        self.next_id = 1
        self.call("hello", versions=[1], client="browser test")
        self.call("subscribe")

    def call(self, op, **params):
        request = dict(params, id=self.next_id, op=op)
        self.next_id += 1
        self.file.write(json.dumps(request).encode() + b"\n")
        self.file.flush()
        while True:
            message = self.read()
            if message.get("id") == request["id"]:
                if not message.get("ok"):
                    fail("%s failed: %s" % (op, message))
                return message["result"]

    def read(self):
        self.sock.settimeout(remaining())
        line = self.file.readline()
        if not line:
            fail("the display server closed the connection")
        message = json.loads(line)
        if message.get("event") == "state":
            self.screens[message["screen"]] = (message["seq"], message["state"])
        return message

    def wait_for(self, screen, test, what):
        while True:
            entry = self.screens.get(screen)
            if entry and test(*entry):
                return entry
            try:
                self.read()
            except (TimeoutError, socket.timeout):
                fail("timed out waiting for " + what)


class DevTools:
    """Just enough of a WebSocket client for the DevTools protocol."""

    def __init__(self, url):
        host_port, path = url[len("ws://"):].split("/", 1)
        host, port = host_port.split(":")
        self.sock = socket.create_connection((host, int(port)), timeout=remaining())
        key = base64.b64encode(os.urandom(16)).decode()
        self.sock.sendall(("GET /%s HTTP/1.1\r\nHost: %s\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n"
                           "Sec-WebSocket-Key: %s\r\nSec-WebSocket-Version: 13\r\n\r\n"
                           % (path, host_port, key)).encode())
        response = b""
        while b"\r\n\r\n" not in response:
            response += self.sock.recv(4096)
        if b" 101 " not in response.split(b"\r\n", 1)[0]:
            fail("DevTools refused the WebSocket: %r" % response[:200])
        self.buffer = response.split(b"\r\n\r\n", 1)[1]
        self.next_id = 1

    def _recv_exact(self, size):
        while len(self.buffer) < size:
            self.sock.settimeout(remaining())
            chunk = self.sock.recv(65536)
            if not chunk:
                fail("DevTools closed the connection")
            self.buffer += chunk
        data, self.buffer = self.buffer[:size], self.buffer[size:]
        return data

    def _send_text(self, text):
        payload = text.encode()
        mask = os.urandom(4)
        header = bytes([0x81])
        if len(payload) < 126:
            header += bytes([0x80 | len(payload)])
        elif len(payload) < 65536:
            header += bytes([0x80 | 126]) + struct.pack(">H", len(payload))
        else:
            header += bytes([0x80 | 127]) + struct.pack(">Q", len(payload))
        masked = bytes(b ^ mask[i % 4] for i, b in enumerate(payload))
        self.sock.sendall(header + mask + masked)

    def _recv_message(self):
        message = b""
        while True:
            first, second = self._recv_exact(2)
            size = second & 0x7F
            if size == 126:
                size = struct.unpack(">H", self._recv_exact(2))[0]
            elif size == 127:
                size = struct.unpack(">Q", self._recv_exact(8))[0]
            message += self._recv_exact(size)
            if first & 0x80:
                return json.loads(message)

    def call(self, method, **params):
        request_id = self.next_id
        self.next_id += 1
        self._send_text(json.dumps({"id": request_id, "method": method, "params": params}))
        while True:
            message = self._recv_message()
            if message.get("id") == request_id:
                if "error" in message:
                    fail("%s failed: %s" % (method, message["error"]))
                return message["result"]

    def evaluate(self, expression):
        result = self.call("Runtime.evaluate", expression=expression, returnByValue=True)
        return result["result"].get("value")


def png_pixel(png, x, y):
    """The RGB of one pixel of an 8-bit RGB or RGBA PNG (what Chromium writes)."""
    if png[:8] != b"\x89PNG\r\n\x1a\n":
        fail("the screenshot is not a PNG")
    pos, idat, width = 8, b"", 0
    while pos < len(png):
        length, kind = struct.unpack(">I4s", png[pos:pos + 8])
        data = png[pos + 8:pos + 8 + length]
        if kind == b"IHDR":
            width, height, depth, colour = struct.unpack(">IIBB", data[:10])
            if depth != 8 or colour not in (2, 6):
                fail("unexpected PNG format %d/%d" % (depth, colour))
            channels = 3 if colour == 2 else 4
        elif kind == b"IDAT":
            idat += data
        pos += 12 + length
    raw = zlib.decompress(idat)
    stride = width * channels
    previous = bytearray(stride)
    for row in range(y + 1):
        kind = raw[row * (stride + 1)]
        line = bytearray(raw[row * (stride + 1) + 1:(row + 1) * (stride + 1)])
        for i in range(stride):
            left = line[i - channels] if i >= channels else 0
            up = previous[i]
            corner = previous[i - channels] if i >= channels else 0
            if kind == 1:
                line[i] = (line[i] + left) & 0xFF
            elif kind == 2:
                line[i] = (line[i] + up) & 0xFF
            elif kind == 3:
                line[i] = (line[i] + (left + up) // 2) & 0xFF
            elif kind == 4:
                p = left + up - corner
                pa, pb, pc = abs(p - left), abs(p - up), abs(p - corner)
                line[i] = (line[i] + (left if pa <= pb and pa <= pc else up if pb <= pc else corner)) & 0xFF
        previous = line
    return tuple(previous[x * channels:x * channels + 3])


def main():
    server_program, melodex, chromium, data_dir, song = sys.argv[1:6]
    red = os.path.abspath(os.path.join(data_dir, "display", "red.png"))
    profile = tempfile.mkdtemp(prefix="melodex-browser-")
    server = browser = None
    started = time.monotonic()
    try:
        server, port, http_port = start_server(server_program)
        controller = Controller(port)
        browser = subprocess.Popen(
            [chromium, "--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
             "--disable-background-networking", "--disable-component-update", "--disable-sync",
             "--user-data-dir=" + profile, "--remote-debugging-port=0", "--window-size=640,360",
             "--hide-scrollbars", "http://127.0.0.1:%d/main" % http_port],
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

        controller.wait_for("main", lambda seq, state: state["viewers"] >= 1, "the main page to connect")
        subprocess.run([melodex, "display", "--port", str(port), "image", red, "--background"],
                       check=True, timeout=remaining())
        seq, _ = controller.wait_for("main", lambda seq, state: state["background"]["path"] == red,
                                     "the background to be set")
        controller.wait_for("main", lambda s, state: state["shown_seq"] >= seq, "the page to show the image")

        with open(os.path.join(profile, "DevToolsActivePort")) as f:
            devtools_port = int(f.readline())
        with urllib.request.urlopen("http://127.0.0.1:%d/json/list" % devtools_port, timeout=remaining()) as r:
            pages = [t for t in json.load(r) if t["type"] == "page"]
        devtools = DevTools(pages[0]["webSocketDebuggerUrl"])
        shot = base64.b64decode(devtools.call("Page.captureScreenshot", format="png")["data"])
        with open(os.path.join(profile, "main.png"), "wb") as f:
            f.write(shot)
        colour = png_pixel(shot, 320, 180)
        if any(abs(a - b) > 12 for a, b in zip(colour, (220, 20, 30))):
            fail("the main screen shows %s where the red background should be" % (colour,))
        print("main screen shows the background colour %s" % (colour,))

        subprocess.run([melodex, "display", "--port", str(port), "stage", "--song", song, "--section", "V2"],
                       check=True, timeout=remaining())
        devtools.call("Page.navigate", url="http://127.0.0.1:%d/stage" % http_port)
        words = "Array.from(document.querySelectorAll('#stage-current .line')).map(l => " \
                "l.querySelector('.words') ? Array.from(l.querySelectorAll('.words')).map(w => " \
                "w.textContent).join('') : l.textContent).join('\\n')"
        text = None
        while remaining():
            text = devtools.evaluate("document.readyState === 'complete' ? " + words + " : ''")
            if text:
                break
            time.sleep(0.05)
        section = devtools.evaluate("document.getElementById('stage-section').textContent")
        if "grace that taught my heart to fear" not in (text or "") or section != "Verse 2":
            fail("the stage page shows %r in section %r" % (text, section))
        print("stage screen shows %s: %s" % (section, text.splitlines()[0]))
        print("browser test took %.1f s" % (time.monotonic() - started))
        print("1 passed, 0 failed")
    finally:
        for process in (browser, server):
            if process and process.poll() is None:
                process.terminate()
                try:
                    process.wait(timeout=3)
                except subprocess.TimeoutExpired:
                    process.kill()
        shutil.rmtree(profile, ignore_errors=True)


if __name__ == "__main__":
    main()
