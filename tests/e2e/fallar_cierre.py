#!/usr/bin/env python3
"""Lets a close fail at every operation on a file, goes on with it, and looks at what is left.

usage: fallar_cierre.py QUIMOCTL DATA_DIR INYECTOR [--muestra N] [--solo MODE:KINDS:ERROR:N] [--hilos N]

An undisturbed close of the recorded day comes first; `inyector` writes down what it does to its
files. Then, for each of these calls, a new close is run in which that call fails once, or it and all
after it fail, or half of a write arrives, or the process is killed before or after it, or it is a power
cut: every file then holds what it held when it was last made durable. What such a close says must be true: status 0 only if everything is done, 4 only with the terminals named that
went without; no death by a signal of its own, no text that is not Spanish. At every moment a
terminal holds its old database or the new one, and an old one that is gone is in the archive. Then
the close is continued without faults, and every table of the central database, every terminal and
every share must be as after the undisturbed close.

--muestra N takes N points, spread evenly over the calls of each kind; without it all are taken, which lasts for hours. Each
deviation is told with its point, which --solo repeats.
"""
import argparse
import collections
import concurrent.futures
import errno
import glob
import os
import re
import shutil
import signal
import sqlite3
import subprocess
import sys
import tempfile

from matar_cierre import DATE, PENDING, TERMINALS, Restaurant, digest, new_central

DAY = "14112026"
WRITES = "abrir,escribir,carpeta,recortar"
# How a call is disturbed: mode, the kinds that are counted (none: all), the error.
PLANS = [("una", "sincronizar", errno.EIO), ("una", "escribir", errno.EIO), ("una", "abrir,cerrar", errno.EIO),
         ("una", "renombrar,borrar,carpeta,recortar,mapear", errno.EIO), ("una", WRITES, errno.ENOSPC),
         ("todas", "", errno.EIO), ("todas", WRITES, errno.ENOSPC), ("mitad", "escribir", 0),
         ("antes", "", 0), ("despues", "", 0), ("corte", "", 0)]
# What the libraries below say and no manager should read.
# What follows [SQL Server] is the server's own text, in its language.
FOREIGN = re.compile(r"terminate called|what\(\)|Traceback|disk I/O|database or disk|unable to open|is locked|malformed"
                     r"|Input/output|No space left|[Ff]ailed|[Cc]annot|\berror\b(?! \d)|[Nn]ot found", re.ASCII)
Point = collections.namedtuple("Point", "mode kinds error n")


class Faulty(Restaurant):
    """A restaurant whose close runs under the preloaded library."""

    def under(self, inyector, **settings):
        environment = {**os.environ, "LD_PRELOAD": inyector, "INYECTOR_RAIZ": self.dir, "INYECTOR_SIN": "/QUIMO.log",
                       "ASAN_OPTIONS": "verify_asan_link_order=0"}
        environment.update({f"INYECTOR_{name.upper()}": str(value) for name, value in settings.items()})
        return environment

    def disturbed(self, inyector, **settings):
        return self.listen(self.under(inyector, **settings))

    def listen(self, environment=None, *options):
        return subprocess.run(self.command(*options), capture_output=True, text=True, timeout=240, env=environment)

    def tables(self):
        """Every row of every table, without regard to order."""
        with sqlite3.connect(self.db) as db:
            # The row that tells who has the turn is no obstacle when its holder could not take it away.
            names = [n for (n,) in db.execute("SELECT name FROM sqlite_master WHERE type='table' AND name<>'Candado' ORDER BY name")]
            found = {n: sorted(map(repr, db.execute(f'SELECT * FROM "{n}"'))) for n in names}
        db.close()
        return found

    def cut(self, inyector, n):
        """A close that a power cut ends before its call n."""
        with tempfile.TemporaryDirectory(prefix="sombra-") as shadow:
            files = lambda: [os.path.join(place, f) for place, _, names in os.walk(self.dir) for f in names]
            for path in files():
                shutil.copy(path, f"{shadow}/{os.stat(path).st_ino}")
            run = self.disturbed(inyector, modo="antes", n=n, sombra=shadow)
            for path in files():
                durable = f"{shadow}/{os.stat(path).st_ino}"
                if path.endswith("-shm"):
                    os.remove(path)  # shared memory
                elif os.path.exists(durable):
                    shutil.copy(durable, path)
                elif not path.endswith("/QUIMO.log"):
                    os.truncate(path, 0)
        return run

    def calls(self, inyector):
        """An undisturbed close, and what it did: (kind, path, new name) for each call."""
        with tempfile.NamedTemporaryFile(mode="r", prefix="llamadas-") as record:
            done = self.disturbed(inyector, registro=record.name)
            assert done.returncode == 0, done.stderr
            lines = [line.rstrip("\n").split("\t")[1:] for line in record]
        return [(kind, path[len(self.dir):], new[len(self.dir):]) for kind, path, new in lines]


