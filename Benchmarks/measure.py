#!/usr/bin/python3
"""What the running program costs, on the test desktop. Each figure is printed with what it is.

    KESTRO=build/benchmark/kestro Tests/Desktop/desk /usr/bin/python3 Benchmarks/measure.py NAME...

names: startup (needs BARE, the bare window's program, and COMP=0), memory, idle, pointer, socket, magnify, shortcut,
settings, shortcuts_idle, events, working, sessions, status_line, blocked, kill"""

import base64
import ctypes
import json
import os
import select
import socket
import statistics
import subprocess
import sys
import time
import uuid
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "Tests" / "Desktop"))

from harness.program import HOME, Kestro  # noqa: E402
from harness.screen import DamageWatch, Keys, Pointer, windows  # noqa: E402
from harness.waiting import wait_for  # noqa: E402
from Xlib import X, display  # noqa: E402
from Xlib.ext import damage  # noqa: E402

AGENTS = {"agentsEnabled": True, "dockMagnification": False}
SOCKET = HOME / "Library" / "Application Support" / "Kestro" / "agents.sock"


def percentile(values, share):
    return sorted(values)[min(len(values) - 1, int(len(values) * share))]


def strip_of(kestro):
    return max(windows(kestro.pid), key=lambda found: found[1].height)[0]


def pause(seconds):
    """A moment in which nothing is done: what is measured is that it costs nothing."""
    select.select([], [], [], seconds)


class Usage:
    """The processor time and voluntary switches of all threads, from now on."""

    def __init__(self, pid):
        self._tasks = Path(f"/proc/{pid}/task")
        self._start = time.monotonic()
        self._before = self._read()

    def _read(self):
        nanoseconds = switches = 0
        for task in self._tasks.iterdir():
            nanoseconds += int((task / "schedstat").read_text().split()[0])
            for line in (task / "status").read_text().splitlines():
                if line.startswith("voluntary_ctxt_switches"):
                    switches += int(line.split()[1])
        return nanoseconds, switches

    def report(self, what):
        seconds = time.monotonic() - self._start
        now = self._read()
        share = (now[0] - self._before[0]) / 1e9 / seconds * 100
        rate = (now[1] - self._before[1]) / seconds
        print(f"{what}: {share:.3f} % of a core, {rate:.2f} voluntary switches a second, over {seconds:.0f} s", flush=True)


def memory_of(pid):
    fields = {}
    for line in Path(f"/proc/{pid}/smaps_rollup").read_text().splitlines()[1:]:
        fields[line.split(":")[0]] = int(line.split()[1]) / 1024
    return fields["Pss"], fields["Pss_Anon"]


def measure_startup():
    """From exec to the first pixel of `colour` in `area`; both programs in turn, the files warm."""
    connection = display.Display()
    root = connection.screen().root
    connection.damage_query_version()
    root.damage_create(damage.DamageReportRawRectangles)

    def until_painted(command, area, is_paint):
        start = time.perf_counter()
        process = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        while True:
            select.select([connection.fileno()], [], [], 1)
            while connection.pending_events():
                connection.next_event()
            pixels = root.get_image(*area, X.ZPixmap, 0xFFFFFFFF).data
            if any(is_paint(pixels[i + 2], pixels[i + 1], pixels[i]) for i in range(0, len(pixels), 4)):
                break
        took = (time.perf_counter() - start) * 1000
        process.terminate()
        process.wait()
        return took

    white = lambda red, green, blue: min(red, green, blue) > 230  # noqa: E731
    kestro, bare = [], []
    for turn in range(16):
        ours = until_painted([os.environ["KESTRO"]], (1876, 505, 36, 60), white)
        theirs = until_painted([os.environ["BARE"]], (0, 0, 40, 40), white)
        if turn > 0:  # the first warms the caches
            kestro.append(ours)
            bare.append(theirs)
    print(f"start to glyphs: median {statistics.median(kestro):.0f} ms, a bare window's {statistics.median(bare):.0f} ms, "
          f"{statistics.median(kestro) / statistics.median(bare):.2f} times, {len(kestro)} interleaved runs")


