#!/usr/bin/env python3
"""Closes the recorded day with too little room, and goes on with it when there is enough.

usage: disco_lleno.py QUIMOCTL DATA_DIR INYECTOR [SIZES]

The central database, the program's folder or a terminal's share lies on a small disk of its own (a
file system in memory, where this process may mount one) of SIZES sizes, from hardly more than what
is there before to more than enough. Where it may not, no file may grow beyond such a size. A close
either does everything or says in Spanish what is missing, and goes on once there is room.
"""
import os
import resource
import shutil
import signal
import subprocess
import sys
import tempfile

from fallar_cierre import Calm, Faulty, go_on, half_done, said, whole
from matar_cierre import new_central

KB = 1024


class SmallDisk:
    """A file system in memory over a folder, whose contents move into it; one that can grow."""

    def __init__(self, folder, size):
        self.folder, aside = folder, folder + "-aparte"
        os.rename(folder, aside)
        os.mkdir(folder)
        subprocess.run(["mount", "-t", "tmpfs", "-o", f"size={size}", "quimo", folder], check=True, capture_output=True)
        shutil.copytree(aside, folder, dirs_exist_ok=True)
        shutil.rmtree(aside)

    def grow(self):
        subprocess.run(["mount", "-o", "remount,size=64m", self.folder], check=True, capture_output=True)

    def remove(self):
        subprocess.run(["umount", self.folder], check=True, capture_output=True)


def may_mount():
    with tempfile.TemporaryDirectory() as folder:
        if subprocess.run(["mount", "-t", "tmpfs", "quimo", folder], capture_output=True).returncode != 0:
            return False
        subprocess.run(["umount", folder], check=True)
        return True


def in_place(r, what):
    """The folder that is to be small. The central database moves into one of its own."""
    if what == "central":
        os.mkdir(f"{r.dir}/central")
        r.db = shutil.move(r.db, f"{r.dir}/central/central.db")
    return {"central": f"{r.dir}/central", "programa": f"{r.dir}/dir", "terminal": f"{r.dir}/red/CAJA2/quimo"}[what]


def used(folder):
    return sum(os.path.getsize(os.path.join(place, f)) for place, _, files in os.walk(folder) for f in files)


def limited(size):
    def limit():
        signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
        resource.setrlimit(resource.RLIMIT_FSIZE, (size, size))
    return limit


def close_small(make, calm, what, room, mounting):
    """The deviations of one close with so much room beyond what is there, and its status."""
    r = make()
    disk = None
    try:
        folder = in_place(r, what)
        size = used(folder) + room
        if mounting:
            disk = SmallDisk(folder, size)
        run = subprocess.run(r.command(), capture_output=True, text=True, timeout=240,
                             preexec_fn=None if mounting else limited(size))
        wrong = said(run, "the close") + half_done(r, calm)
        if mounting:
            disk.grow()
        wrong += go_on(r, calm) if run.returncode == 1 else whole(r, calm)
        return wrong, run.returncode
    finally:
        if disk is not None:
            disk.remove()
        r.remove()


def main():
    ctl, data, inyector = sys.argv[1:4]
    sizes = int(sys.argv[4]) if len(sys.argv) > 4 else 8
    folder = tempfile.mkdtemp(prefix="cierre-")
    central = new_central(ctl, data, folder)
    make = lambda: Faulty(ctl, data, central)
    r = make()
    calm = Calm(r, inyector)
    r.remove()
    mounting = may_mount()
    deviations = 0
    for what, most in (("central", 1536), ("programa", 16384), ("terminal", 1024)):
        statuses = []
        for k in range(sizes):
            room = 16 * KB + most * KB * k // (sizes - 1)
            wrong, status = close_small(make, calm, what, room, mounting)
            statuses.append(status)
            deviations += len(wrong)
            if wrong:
                print(f"{what}, {room // KB} KB more than before, status {status}", *wrong, sep="\n    ", flush=True)
        print(f"{what}: statuses from tight to roomy {statuses}", flush=True)
        if set(statuses) != {0, 1}:
            deviations += 1
            print(f"{what}: these sizes prove nothing")
    shutil.rmtree(folder)
    print(f"{deviations} deviations {'on small disks' if mounting else 'with small files'}")
    return 1 if deviations else 0


if __name__ == "__main__":
    sys.exit(main())
