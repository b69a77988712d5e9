#!/usr/bin/env python3
"""Runs the program through ODBC and beside it on the embedded engine: both must leave the same.

usage: cierre_por_odbc.py QUIMOCTL DATA_DIR SERVER

SERVER serves an embedded database in the protocol of SQL Server, on loopback; the program reaches it with
FreeTDS, named by an odbcinst.ini of this test. The recorded day's database is created, every group of recorded
statements is run, and the day is closed. Answers, sales tables and the terminals' new files are compared.
Then the same close is run again while the server is killed in its middle, and continued with another server.
"""
import json
import os
import shutil
import subprocess
import sys
import tempfile
import time

TERMINALS = ["CAJA1", "CAJA2", "BARRA"]
TABLES = {"Comanda": "ID_Comanda", "Cuenta": "ID_Comanda,Num_Cuenta", "ProductosXCuenta": "ID_ProductosXCuenta",
          "Cortesia": "ID_ProductosXCuenta,ID_Tipo_Cortesia", "Modificador": "ID_ProductosXCuenta,ID_Tipo_Modificador",
          "ImpuestosXCuenta": "ID_ProductosXCuenta,ID_Tipo_Impuesto", "Pago": "ID_Pago",
          "Parametros": "ID_Parametro", "Cierre_Pendiente": "Fecha_Cierre", "Cierre_Avance": "Nombre_Term,Tabla"}


DATE = "SELECT Valor_Cad FROM Parametros WHERE ID_Parametro='FECHA_TRABAJO'"
POINTS = 5  # moments at which the server is killed, spread over the time of an undisturbed close