def measure_memory():
    with Kestro(AGENTS) as kestro:
        pause(float(os.environ.get("IDLE_SECONDS", "60")))
        pss, anonymous = memory_of(kestro.pid)
        print(f"memory idle: PSS {pss:.1f} MB, of it anonymous {anonymous:.1f} MB", flush=True)
        pointer = Pointer()
        for _ in range(10):
            for name in ("Stats", "AI"):
                pointer.glide(*kestro.tree.find("button", name).frame.middle)
                kestro.tree.wait("panel", name)
                pointer.glide(600, 200)
                kestro.tree.wait_gone("panel", name)
        pause(5)
        later, anonymous = memory_of(kestro.pid)
        print(f"after every card ten times: PSS {later:.1f} MB ({later - pss:+.1f}), anonymous {anonymous:.1f} MB")


def measure_idle():
    with Kestro(AGENTS) as kestro:
        pause(5)
        usage = Usage(kestro.pid)
        pause(60)
        usage.report("idle")


def measure_pointer():
    with Kestro(AGENTS) as kestro:
        pointer = Pointer()
        pointer.move(600, 200)
        watch = DamageWatch(strip_of(kestro))
        pause(2)
        watch.forget()
        usage = Usage(kestro.pid)
        for step in range(125 * 10):
            pointer.move(300 + step % 500, 200 + step % 300)
            pause(1 / 125)
        usage.report("pointer elsewhere at 125 Hz")
        print("frames drawn meanwhile:", "some" if watch.next(0.1) else "none")


def send(event, session="s"):
    client = socket.socket(socket.AF_UNIX)
    client.connect(str(SOCKET))
    body = {"session_id": session, "hook_event_name": event, "cwd": "/home/u/kestro"}
    client.sendall(b"agent=claude\n" + json.dumps(body).encode())
    client.recv(1)
    client.close()


def measure_socket():
    with Kestro(AGENTS) as kestro:
        wait_for(SOCKET.exists)
        watch = DamageWatch(strip_of(kestro))
        times = []
        for turn in range(200):
            pause(0.02)
            watch.forget()
            start = time.perf_counter()
            send("PermissionRequest" if turn % 2 else "Stop")
            times.append((watch.next() - start) * 1000)
        print(f"socket to damage: median {statistics.median(times):.1f} ms, 99th percentile {percentile(times, 0.99):.1f} ms, {len(times)} events")


def measure_magnify():
    with Kestro({**AGENTS, "dockMagnification": True}) as kestro:
        x, y = kestro.tree.find("button", "Stats").frame.middle
        pointer = Pointer()
        pointer.glide(x, y)
        watch = DamageWatch(strip_of(kestro))
        pause(0.5)
        times = []
        for turn in range(600):
            due = time.perf_counter() + 1 / 120
            watch.forget()
            start = time.perf_counter()
            pointer.move(x, y - 15 + turn % 60 if turn % 120 < 60 else y + 45 - turn % 60)
            moment = watch.next(0.5)
            if moment:
                times.append((moment - start) * 1000)
            pause(max(0, due - time.perf_counter()))
        print(f"motion to damage: median {statistics.median(times):.1f} ms, 99th percentile {percentile(times, 0.99):.1f} ms, {len(times)} motions of 600")


def measure_shortcut():
    with Kestro(AGENTS) as kestro:
        Pointer().move(600, 200)
        keys = Keys()
        watch = DamageWatch(strip_of(kestro))
        times = []
        for _ in range(100):
            pause(0.1)
            watch.forget()
            start = time.perf_counter()
            keys.type("ctrl+alt+space")
            times.append((watch.next() - start) * 1000)
            kestro.tree.wait("panel", "Stats")
            keys.type("Escape")
            kestro.tree.wait_gone("panel", "Stats")
        print(f"key to damage: median {statistics.median(times):.1f} ms, 95th percentile {percentile(times, 0.95):.1f} ms, {len(times)} presses")


