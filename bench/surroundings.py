"""The environment of the running program in bench/soak and bench/kill, inside scripts/session: a client of its
D-Bus name, the X server, two windows of another program, a relay before the speech service, a sound
server and a keyring that can be taken away. Standard library only.
"""

import ctypes
import ctypes.util
import json
import os
import pathlib
import random
import select
import signal
import socket
import struct
import subprocess
import threading
import time

PATIENCE = 30.0  # seconds until a part counts as broken on a loaded machine
NUMBER = b"b00000000"  # in the service's script; the relay puts the dictation's own number there


def wait_for(condition, seconds=PATIENCE, pause=0.002):
    """The first true value of the condition, or its last one on timeout."""
    end = time.monotonic() + seconds
    while True:
        value = condition()
        if value or time.monotonic() > end:
            return value
        time.sleep(pause)


def must(what, condition, seconds=PATIENCE):
    value = wait_for(condition, seconds)
    if not value:
        raise RuntimeError(f"{what} did not come within {seconds:.0f} s")
    return value


def quiet(command, **more):
    return subprocess.run(command, capture_output=True, text=True, timeout=PATIENCE, **more)


def spawn(command, **more):
    return subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, **more)


class Bus:
    """Calls without arguments on the program's own interface, over one connection."""

    class Refused(Exception):
        pass

    def __init__(self):
        path = os.environ["DBUS_SESSION_BUS_ADDRESS"].split("path=")[1].split(",")[0]
        self.socket = socket.socket(socket.AF_UNIX)
        self.socket.connect(path)
        self.socket.settimeout(PATIENCE)
        self.serial = 0
        self.pending = b""
        self.socket.sendall(b"\0AUTH EXTERNAL " + str(os.getuid()).encode().hex().encode() + b"\r\n")
        assert self.socket.recv(4096).startswith(b"OK")
        self.socket.sendall(b"BEGIN\r\n")
        self.call("Hello", "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus")

    def call(self, member, name="app.orlune.Orlune", path="/app/orlune/Orlune",
             interface="app.orlune.Orlune1"):
        """The text of the answer. Raises `Refused` with the text of an error."""
        self.send(member, name, path, interface)
        while True:
            kind, replied, body = self.receive()
            if replied == self.serial and kind in (2, 3):
                text = ""
                if len(body) >= 4:
                    text = body[4:4 + struct.unpack("<I", body[:4])[0]].decode(errors="replace")
                if kind == 3:
                    raise Bus.Refused(text)
                return text

    def send(self, member, name="app.orlune.Orlune", path="/app/orlune/Orlune",
             interface="app.orlune.Orlune1"):
        """Sends without waiting for the answer, which the next call skips."""
        self.serial += 1
        fields = b""
        for code, kind, text in ((1, b"o", path), (2, b"s", interface), (3, b"s", member),
                                 (6, b"s", name)):
            fields += b"\0" * (-len(fields) % 8) + bytes((code, 1)) + kind + b"\0"
            fields += struct.pack("<I", len(text)) + text.encode() + b"\0"
        message = struct.pack("<cBBBIII", b"l", 1, 0, 1, 0, self.serial, len(fields)) + fields
        self.socket.sendall(message + b"\0" * (-len(message) % 8))

    def receive(self):
        def have(count):
            while len(self.pending) < count:
                more = self.socket.recv(65536)
                if not more:
                    raise RuntimeError("the session bus has gone")
                self.pending += more
        have(16)
        kind = self.pending[1]
        size, _, fields = struct.unpack("<III", self.pending[4:16])
        begin = 16 + fields + -fields % 8
        have(begin + size)
        replied = None
        at = 16
        while at < 16 + fields:
            at += -at % 8
            code, form = self.pending[at], self.pending[at + 2:at + 3]
            at += 4
            if form == b"g":
                at += self.pending[at] + 2
                continue
            at += -at % 4
            value = struct.unpack("<I", self.pending[at:at + 4])[0]
            at += 4
            if form in (b"s", b"o"):
                at += value + 1
            if code == 5:
                replied = value
        body = self.pending[begin:begin + size]
        self.pending = self.pending[begin + size:]
        return kind, replied, body

    def status(self):
        return json.loads(self.call("Status"))

    def is_answered(self):
        try:
            return bool(self.status())
        except Bus.Refused:
            return False