class Server:
    """A served database; ends with the block."""

    def __init__(self, program, file):
        self.process = subprocess.Popen([program, file], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        self.word = "127.0.0.1," + self.process.stdout.readline().strip()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.stdin.close()
        try:
            self.process.wait(20)
        except subprocess.TimeoutExpired:
            self.kill()

    def kill(self):
        self.process.kill()
        self.process.wait()


class Place:
    """One of the two ways to the database, with its own terminals and program folder."""

    def __init__(self, ctl, data, folder, server, base, environment):
        self.ctl, self.dir, self.words, self.environment = ctl, folder, [server, base], environment
        os.makedirs(f"{folder}/dir")
        shutil.copy(f"{data}/terminals/Plantilla.mdb", f"{folder}/dir/Plantilla.mdb")
        for name in TERMINALS:
            os.makedirs(f"{folder}/red/{name}/quimo")
            shutil.copy(f"{data}/terminals/{name}/Quimo_Terminal.mdb", self.terminal(name))

    def terminal(self, name):
        return f"{self.dir}/red/{name}/quimo/Quimo_Terminal.mdb"

    def run(self, *args, text=None):
        done = subprocess.run([self.ctl, *args], input=text, capture_output=True, text=True, timeout=120,
                              env=self.environment)
        assert done.returncode == 0, f"{args}: {done.stdout[-500:]} {done.stderr[-500:]}"
        return done.stdout

    def query(self, statements):
        return self.run("sql", *self.words, "--lineas", text="\n".join(statements) + "\n").splitlines()

    def close(self, *options):
        return ["cerrar", *self.words, "--red", f"{self.dir}/red", "--dir", f"{self.dir}/dir", *options]

    def answers(self, data):
        found = {}
        for group in json.load(open(f"{data}/tsql-golden/cases.json", encoding="utf-8")):
            lines = ["BEGIN TRANSACTION", *(s["sql"].replace("\n", " ") for s in group["statements"]), "ROLLBACK TRANSACTION"]
            for line, answer in zip(lines, self.query(lines)):
                found[f"[{group['group']}] {line}"] = answer
        return found

    def left_behind(self):
        statements = [f"SELECT * FROM {table} ORDER BY {key}" for table, key in TABLES.items()]
        found = dict(zip(statements, self.query(statements)))
        for name in TERMINALS:
            found[name] = self.run("mdb", "volcar", self.terminal(name))
            self.run("mdb", "verificar", self.terminal(name))
        return found

    def finish(self, begun_at):
        """Goes on with a close that broke off, wherever it did."""
        pending, date = self.query(["SELECT COUNT(*) AS n FROM Cierre_Pendiente", DATE])
        if json.loads(pending)["rows"][0][0]:
            self.run(*self.close("--continuar"))
        elif date == begun_at:
            self.run(*self.close())


def same(statement, direct, odbc):
    """What is told of a failure is worded by the driver in part: its number must agree."""
    if direct == odbc:
        return True
    a, b = json.loads(direct), json.loads(odbc)
    if "error" in a and "error" in b:
        return a["error"]["native"] == b["error"]["native"]
    return "NEWID" in statement.upper() or "GETDATE" in statement.upper()


def broken_closes(ctl, data, program, folder, central, undisturbed_s, environment):
    """What is left after a close whose server was killed, one for each moment, and how many closes noticed."""
    left, noticed = [], 0
    for point in range(1, POINTS + 1):
        here = f"{folder}/roto{point}"
        place = Place(ctl, data, here, "", "central", environment)
        shutil.copy(central, f"{here}/central.db")
        with Server(program, f"{here}/central.db") as server:
            place.words[0] = server.word
            begun_at = place.query([DATE])[0]
            closing = subprocess.Popen([ctl, *place.close()], stdout=subprocess.DEVNULL, stderr=subprocess.PIPE,
                                       text=True, env=environment)
            time.sleep(undisturbed_s * point / (POINTS + 1))
            server.kill()
            told = closing.communicate(timeout=60)[1]
            assert closing.returncode == 0 or told.strip(), "a close broke off without a word"
            noticed += closing.returncode != 0
        with Server(program, f"{here}/central.db") as server:
            place.words[0] = server.word
            place.finish(begun_at)
            left.append(place.left_behind())
    return left, noticed


def main():
    ctl, data, program = sys.argv[1:]
    folder = tempfile.mkdtemp(prefix="odbc-")
    with open(f"{folder}/odbcinst.ini", "w", encoding="utf-8") as file:
        file.write("[FreeTDS]\nDriver=libtdsodbc.so\n")
    environment = {**os.environ, "ODBCSYSINI": folder, "ODBCINSTINI": "odbcinst.ini", "ODBCINI": "/dev/null",
                   "FREETDSCONF": "/dev/null", "QUIMO_ODBC_PLAZO": "5"}
    for name in ("QUIMO_ODBC_DRIVER", "QUIMO_ODBC_OPCIONES", "QUIMO_ODBC_CIFRADO"):
        environment.pop(name, None)
    try:
        with Server(program, f"{folder}/servida.db") as server:
            places = [Place(ctl, data, f"{folder}/directo", "embebido", f"{folder}/directa.db", environment),
                      Place(ctl, data, f"{folder}/odbc", server.word, "central", environment)]
            found = []
            for place in places:
                place.run("crear", *place.words, "--sql", f"{data}/day-golden/central-before.sql")
                found.append(place.answers(data))
            shutil.copy(f"{folder}/directa.db", f"{folder}/antes.db")
            for place, answers in zip(places, found):
                begun = time.monotonic()
                place.run(*place.close())
                lasted = time.monotonic() - begun
                answers.update(place.left_behind())
        direct, odbc = found
        left, noticed = broken_closes(ctl, data, program, folder, f"{folder}/antes.db", lasted, environment)
    finally:
        shutil.rmtree(folder)
    assert direct.keys() == odbc.keys() and len(direct) > 150, len(direct)
    faults = [(key, direct[key], odbc[key]) for key in direct if not same(key, direct[key], odbc[key])]
    for number, broken in enumerate(left, start=1):
        faults += [(f"(killed at {number}) {key}", direct[key], broken[key]) for key in broken if broken[key] != direct[key]]
    for key, one, other in faults[:20]:
        print(f"{key}\n  direct {one[:400]}\n  odbc   {other[:400]}")
    print(f"{len(direct)} answers compared, {len(left)} closes broken off ({noticed} noticed), {len(faults)} differences")
    return 1 if faults or not noticed else 0


if __name__ == "__main__":
    sys.exit(main())
