#!/usr/bin/env python3
"""The built program as a process of its own, on a display of its own: what it ends with.

usage: programa_real.py QUIMOCTL DATA_DIR QUIMO
"""
import os
import re
import subprocess
import sys
import tempfile
import time

LIMIT_S = 20


def xdotool(*words):
    return subprocess.run(["xdotool", *words], capture_output=True, text=True, timeout=LIMIT_S)


def wait_for(process, title):
    start = time.monotonic()
    while time.monotonic() - start < LIMIT_S:
        assert process.poll() is None, f"ended with {process.returncode} before '{title}'"
        found = xdotool("search", "--onlyvisible", "--name", title).stdout.split()
        if found:
            return found[-1]
        time.sleep(0.02)
    raise AssertionError(f"no window '{title}'")


def keys(window, *words):
    xdotool("windowfocus", "--sync", window)
    for word in words:
        xdotool("key" if word in ("Tab", "Return", "alt+a", "s") else "type", word)


def status_after_boxes(quimo, arguments):
    """Presses Return on every message until the program ends."""
    process = subprocess.Popen([quimo, *arguments], stderr=subprocess.DEVNULL)
    try:
        start = time.monotonic()
        boxes = 0
        while process.poll() is None and time.monotonic() - start < LIMIT_S:
            for window in xdotool("search", "--onlyvisible", "--name", "^QUIMO$").stdout.split():
                xdotool("windowfocus", window)
                xdotool("key", "Return")
                boxes += 1
            time.sleep(0.1)
        assert boxes > 0, f"{arguments}: ended without a word"
        return process.poll()
    finally:
        process.kill()
        process.wait()


def login_and_leave(quimo, base, user, password):
    process = subprocess.Popen([quimo, "embebido", base], stderr=subprocess.DEVNULL)
    try:
        keys(wait_for(process, "^Entrada a QUIMO$"), user, "Tab", password, "Return")
        window = wait_for(process, "^Servidor Quimo$")
        time.sleep(0.5)
        keys(window, "alt+a", "s")
        return process.wait(LIMIT_S)
    finally:
        process.kill()
        process.wait()


def free_display():
    return next(n for n in range(120, 200) if not os.path.exists(f"/tmp/.X11-unix/X{n}"))


def main():
    ctl, _, quimo = sys.argv[1:4]
    with tempfile.TemporaryDirectory() as folder:
        demo = subprocess.run([ctl, "demo", f"{folder}/demo"], capture_output=True, text=True, check=True, timeout=120).stdout
        user, password = re.search(r"usuario (\S+), contraseña (\S+),", demo).groups()
        display = f":{free_display()}"
        os.environ.update(DISPLAY=display, QT_QPA_PLATFORM="xcb", QUIMO_DIR=f"{folder}/demo/quimo", LC_ALL="C.UTF-8",
                          XDG_CONFIG_HOME=f"{folder}/ajustes", QUIMO_CLAVE_ARCHIVO=f"{folder}/demo/quimo/clave")
        xvfb = subprocess.Popen(["Xvfb", display, "-screen", "0", "1366x768x24", "-noreset"], stderr=subprocess.DEVNULL)
        try:
            time.sleep(1)
            for arguments in ([], ["embebido"], ["embebido", f"{folder}/no.db"], ["uno", "dos", "tres"]):
                status = status_after_boxes(quimo, arguments)
                assert status == 1, f"{arguments}: status {status}"
            status = login_and_leave(quimo, f"{folder}/demo/central.db", user, password)
            assert status == 0, f"closed with status {status}"
        finally:
            xvfb.terminate()
            xvfb.wait()


if __name__ == "__main__":
    main()
