#!/usr/bin/env python3
"""Kills a close at many points and lets it go on: no sale may be lost, no file be half-written.

usage: matar_cierre.py QUIMOCTL DATA_DIR [POINTS]

An undisturbed close of the recorded day is run first. Then, for each point, the same close is killed
(SIGKILL) after that share of the undisturbed time, the central database and the terminals are
checked, and the close is continued. Everything must end as in the undisturbed one.
"""
import hashlib
import json
import os
import shutil
import signal
import subprocess
import sys
import tempfile
import time

TERMINALS = ["CAJA1", "CAJA2", "BARRA"]
TABLES = {"Comanda": "ID_Comanda", "Cuenta": "ID_Comanda,Num_Cuenta", "ProductosXCuenta": "ID_ProductosXCuenta",
          "Cortesia": "ID_ProductosXCuenta,ID_Tipo_Cortesia", "Modificador": "ID_ProductosXCuenta,ID_Tipo_Modificador",
          "ImpuestosXCuenta": "ID_ProductosXCuenta,ID_Tipo_Impuesto", "Pago": "ID_Pago",
          "Parametros": "ID_Parametro", "Transacciones": "ID_Transaccion", "Cierre_Pendiente": "Fecha_Cierre"}
DATE = "SELECT Valor_Cad FROM Parametros WHERE ID_Parametro='FECHA_TRABAJO'"

PENDING = "SELECT COUNT(*) FROM Cierre_Pendiente"


class Restaurant:
    def __init__(self, ctl, data, central):
        self.ctl = ctl
        self.dir = tempfile.mkdtemp(prefix="cierre-")
        self.db = f"{self.dir}/central.db"
        os.makedirs(f"{self.dir}/dir")
        shutil.copy(f"{data}/terminals/Plantilla.mdb", f"{self.dir}/dir/Plantilla.mdb")
        for name in TERMINALS:
            os.makedirs(f"{self.dir}/red/{name}/quimo")
            shutil.copy(f"{data}/terminals/{name}/Quimo_Terminal.mdb", self.terminal(name))
        shutil.copy(central, self.db)

    def terminal(self, name):
        return f"{self.dir}/red/{name}/quimo/Quimo_Terminal.mdb"

    def standing(self, name):
        """The file that stands for a terminal's database at this moment."""
        return self.terminal(name)

    def network(self):
        return ["--red", f"{self.dir}/red"]

    def command(self, *options):
        return [self.ctl, "cerrar", "embebido", self.db, *self.network(), "--dir", f"{self.dir}/dir", *options]

    def close(self, *options):
        return subprocess.Popen(self.command(*options), stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)

    def query(self, statements):
        run = subprocess.run([self.ctl, "sql", "embebido", self.db, "--lineas"], input="\n".join(statements) + "\n",
                             capture_output=True, text=True, timeout=120, check=True)
        answers = [json.loads(line) for line in run.stdout.splitlines()]
        for statement, answer in zip(statements, answers):
            assert "error" not in answer, f"{statement}: {answer}"
        return answers

    def central(self):
        return self.query([f"SELECT * FROM {t} ORDER BY {key}" for t, key in TABLES.items()])

    def dump(self, name):
        run = subprocess.run([self.ctl, "mdb", "volcar", self.terminal(name)], capture_output=True, text=True, timeout=120)
        return run.stdout if run.returncode == 0 else "damaged: " + run.stderr

    def remove(self):
        shutil.rmtree(self.dir)


def digest(path):
    with open(path, "rb") as f:
        return hashlib.sha256(f.read()).hexdigest()


def new_central(ctl, data, folder):
    path = f"{folder}/antes.db"
    subprocess.run([ctl, "crear", "embebido", path, "--sql", f"{data}/day-golden/central-before.sql"],
                   check=True, capture_output=True, timeout=120)
    return path


def check_point(r, delay, wanted, sold):
    """Kills the close of a new restaurant after `delay` seconds. True when it was still running."""
    process = r.close()
    try:
        process.wait(timeout=delay)
    except subprocess.TimeoutExpired:
        pass
    killed = process.poll() is None
    if killed:
        process.send_signal(signal.SIGKILL)
        process.wait()
    process.stderr.close()
    dumps, files = wanted["dumps"], wanted["files"]
    for name in TERMINALS:
        now = digest(r.standing(name))
        archived = f"{r.dir}/dir/archivo/14112026/{name}/Quimo_Terminal-1.mdb"
        if now == files[name]:
            continue  # the day's file, still whole
        assert r.dump(name) == dumps[name], f"{name} holds neither its old nor its new database"
        assert digest(archived) == files[name], f"{name} was replaced and its sales are not in the archive"
    orders = {row[0] for row in r.query(["SELECT ID_Comanda FROM Comanda"])[0]["rows"]}
    assert sold <= orders, "an order that was in the central database is gone"
    date, pending = (answer["rows"][0][0] for answer in r.query([DATE, PENDING]))
    if pending or date == "14112026":
        process = r.close(*(["--continuar"] if pending else []))
        error = process.communicate(timeout=120)[1].decode()
        assert process.returncode == 0, error
    assert r.central() == wanted["central"], "the central database differs from the undisturbed one"
    for name in TERMINALS:
        assert r.dump(name) == dumps[name], f"{name}'s new database differs from the undisturbed one"
    leftovers = [f for _, _, fs in os.walk(f"{r.dir}/red") for f in fs if f != "Quimo_Terminal.mdb"]
    assert not leftovers, f"left on the shares: {leftovers}"
    r.remove()
    return killed


def kill_many(make, points):
    """Undisturbed closes of the restaurant that `make` makes, then one killed at each point."""
    spans = []
    for _ in range(2):  # the shorter one counts: a busy machine makes the other long
        calm = make()
        files = {name: digest(calm.terminal(name)) for name in TERMINALS}
        sold = {row[0] for row in calm.query(["SELECT ID_Comanda FROM Comanda"])[0]["rows"]}
        begun = time.monotonic()
        process = calm.close()
        error = process.communicate(timeout=120)[1].decode()
        spans.append(time.monotonic() - begun)
        assert process.returncode == 0, error
        wanted = {"central": calm.central(), "dumps": {name: calm.dump(name) for name in TERMINALS}, "files": files}
        calm.remove()
    span = min(spans)
    killed = sum(check_point(make(), span * (k + 0.5) / points, wanted, sold) for k in range(points))
    print(f"{killed} of {points} closes were killed on the way (an undisturbed one takes {span:.2f} s)")
    assert killed >= points // 4, "too few closes were still running when they were to be killed"


def main():
    ctl, data = sys.argv[1:3]
    points = int(sys.argv[3]) if len(sys.argv) > 3 else 50
    folder = tempfile.mkdtemp(prefix="cierre-")
    central = new_central(ctl, data, folder)
    kill_many(lambda: Restaurant(ctl, data, central), points)
    shutil.rmtree(folder)


if __name__ == "__main__":
    main()