class XServer:
    """Sends keys like another program, and reports which keys are down."""

    FN = 105  # right Control stands in for it
    ESCAPE = 9

    def __init__(self):
        self.x = ctypes.CDLL(ctypes.util.find_library("X11"))
        self.test = ctypes.CDLL(ctypes.util.find_library("Xtst"))
        self.x.XOpenDisplay.restype = ctypes.c_void_p
        self.display = ctypes.c_void_p(self.x.XOpenDisplay(None))
        assert self.display

    def tap(self, key):
        for is_down in (1, 0):
            self.test.XTestFakeKeyEvent(self.display, key, is_down, ctypes.c_ulong(0))
        self.x.XSync(self.display, 0)

    def down(self):
        keys = ctypes.create_string_buffer(32)
        self.x.XQueryKeymap(self.display, keys)
        return [key for key in range(256) if keys.raw[key // 8] >> key % 8 & 1]

    def release(self, keys):
        for key in keys:
            self.test.XTestFakeKeyEvent(self.display, key, 0, ctypes.c_ulong(0))
        self.x.XSync(self.display, 0)


class Window:
    """A terminal that records what is typed into it, with the expected text."""

    def __init__(self, folder, name):
        self.file = folder / name
        self.wanted = ""
        self.process = spawn(["xterm", "-T", name, "-e", "sh", "-c",
                              f"stty -icanon -echo; exec cat > {self.file}"])
        must("a terminal", self.file.exists)
        self.identity = must("its window", lambda: quiet(
            ["xdotool", "search", "--onlyvisible", "--name", f"^{name}$"]).stdout.strip())

    def focus(self):
        quiet(["xdotool", "windowactivate", self.identity])
        must("the focus", lambda: quiet(["xdotool", "getwindowfocus"]).stdout.strip()
             == self.identity)

    def has_crashed(self):
        return self.process.poll() is not None

    def size(self):
        return self.file.stat().st_size

    def text(self):
        return self.file.read_text(errors="replace")


class Service:
    """One `orlune-local-service` per way to answer, behind one address. The relay connects each client to
    the one that `mode` names and may break the connection. Words count as recognised once they have been
    passed to the system for the program."""

    WORDS = "Rename the button to " + NUMBER.decode() + "."

    def __init__(self, program, folder):
        told = [{"waitForAudio": 0.4}, {"interim": self.WORDS[:17]},
                {"waitForAudio": 1.8}, {"final": self.WORDS}]
        scripts = {
            "answers": {"steps": told + [{"waitForText": "CloseStream"}, {"metadata": 1.8},
                                         {"close": 1000}]},
            "fails": {"steps": told + [{"close": 1011}]},
            "refuses": {"refuse": {"status": 401, "code": "INVALID_AUTH", "message": "No."}},
            "is busy": {"refuse": {"status": 503, "chunked": True}},
        }
        self.parts, self.ports = [], {}
        for name, script in scripts.items():
            file = folder / f"{name}.json"
            file.write_text(json.dumps(script))
            part = subprocess.Popen([str(program), "--exit-with-parent", "--script", str(file)],
                                    stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                    stderr=subprocess.DEVNULL, text=True)
            self.ports[name] = int(part.stdout.readline().rsplit(":", 1)[1])
            self.parts.append(part)
        self.listener = socket.create_server(("127.0.0.1", 0), backlog=64)
        self.address = f"ws://127.0.0.1:{self.listener.getsockname()[1]}"
        self.prepare("answers", 0)
        threading.Thread(target=self.accept, daemon=True).start()

    def prepare(self, mode, number, reset_after=None):
        """Sets up the next connection. `reset_after`: seconds from its beginning."""
        self.next = {"mode": mode, "words": b"b%08d" % number, "reset_after": reset_after}
        self.interim_at = self.recognised_at = self.connected_at = self.reset_at = None

    def accept(self):
        while True:
            client, _ = self.listener.accept()
            self.connected_at = time.monotonic()
            threading.Thread(target=self.relay, args=(client, dict(self.next)), daemon=True).start()

    def relay(self, client, plan):
        server = socket.create_connection(("127.0.0.1", self.ports[plan["mode"]]))
        for end in (client, server):
            end.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        reset_at = None
        if plan["reset_after"] is not None:
            reset_at = time.monotonic() + plan["reset_after"]
        sides = {client: server, server: client}
        try:
            while sides:
                left = None if reset_at is None else max(0, reset_at - time.monotonic())
                for side in select.select(list(sides), [], [], left)[0]:
                    data = side.recv(1 << 18)
                    if not data:
                        sides.pop(side).shutdown(socket.SHUT_WR)
                        continue
                    if side is server:
                        data = data.replace(NUMBER, plan["words"])
                    sides[side].sendall(data)
                    if side is server and plan["words"] in data:
                        self.recognised_at = time.monotonic()
                    elif side is server and b"Rename" in data:
                        self.interim_at = time.monotonic()
                if reset_at is not None and time.monotonic() >= reset_at:
                    self.reset_at = time.monotonic()
                    break
        except OSError:
            pass  # one end has gone
        # A reset discards what the program has not read yet, as on a real line.
        linger = struct.pack("ii", 1, 0)
        if self.reset_at:
            client.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, linger)
        for end in (client, server):
            end.close()

    def stop(self):
        for part in self.parts:
            part.stdin.close()
            part.wait(PATIENCE)


class Sound:
    """A sound server whose microphone takes audio as fast as it is fed."""

    RATE = 48000

    def __init__(self, folder):
        self.folder, self.pipe = folder, folder / "microphone"
        self.environment = {**os.environ, "HOME": str(folder), "XDG_RUNTIME_DIR": str(folder),
                            "XDG_CONFIG_HOME": str(folder)}
        self.server = f"unix:{folder}/socket"
        noise = random.Random(1)
        self.tenth = b"".join(struct.pack("<h", noise.randrange(-3000, 3000))
                              for _ in range(self.RATE // 10))
        self.start()

    def start(self):
        self.pipe.unlink(missing_ok=True)
        self.process = spawn(
            ["pulseaudio", "-n", "--daemonize=no", "--disallow-exit", "--exit-idle-time=-1",
             "--use-pid-file=no", "-L", f"module-native-protocol-unix socket={self.folder}/socket",
             "-L", f"module-pipe-source source_name=fed file={self.pipe} format=s16le"
                   f" rate={self.RATE} channels=1"], env=self.environment)
        environment = {**os.environ, "PULSE_SERVER": self.server}
        must("the sound server", lambda: quiet(["pactl", "set-default-source", "fed"],
                                               env=environment).returncode == 0)
        self.feed_end = os.open(self.pipe, os.O_WRONLY | os.O_NONBLOCK)

    def kill(self):
        self.process.kill()
        self.process.wait()
        os.close(self.feed_end)

    def feed(self):
        """Feeds a tenth of a second, or as much as there is room for."""
        try:
            os.write(self.feed_end, self.tenth)
        except (BlockingIOError, BrokenPipeError):
            pass


class Keyring:
    """The session's keyring. To lock it, it is restarted without its password."""

    def __init__(self):
        self.process = None

    def restart(self, is_locked):
        options = ["--replace", "--foreground", "--components=secrets"]
        if not is_locked:
            options.append("--unlock")
        environment = {name: value for name, value in os.environ.items() if name != "DISPLAY"}
        if self.process:
            self.process.kill()
            self.process.wait()
        self.process = subprocess.Popen(["gnome-keyring-daemon", *options], stdin=subprocess.PIPE,
                                        stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                                        env=environment)
        if not is_locked:
            self.process.stdin.write(os.environ["ORLUNE_KEYRING_PASSWORD"].encode())
        self.process.stdin.close()
        must("the keyring", lambda: self.is_locked() == is_locked)

    @staticmethod
    def is_locked():
        """None while no keyring runs: a call would make the bus start another one."""
        owned = quiet(["dbus-send", "--session", "--print-reply", "--dest=org.freedesktop.DBus",
                       "/org/freedesktop/DBus", "org.freedesktop.DBus.NameHasOwner",
                       "string:org.freedesktop.secrets"]).stdout
        if "boolean true" not in owned:
            return None
        answer = quiet(["dbus-send", "--session", "--print-reply", "--reply-timeout=2000",
                        "--dest=org.freedesktop.secrets",
                        "/org/freedesktop/secrets/aliases/default",
                        "org.freedesktop.DBus.Properties.Get",
                        "string:org.freedesktop.Secret.Collection", "string:Locked"]).stdout
        return True if "boolean true" in answer else False if "boolean false" in answer else None


class Orlune:
    def __init__(self, build, service, sound, folder):
        self.program = build / "src/app/orlune"
        self.folder = folder / "config"
        self.folder.mkdir(exist_ok=True)
        self.environment = {**os.environ, "ORLUNE_ENDPOINT": service.address,
                            "PULSE_SERVER": sound.server, "XDG_CONFIG_HOME": str(self.folder)}
        self.bus = Bus()
        self.process = None

    def command(self, *words, **more):
        return quiet([str(self.program), *words], env=self.environment, **more)

    def spawn(self, log):
        self.process = subprocess.Popen([str(self.program), "--background"], stderr=log,
                                        stdin=subprocess.DEVNULL, stdout=log, env=self.environment)

    def start(self, log):
        self.spawn(log)
        must("the program", self.bus.is_answered)

    def kill(self):
        self.process.send_signal(signal.SIGKILL)
        self.process.wait()

    def phase(self):
        return self.bus.status()["phase"]

    def reaches(self, *phases, seconds=PATIENCE):
        """The phase, if it becomes one of these in time."""
        def current():
            phase = self.phase()
            return phase if phase in phases else None
        return wait_for(current, seconds)

    def ask(self, request):
        try:
            self.bus.call(request)
            return True
        except Bus.Refused:
            return False

    def recovered(self):
        """What `orlune recover` puts on the clipboard; none when it has nothing."""
        if not self.ask("Recover"):
            return None
        return quiet(["xclip", "-selection", "clipboard", "-o"]).stdout

    def footprint(self):
        """Resident and self-written memory in MiB, open descriptors, threads."""
        folder = pathlib.Path(f"/proc/{self.process.pid}")
        kinds = {line.split(":")[0]: int(line.split()[1]) / 1024
                 for line in (folder / "smaps_rollup").read_text().splitlines()[1:]}
        return {"resident MiB": kinds["Rss"], "own MiB": kinds["Private_Dirty"],
                "descriptors": len(os.listdir(folder / "fd")),
                "threads": len(os.listdir(folder / "task"))}
