#!/usr/bin/env python3
"""Starts a close while another one runs: it must be refused with words, and change nothing.

usage: cierres_a_la_vez.py QUIMOCTL DATA_DIR INYECTOR [POINTS]

The first close is stopped at one of its operations on files, at POINTS points spread over all of
them. Two more are started meanwhile, one with --continuar. Then the first goes on, and everything
must be as after a close that nobody disturbed. Last, one that is stopped is killed: then the next
one must not be refused.
"""
import shutil
import signal
import subprocess
import sys
import tempfile
import time

from fallar_cierre import Calm, Faulty, go_on, said, whole
from matar_cierre import new_central

WAIT_S = 60


def stopped(process):
    """Waits until the process stops itself; False when it ended instead."""
    limit = time.monotonic() + WAIT_S
    while process.poll() is None and time.monotonic() < limit:
        with open(f"/proc/{process.pid}/stat", encoding="ascii") as f:
            if f.read().rsplit(")", 1)[1].split()[0] == "T":
                return True
        time.sleep(0.02)
    return False


def meanwhile(r):
    """What is wrong with two closes that are started while the first is at work."""
    wrong = []
    others = [subprocess.Popen(r.command(*more), stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
              for more in ([], ["--continuar"])]
    for other in others:
        try:
            output, error = other.communicate(timeout=WAIT_S)
        except subprocess.TimeoutExpired:
            other.kill()
            output, error = other.communicate()
            wrong.append(f"another close is not refused within {WAIT_S} s")
            continue
        if other.returncode != 1 or not error.strip() or output.strip():
            wrong.append(f"another close is not refused: status {other.returncode}, {output[:60]!r} {error[-160:]!r}")
        wrong += said(subprocess.CompletedProcess([], other.returncode, output, error), "another close")
    return wrong


def check(make, calm, inyector, n, kill):
    r = make()
    first = subprocess.Popen(r.command(), env=r.under(inyector, modo="parar", n=n), text=True,
                             stdout=subprocess.PIPE, stderr=subprocess.PIPE)
    try:
        if not stopped(first):
            return [f"it did not come to call {n}"]
        wrong = meanwhile(r)
        first.send_signal(signal.SIGKILL if kill else signal.SIGCONT)
        output, error = first.communicate(timeout=120)
        if kill:
            return wrong + go_on(r, calm)
        wrong += said(subprocess.CompletedProcess([], first.returncode, output, error), "the first close")
        if first.returncode != 0:
            wrong.append(f"the first close ended with status {first.returncode}: {error!r}")
        return wrong + whole(r, calm)
    finally:
        first.kill()
        first.wait()
        r.remove()


def main():
    ctl, data, inyector = sys.argv[1:4]
    points = int(sys.argv[4]) if len(sys.argv) > 4 else 8
    folder = tempfile.mkdtemp(prefix="cierre-")
    central = new_central(ctl, data, folder)
    make = lambda: Faulty(ctl, data, central)
    r = make()
    calm = Calm(r, inyector)
    r.remove()
    # From where the date has moved on to where the last terminal has its database: before and after that there
    # is no close to be disturbed.
    begun = next(i for i, (_, path, _) in enumerate(calm.calls) if path.startswith("/dir/"))
    ended = max(i for i, (_, path, _) in enumerate(calm.calls) if path.startswith("/red/"))
    deviations = 0
    for k in range(points):
        n = begun + int((ended - begun) * (k + 0.5) / points)
        wrong = check(make, calm, inyector, n, kill=k % 4 == 3)
        deviations += len(wrong)
        if wrong:
            print(f"at call {n}: {' '.join(calm.calls[n - 1])}", *wrong, sep="\n    ", flush=True)
    shutil.rmtree(folder)
    print(f"{points} closes with two others beside them, {deviations} deviations")
    return 1 if deviations else 0


if __name__ == "__main__":
    sys.exit(main())