def measure_settings():
    """From Control and the comma, typed into the dock, until the window's own colour stands in its middle."""
    with Kestro(AGENTS) as kestro:
        Pointer().move(600, 200)
        keys = Keys()
        connection = display.Display()
        root = connection.screen().root
        connection.damage_query_version()
        root.damage_create(damage.DamageReportRawRectangles)
        screen = connection.screen()
        area = (screen.width_in_pixels // 2 + 100, screen.height_in_pixels // 2 + 200, 8, 8)
        opened, kept = [], []
        for _ in range(20):
            before = memory_of(kestro.pid)[0]
            keys.type("ctrl+alt+space")
            kestro.tree.wait("panel", "Stats")
            pause(0.2)
            start = time.perf_counter()
            keys.type("ctrl+comma")
            while min(root.get_image(*area, X.ZPixmap, 0xFFFFFFFF).data[:3]) < 230:
                select.select([connection.fileno()], [], [], 1)
                while connection.pending_events():
                    connection.next_event()
            opened.append((time.perf_counter() - start) * 1000)
            kestro.tree.wait("page tab", "General")
            pause(0.3)
            keys.type("ctrl+w")
            kestro.tree.wait_gone("page tab", "General")
            pause(1)
            kept.append(memory_of(kestro.pid)[0] - before)
        print(f"settings, first opening to painted: {opened[0]:.0f} ms, later median {statistics.median(opened[1:]):.0f} ms")
        print(f"memory kept after closing: first {kept[0]:+.1f} MB, openings 2 to 20 together {sum(kept[1:]):+.1f} MB (PSS)")


def measure_shortcuts_idle():
    items = [{"id": str(uuid.uuid4()).upper(), "kind": {"app": {"path": f"/usr/share/applications/{key}.desktop"}},
              "shortcut": {"keyCode": key, "modifiers": 6144}} for key in range(16)]
    layout = {"$data": base64.b64encode(json.dumps(items).encode()).decode()}
    with Kestro({"launcherItems": layout, "launcherItems.migrated": True}) as kestro:
        pause(5)
        usage = Usage(kestro.pid)
        pause(60)
        usage.report("idle with 17 shortcuts")


def measure_events():
    """A hundred events a second over 500 sessions, the card closed."""
    with Kestro(AGENTS) as kestro:
        Pointer().move(600, 200)
        wait_for(SOCKET.exists)
        for session in range(500):
            send("UserPromptSubmit", f"s-{session}")
        pause(2)
        usage = Usage(kestro.pid)
        due = time.perf_counter()
        for number in range(3000):
            send("PostToolUse", f"s-{number * 7 % 500}")
            due += 1 / 100
            pause(max(0, due - time.perf_counter()))
        usage.report("100 events a second over 500 sessions")


def measure_working():
    """Four sessions at work and the card closed: what the badge's motion costs."""
    with Kestro(AGENTS) as kestro:
        Pointer().move(600, 200)
        wait_for(SOCKET.exists)
        for session in range(4):
            send("UserPromptSubmit", f"s-{session}")
        pause(3)
        usage = Usage(kestro.pid)
        pause(20)
        usage.report("four sessions at work, card closed")


def measure_sessions():
    """20,000 sessions: what they keep, and how long the accessibility tree takes to answer right afterwards."""
    with Kestro(AGENTS) as kestro:
        wait_for(SOCKET.exists)

        def asked():
            start = time.perf_counter()
            kestro.tree.find("button", "AI")
            return (time.perf_counter() - start) * 1000

        before, memory = asked(), memory_of(kestro.pid)[0]
        start = time.perf_counter()
        for session in range(20_000):
            send("UserPromptSubmit", f"s-{session}")
        sent = time.perf_counter() - start
        print(f"accessibility tree: {before:.0f} ms before, {asked():.0f} ms after 20,000 sessions (sent in {sent:.1f} s)")
        pause(5)
        print(f"memory: {memory_of(kestro.pid)[0] - memory:+.1f} MB (PSS)")


def measure_status_line():
    """The user's own command alone and through the wrapper, in turn, with a running program to send to."""
    settings = HOME / ".claude" / "settings.json"
    settings.parent.mkdir()
    settings.write_text(json.dumps({"statusLine": {"type": "command", "command": "cat"}}))
    with Kestro({"limitsEnabled": True}):
        wrapper = wait_for(lambda: "kestro" in settings.read_text() and
                           json.loads(settings.read_text())["statusLine"]["command"])
        for size, turns in ((2_000, 300), (1_000_000, 100)):
            body = json.dumps({"rate_limits": {"five_hour": {"used_percentage": 1, "resets_at": 4102444800}},
                               "more": "x" * size}).encode()
            times = {"cat": [], wrapper: []}
            for _ in range(turns):
                for command, taken in times.items():
                    start = time.perf_counter()
                    done = subprocess.run(["/bin/sh", "-c", command], input=body, stdout=subprocess.PIPE, check=True)
                    taken.append((time.perf_counter() - start) * 1000)
                    assert done.stdout.strip() == body
            bare, wrapped = (statistics.median(taken) for taken in times.values())
            print(f"status line of {size} bytes: median {wrapped:.2f} ms, bare {bare:.2f} ms, added {wrapped - bare:.2f} ms, {turns} interleaved")


class Halted:
    """The program with its main thread, and that alone, stopped."""

    def __init__(self, pid):
        self._pid, self._libc = pid, ctypes.CDLL(None, use_errno=True)
        self._libc.ptrace.argtypes = [ctypes.c_long, ctypes.c_long, ctypes.c_void_p, ctypes.c_void_p]

    def _ptrace(self, request):
        if self._libc.ptrace(request, self._pid, None, None) != 0:
            raise OSError(ctypes.get_errno(), "ptrace")

    def __enter__(self):
        self._ptrace(0x4206)  # PTRACE_SEIZE
        self._ptrace(0x4207)  # PTRACE_INTERRUPT
        os.waitpid(self._pid, 0x40000000)  # __WALL

    def __exit__(self, *_):
        self._ptrace(17)  # PTRACE_DETACH


def measure_blocked():
    """Two hundred hooks while the main thread is blocked for ten seconds: how long each of them takes."""
    with Kestro(AGENTS) as kestro:
        command = wait_for(lambda: (HOME / ".claude" / "settings.json").exists() and json.loads(
            (HOME / ".claude" / "settings.json").read_text()))["hooks"]["Stop"][0]["hooks"][0]["command"]

        def connect(session):
            start = time.perf_counter()
            send("Stop", f"c-{session}")
            return (time.perf_counter() - start) * 1000

        def hook(session):
            text = json.dumps({"session_id": f"h-{session}", "hook_event_name": "Stop", "cwd": "/"})
            start = time.perf_counter()
            subprocess.run(["/bin/sh", "-c", command], input=text, text=True, check=True)
            return (time.perf_counter() - start) * 1000

        end = time.perf_counter() + 10
        with Halted(kestro.pid):
            with ThreadPoolExecutor(200) as pool:
                connections = list(pool.map(connect, range(200)))
            hooks = [hook(session) for session in range(200)]
            with ThreadPoolExecutor(8) as pool:
                together = list(pool.map(hook, range(200)))
            pause(max(0, end - time.perf_counter()))
        for what, times in (("connections at once", connections), ("hooks one after another", hooks), ("hooks, 8 at a time", together)):
            print(f"blocked, 200 {what}: median {statistics.median(times):.1f} ms, most {max(times):.1f} ms")


def measure_kill():
    """From the end of an agent's process to the end of its badge, the card closed."""
    script = HOME / "claude"
    script.write_text("#!/bin/bash\nsh -c \"$1\" </dev/stdin\nread -r line\n")
    script.chmod(0o755)
    with Kestro(AGENTS) as kestro:
        command = wait_for(lambda: (HOME / ".claude" / "settings.json").exists() and json.loads(
            (HOME / ".claude" / "settings.json").read_text()))["hooks"]["Stop"][0]["hooks"][0]["command"]
        text = json.dumps({"session_id": "k", "hook_event_name": "UserPromptSubmit", "cwd": "/"})
        times = []
        for _ in range(10):
            agent = subprocess.Popen([script, f"printf %s '{text}' | {{ {command}\n}}"], stdin=subprocess.PIPE)
            wait_for(lambda: kestro.tree.find("button", "AI").description == "Working")
            pause(2.5)
            start = time.perf_counter()
            agent.kill()
            wait_for(lambda: kestro.tree.find("button", "AI").description == "", 5)
            times.append((time.perf_counter() - start) * 1000)
            agent.wait()
        print(f"kill to the row's end, asked every 10 ms: median {statistics.median(times):.0f} ms, most {max(times):.0f} ms")


if __name__ == "__main__":
    if not sys.argv[1:]:
        sys.exit(__doc__)
    for each in sys.argv[1:]:
        globals()[f"measure_{each}"]()