class Calm:
    """What an undisturbed close leaves, to compare with."""

    def __init__(self, restaurant, inyector):
        self.files = {name: digest(restaurant.terminal(name)) for name in TERMINALS}
        self.calls = restaurant.calls(inyector)
        self.tables = restaurant.tables()
        self.dumps = {name: restaurant.dump(name) for name in TERMINALS}
        self.new_files = {name: digest(restaurant.terminal(name)) for name in TERMINALS}

    def count(self, kinds):
        return sum(1 for kind, _, _ in self.calls if not kinds or kind in kinds.split(","))

    def call(self, point):
        """The call that a point disturbs, and the step of the close it belongs to."""
        places = [i for i, (kind, _, _) in enumerate(self.calls) if not point.kinds or kind in point.kinds.split(",")]
        place = places[point.n - 1]
        kind, path, _ = self.calls[place]
        first = lambda part: next(i for i, (_, p, _) in enumerate(self.calls) if p.startswith(part))
        gathered = max(i for i, (_, p, _) in enumerate(self.calls[:first("/dir/Quimo_Terminal")]) if p.startswith("/dir/"))
        ended = max(i for i, (_, p, _) in enumerate(self.calls) if p.startswith("/red/"))
        steps = [(first("/dir/"), "avanzar"), (gathered, "reunir"), (first("/dir/Quimo_Terminal"), "transferir"),
                 (ended, "distribuir"), (len(self.calls), "terminar")]
        return kind, path, next(step for end, step in steps if place <= end)


def same_terminal(r, calm, name):
    return digest(r.terminal(name)) == calm.new_files[name] or r.dump(name) == calm.dumps[name]


def half_done(r, calm):
    """What is wrong with the terminals at this moment, in the middle of a close."""
    wrong = []
    for name in TERMINALS:
        path = r.terminal(name)
        if not os.path.exists(path):
            wrong.append(f"{name} has no database")
        elif digest(path) != calm.files[name]:
            if not same_terminal(r, calm, name):
                wrong.append(f"{name} holds neither its old nor its new database")
            kept = glob.glob(f"{r.dir}/dir/archivo/{DAY}/{name}/*.mdb")
            if calm.files[name] not in map(digest, kept):
                wrong.append(f"{name} was replaced and its sales are not in the archive")
    return wrong


def whole(r, calm, without=(), rests=False):
    """How a finished close differs from the undisturbed one. `without`: terminals that kept their file; `rests`:
    whether something may be left over in the program's folder, for the next run to clear."""
    wrong = []
    tables = r.tables()
    for name in sorted(calm.tables.keys() | tables.keys()):
        want, have = calm.tables.get(name), tables.get(name)
        if want != have:
            wrong.append(f"central table {name}: {len(have or [])} rows for {len(want or [])}, "
                         f"{len(set(want or []) - set(have or []))} missing or changed")
    for name in TERMINALS:
        if name in without and digest(r.terminal(name)) == calm.files[name]:
            continue
        if not same_terminal(r, calm, name):
            wrong.append(f"{name}'s new database differs")
        if calm.files[name] not in map(digest, glob.glob(f"{r.dir}/dir/archivo/{DAY}/{name}/*.mdb")):
            wrong.append(f"{name}'s sales are not in the archive")
    for folder in ("red", "dir"):
        for place, _, files in os.walk(f"{r.dir}/{folder}"):
            left = [f for f in files if (folder == "red" and f != "Quimo_Terminal.mdb") 
                    or (not rests and f.endswith((".parcial", ".tmp")))]
            wrong += [f"left in {place[len(r.dir):]}: {f}" for f in left]
    for sums in glob.glob(f"{r.dir}/dir/archivo/{DAY}/*/*.sha256"):
        with open(sums, encoding="ascii") as f:
            wanted = (f.read().split() or [""])[0]
        if os.path.exists(sums[:-7]) and digest(sums[:-7]) != wanted:
            wrong.append(f"{sums[len(r.dir):]} does not fit its file")
    return wrong


def said(run, what):
    """What is wrong with the words and the status of a run."""
    words = re.sub(r"\[SQL Server\].*", "", run.stdout + run.stderr)
    wrong = [f"{what} says: {match.group(0)!r} in {line!r}" for line in words.splitlines()
             if (match := FOREIGN.search(line))]
    if run.returncode not in (0, 1, 4):
        wrong.append(f"{what} ended with status {run.returncode}")
    if run.returncode and not run.stderr.strip():
        wrong.append(f"{what} ended with status {run.returncode} without a word on standard error")
    return wrong


def blames(run, calm, point):
    """Whether a terminal is said to be out of reach for what the server's own disk did."""
    return (point.mode == "una" and point.error == errno.EIO and calm.call(point)[1].startswith("/dir/")
            and "comunicación" in run.stdout + run.stderr)


def not_served(run):
    """The terminals that a run says went without their new database."""
    return {name for name in TERMINALS if re.search(rf"^{name} |terminal {name} no se cerro", run.stderr, re.MULTILINE)}


