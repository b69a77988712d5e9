#!/usr/bin/env python3
"""How long the desktop program takes to show its login window, and the memory of its main window.

usage: arranque.py QUIMO QUIMOCTL [RUNS]

On a display of its own (Xvfb) and a demonstration restaurant in a temporary folder. Prints the
smallest, the median and the largest of each figure.
"""
import os
import re
import statistics
import subprocess
import sys
import tempfile
import time

DISPLAY = ":93"
LIMIT_S = 30


def window(title):
    found = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", title], capture_output=True, text=True)
    return found.stdout.split()[0] if found.returncode == 0 and found.stdout else None


def wait_for(title):
    start = time.monotonic()
    while time.monotonic() - start < LIMIT_S:
        if identity := window(title):
            return identity
        time.sleep(0.005)
    raise SystemExit(f"no window '{title}' within {LIMIT_S} s")


def memory_kib(process):
    status = open(f"/proc/{process.pid}/status", encoding="ascii").read()
    return int(re.search(r"VmRSS:\s+(\d+)", status)[1]), int(re.search(r"VmHWM:\s+(\d+)", status)[1])


def one_run(quimo, base, user, password):
    start = time.monotonic()
    process = subprocess.Popen([quimo, "embebido", base], stderr=subprocess.DEVNULL)
    try:
        login = wait_for("^Entrada a QUIMO$")
        seconds = time.monotonic() - start
        time.sleep(0.3)
        for command in (["windowfocus", "--sync", login], ["type", user], ["key", "Tab"], ["type", password], ["key", "Return"]):
            subprocess.run(["xdotool", *command], check=True, stderr=subprocess.DEVNULL)
        wait_for("^Servidor Quimo$")
        time.sleep(1)
        return seconds, *memory_kib(process)
    finally:
        process.kill()
        process.wait()


def main():
    quimo, ctl = (os.path.abspath(path) for path in sys.argv[1:3])
    runs = int(sys.argv[3]) if len(sys.argv) > 3 else 5
    with tempfile.TemporaryDirectory() as folder:
        demo = subprocess.run([ctl, "demo", f"{folder}/demo"], capture_output=True, text=True, check=True).stdout
        user, password = re.search(r"usuario (\S+), contraseña (\S+),", demo).groups()
        os.environ.update(DISPLAY=DISPLAY, QUIMO_DIR=f"{folder}/demo/quimo", XDG_CONFIG_HOME=f"{folder}/ajustes",
                          QUIMO_CLAVE_ARCHIVO=f"{folder}/demo/quimo/clave", LC_ALL="C.UTF-8")
        xvfb = subprocess.Popen(["Xvfb", DISPLAY, "-screen", "0", "1366x768x24", "-noreset"], stderr=subprocess.DEVNULL)
        try:
            time.sleep(1)
            results = [one_run(quimo, f"{folder}/demo/central.db", user, password) for _ in range(runs)]
        finally:
            xvfb.terminate()
            xvfb.wait()
    for name, values, unit in (("command to login window", [r[0] * 1000 for r in results], "ms"),
                               ("memory, main window open", [r[1] / 1024 for r in results], "MiB"),
                               ("peak memory until then", [r[2] / 1024 for r in results], "MiB")):
        print(f"{name}: {min(values):.0f}, {statistics.median(values):.0f}, {max(values):.0f} {unit}")


if __name__ == "__main__":
    main()
