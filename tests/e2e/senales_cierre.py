#!/usr/bin/env python3
"""A close that is told to end, and one whose reader goes away: both end with a word, and go on whole.

usage: senales_cierre.py QUIMOCTL DATA_DIR
"""
import shutil
import signal
import subprocess
import sys
import tempfile

from matar_cierre import TERMINALS, Restaurant, new_central

# Told to end when this line has been printed.
MOMENTS = ["Avanzando la fecha", "Leyendo la terminal CAJA2", "Copiando las ventas de CAJA1", "Enviando catálogos a CAJA1",
           "Enviando catálogos a BARRA"]


def told_to_end(r, moment, number):
    """The close, ended by a signal after a line of its output. Its status and what it said."""
    process = subprocess.Popen(r.command(), stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
    for line in process.stdout:
        if line.startswith(moment):
            process.send_signal(number)
            break
    out, error = process.communicate(timeout=120)
    return process.returncode, error


def reader_gone(r):
    """The close with `head -1` behind it."""
    process = subprocess.Popen(r.command(), stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
    process.stdout.readline()
    process.stdout.close()
    error = process.stderr.read()
    return process.wait(timeout=120), error


def main():
    ctl, data = sys.argv[1:3]
    folder = tempfile.mkdtemp(prefix="cierre-")
    central = new_central(ctl, data, folder)
    calm = Restaurant(ctl, data, central)
    assert subprocess.run(calm.command(), capture_output=True, timeout=120).returncode == 0
    wanted = calm.central(), {name: calm.dump(name) for name in TERMINALS}
    calm.remove()
    cases = [(f"{number.name} after '{moment}'", lambda r, m=moment, n=number: told_to_end(r, m, n))
             for moment in MOMENTS for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP)]
    cases.append(("the reader gone", reader_gone))
    ended = 0
    for name, run in cases:
        r = Restaurant(ctl, data, central)
        status, error = run(r)
        if status != 0:  # it may have been at its last steps already
            ended += 1
            assert status == 1, f"{name}: status {status}: {error}"
            assert "--continuar" in error, f"{name}: {error}"
            again = subprocess.run(r.command("--continuar"), capture_output=True, text=True, timeout=120)
            assert again.returncode == 0, f"{name}: {again.stderr}"
        assert r.central() == wanted[0], f"{name}: the central database differs"
        for terminal in TERMINALS:
            assert r.dump(terminal) == wanted[1][terminal], f"{name}: {terminal} differs"
        r.remove()
    print(f"{ended} of {len(cases)} closes ended on the way and went on")
    assert ended > len(cases) // 2, "the signals came too late"
    shutil.rmtree(folder)


if __name__ == "__main__":
    main()