def go_on(r, calm):
    """Finishes a close without faults, as its own question asks for. What is wrong then."""
    date, pending = (answer["rows"][0][0] for answer in r.query([DATE, PENDING]))
    if not pending and date != DAY:
        return whole(r, calm)  # the fault came after the end
    run = r.listen(None, *(["--continuar"] if pending else []))
    wrong = said(run, "the close that went on")
    if run.returncode:
        return wrong + [f"it does not go on: status {run.returncode}, {run.stderr.strip()!r}"]
    return wrong + whole(r, calm)


def check(make, calm, inyector, point):
    """The deviations of one point, and its status."""
    r = make()
    try:
        if point.mode == "corte":
            run = r.cut(inyector, point.n)
        else:
            run = r.disturbed(inyector, modo=point.mode, clase=point.kinds, error=point.error, n=point.n)
        if point.mode in ("antes", "despues", "corte") and run.returncode == -signal.SIGKILL:
            wrong = half_done(r, calm) + go_on(r, calm)
        else:
            wrong = said(run, "the disturbed close") + half_done(r, calm)
            if blames(run, calm, point):
                wrong.append("a failure of the server's own disk is told as one of a terminal's communication")
            if run.returncode == 0:
                wrong += whole(r, calm, rests=calm.call(point)[0] == "borrar")
            elif run.returncode == 4:
                without = not_served(run)
                wrong += [] if without else ["status 4, and no terminal is named"]
                wrong += whole(r, calm, without)
            else:
                wrong += go_on(r, calm)
        return wrong, run.returncode
    except (subprocess.TimeoutExpired, AssertionError, sqlite3.Error, OSError) as failure:
        return [f"{type(failure).__name__}: {failure}"], None
    finally:
        r.remove()


def durable(calls):
    """Files that get their name before they are durable, and names that are never made durable."""
    wrong = []
    for i, (kind, path, new) in enumerate(calls):
        if kind == "renombrar":
            written = max((j for j in range(i) if calls[j][:2] == ("escribir", path)), default=-1)
            moved = max((j for j in range(i) if calls[j][0] == "renombrar" and calls[j][2] == path), default=-1)
            if ("sincronizar", path) not in [c[:2] for c in calls[written + 1:i]] and moved < written:
                wrong.append(f"{new}: renamed before its contents were durable")
            following = next((j for j in range(i + 1, len(calls)) if calls[j][0] == "renombrar"), len(calls))
            if ("sincronizar", os.path.dirname(new)) not in [c[:2] for c in calls[i:following]]:
                wrong.append(f"{new}: its name was not made durable")
        if kind == "carpeta" and path != "/dir":
            used = next((j for j in range(i, len(calls)) if calls[j][2].startswith(path + "/")), len(calls))
            if ("sincronizar", os.path.dirname(path)) not in [c[:2] for c in calls[i:used]]:
                wrong.append(f"{path}: a file in it counts before the folder is durable")
    if not any(new.startswith("/red/") for _, _, new in calls):
        wrong.append("nothing was sent: these calls prove nothing")
    return wrong


def spread(calm, sample):
    """All points, or so many, as many of each plan: rare calls are not less important than frequent ones."""
    points = []
    for mode, kinds, error in PLANS:
        count = calm.count(kinds)
        take = count if sample is None else min(count, max(1, sample // len(PLANS)))
        points += [Point(mode, kinds, error, int(count * (k + 0.5) / take) + 1) for k in range(take)]
    return points


def read_point(text):
    mode, kinds, error, n = text.split(":")
    return Point(mode, kinds, int(error), int(n))


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("quimoctl")
    parser.add_argument("data")
    parser.add_argument("inyector")
    parser.add_argument("--muestra", type=int)
    parser.add_argument("--solo", type=read_point, action="append")
    parser.add_argument("--hilos", type=int, default=os.cpu_count())
    options = parser.parse_args()
    folder = tempfile.mkdtemp(prefix="cierre-")
    central = new_central(options.quimoctl, options.data, folder)
    make = lambda: Faulty(options.quimoctl, options.data, central)
    r = make()
    calm = Calm(r, options.inyector)
    r.remove()
    failures = [f"undisturbed: {text}" for text in durable(calm.calls)]
    points = options.solo or spread(calm, options.muestra)
    print(f"{len(calm.calls)} calls in an undisturbed close, {len(points)} points", flush=True)
    print("\n".join(failures), flush=True)
    statuses, steps = collections.Counter(), collections.Counter()
    with concurrent.futures.ThreadPoolExecutor(options.hilos) as pool:
        for point, (wrong, status) in zip(points, pool.map(lambda p: check(make, calm, options.inyector, p), points)):
            kind, path, step = calm.call(point)
            statuses[point.mode, status] += 1
            steps[point.mode, step] += 1
            if wrong:
                where = f"--solo {point.mode}:{point.kinds}:{point.error}:{point.n} ({step}: {kind} {path}, status {status})"
                failures.append(where)
                print(where, *wrong, sep="\n    ", flush=True)
    shutil.rmtree(folder)
    for mode in dict.fromkeys(m for m, _ in steps):
        print(f"{mode}: points", {s: n for (m, s), n in steps.items() if m == mode},
              "statuses", {s: n for (m, s), n in statuses.items() if m == mode})
    print(f"{len(failures)} deviations")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
