#!/usr/bin/env python3
"""Runs the program through ODBC and beside it on the embedded engine: both must leave the same.

usage: cierre_por_odbc.py QUIMOCTL DATA_DIR SERVER

SERVER serves an embedded database in the protocol of SQL Server, on loopback; the program reaches it with
FreeTDS, named by an odbcinst.ini of this test. The recorded day's database is created, every group of recorded
statements is run, and the day is closed. Answers, sales tables and the terminals' new files are compared.
"""
import json
import os
import shutil
import subprocess
import sys
import tempfile

TERMINALS = ["CAJA1", "CAJA2", "BARRA"]
TABLES = {"Comanda": "ID_Comanda", "Cuenta": "ID_Comanda,Num_Cuenta", "ProductosXCuenta": "ID_ProductosXCuenta",
          "Cortesia": "ID_ProductosXCuenta,ID_Tipo_Cortesia", "Modificador": "ID_ProductosXCuenta,ID_Tipo_Modificador",
          "ImpuestosXCuenta": "ID_ProductosXCuenta,ID_Tipo_Impuesto", "Pago": "ID_Pago",
          "Parametros": "ID_Parametro", "Cierre_Pendiente": "Fecha_Cierre", "Cierre_Avance": "Nombre_Term,Tabla"}


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

    def everything(self, data):
        answers = {}
        self.run("crear", *self.words, "--sql", f"{data}/day-golden/central-before.sql")
        for group in json.load(open(f"{data}/tsql-golden/cases.json", encoding="utf-8")):
            lines = ["BEGIN TRANSACTION", *(s["sql"].replace("\n", " ") for s in group["statements"]), "ROLLBACK TRANSACTION"]
            for line, answer in zip(lines, self.query(lines)):
                answers[f"[{group['group']}] {line}"] = answer
        self.run("cerrar", *self.words, "--red", f"{self.dir}/red", "--dir", f"{self.dir}/dir")
        statements = [f"SELECT * FROM {table} ORDER BY {key}" for table, key in TABLES.items()]
        answers.update(zip(statements, self.query(statements)))
        for name in TERMINALS:
            answers[name] = self.run("mdb", "volcar", self.terminal(name))
            self.run("mdb", "verificar", self.terminal(name))
        return answers


def same(statement, direct, odbc):
    """What is told of a failure is worded by the driver in part: its number must agree."""
    if direct == odbc:
        return True
    a, b = json.loads(direct), json.loads(odbc)
    if "error" in a and "error" in b:
        return a["error"]["native"] == b["error"]["native"]
    return "NEWID" in statement.upper() or "GETDATE" in statement.upper()


def main():
    ctl, data, server = sys.argv[1:]
    folder = tempfile.mkdtemp(prefix="odbc-")
    serving = subprocess.Popen([server, f"{folder}/servida.db"], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
    try:
        port = serving.stdout.readline().strip()
        with open(f"{folder}/odbcinst.ini", "w", encoding="utf-8") as file:
            file.write("[FreeTDS]\nDriver=libtdsodbc.so\n")
        environment = {**os.environ, "ODBCSYSINI": folder, "ODBCINSTINI": "odbcinst.ini", "ODBCINI": "/dev/null",
                       "FREETDSCONF": "/dev/null"}
        for name in ("QUIMO_ODBC_DRIVER", "QUIMO_ODBC_OPCIONES", "QUIMO_ODBC_CIFRADO"):
            environment.pop(name, None)
        direct = Place(ctl, data, f"{folder}/directo", "embebido", f"{folder}/directa.db", environment).everything(data)
        odbc = Place(ctl, data, f"{folder}/odbc", f"127.0.0.1,{port}", "central", environment).everything(data)
    finally:
        serving.stdin.close()
        try:
            serving.wait(20)
        except subprocess.TimeoutExpired:
            serving.kill()
            serving.wait()
        shutil.rmtree(folder)
    assert direct.keys() == odbc.keys() and len(direct) > 150, len(direct)
    faults = [key for key in direct if not same(key, direct[key], odbc[key])]
    for key in faults[:20]:
        print(f"{key}\n  direct {direct[key][:400]}\n  odbc   {odbc[key][:400]}")
    print(f"{len(direct) - len(faults)} of {len(direct)} answers agree")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
