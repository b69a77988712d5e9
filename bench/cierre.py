#!/usr/bin/env python3
"""Times the day close as a whole process: the recorded day, one terminal with 5,000 products, busy days.

usage: bench/cierre.py QUIMOCTL [RUNS] [BENCH_TERMINALES [HISTORY]]

Prints the minimum, median and maximum of wall and processor seconds and of peak memory. The second
case is an upper bound of building a terminal database: its close has no sales, so that nearly all
of it is the new database of that size.

With BENCH_TERMINALES, the program that makes busy days: 8 and 32 terminals of 3,015 items each, and
beside each close, in the same run, the sqlite3 shell importing the same rows into tables with the same
keys and indexes, and a copy of the terminals' files. With HISTORY, a database that bench/historia.py
made, the 8 terminals are closed on top of it too, in turn with closes of one day that are given a copy
of the history to lie beside them: memory that the file cache just took is slower to get for both.
"""
import os
import pathlib
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

DATA = pathlib.Path(__file__).resolve().parent.parent / "tests" / "data"
PRODUCTS = 5000
ITEMS = 3015

# The central tables' columns that a terminal has, for the shell.
SHELL_SCHEMA = """
CREATE TABLE Comanda (ID_Comanda INTEGER PRIMARY KEY,ID_Empleado,Num_Mesa,Abierta,Fecha_Apertura,Fecha_Cierre,Tipo,
  Fecha_Trabajo,Control,CantHuespedes);
CREATE INDEX IX_Comanda_Fecha_Trabajo ON Comanda (Fecha_Trabajo);
CREATE TABLE Cuenta (ID_Comanda INTEGER,Num_Cuenta INTEGER,Pagada,Num_Impresiones,Total,Control,
  PRIMARY KEY (ID_Comanda,Num_Cuenta));
CREATE TABLE ProductosXCuenta (ID_ProductosXCuenta INTEGER PRIMARY KEY,ID_Comanda INTEGER,Num_Cuenta INTEGER,ID_Producto,
  Comentario,Preparado,Precio_Venta,Precio_Original,ID_Tipo_Anulacion,ID_Modo_Preparacion,ID_Promocion,ID_Paquete,
  Empleado_Anulacion,Hora_Anulacion,Control);
CREATE INDEX IX_ProductosXCuenta_Comanda ON ProductosXCuenta (ID_Comanda,Num_Cuenta);
CREATE TABLE Cortesia (ID_ProductosXCuenta INTEGER,ID_Tipo_Cortesia INTEGER,Monto,
  PRIMARY KEY (ID_ProductosXCuenta,ID_Tipo_Cortesia));
CREATE TABLE Modificador (ID_ProductosXCuenta INTEGER,ID_Tipo_Modificador INTEGER,Precio_Modificador,
  PRIMARY KEY (ID_ProductosXCuenta,ID_Tipo_Modificador));
CREATE TABLE ImpuestosXCuenta (ID_ProductosXCuenta INTEGER,ID_Tipo_Impuesto INTEGER,Monto_ImpuestosXCuenta,
  PRIMARY KEY (ID_ProductosXCuenta,ID_Tipo_Impuesto));
CREATE TABLE Pago (ID_Pago INTEGER PRIMARY KEY,ID_comanda,Num_Cuenta,ID_Tipo_Pago,Monto_Pago,Propina,Referencia,Control);
"""
TABLES = ("Comanda", "Cuenta", "ProductosXCuenta", "Cortesia", "ImpuestosXCuenta", "Modificador", "Pago")


def restaurant(ctl, sql, terminals):
    folder = pathlib.Path(tempfile.mkdtemp(prefix="cierre-"))
    (folder / "dir").mkdir()
    shutil.copy(DATA / "terminals" / "Plantilla.mdb", folder / "dir")
    for name, source in terminals.items():
        share = folder / "red" / name / "quimo"
        share.mkdir(parents=True)
        shutil.copy(source, share / "Quimo_Terminal.mdb")
    subprocess.run([ctl, "crear", "embebido", folder / "central.db", "--sql", sql], check=True, capture_output=True)
    return folder


def big_catalogue():
    sql = pathlib.Path(tempfile.mkstemp(suffix=".sql")[1])
    lines = ["INSERT INTO Parametros (ID_Parametro,Valor_Num,Valor_Cad) VALUES ('FECHA_TRABAJO',NULL,'14112026')",
             "INSERT INTO Parametros (ID_Parametro,Valor_Num,Valor_Cad) VALUES ('DIRTERMBD',NULL,'quimo')",
             "INSERT INTO Parametros (ID_Parametro,Valor_Num,Valor_Cad) VALUES ('FOLIOPRODUCTOSX',1,NULL)",
             "INSERT INTO Menu (ID_Menu,Nombre_Menu,Menu_Activo) VALUES (1,'Restaurante',1)",
             "INSERT INTO Terminal (ID_Terminal,Nombre_Terminal,ID_Menu,Direccion_IP,Estado_Terminal,Servidor,Servidor_Backup) VALUES (1,'CAJA1',1,'10.0.0.1','A',0,0)",
             "INSERT INTO Categoria (ID_Categoria,Nombre_Categoria,Tipo_Categoria) VALUES (1,'Comida','V')"]
    for n in range(1, PRODUCTS + 1):
        lines.append("INSERT INTO Producto (ID_Producto,Nombre_Completo,Nombre_Boton,Nombre_Cuenta,Existencia,Abierto,Especial,Estado,ID_Categoria,Paquete) "
                     f"VALUES ({n},'Platillo número {n}','Platillo {n}','Platillo número {n}',{n % 50},0,0,'A',1,0)")
        lines.append(f"INSERT INTO PreciosXMenu (ID_Menu,ID_Producto,Precio) VALUES (1,{n},{n % 300 + 20}.50)")
    sql.write_text("\n".join(lines) + "\n", encoding="utf-8")
    return sql


def spent(command):
    """Wall and processor seconds and peak MiB of a process that must succeed."""
    begun = time.monotonic()
    pid = os.posix_spawnp(command[0], [str(word) for word in command], os.environ,
                          file_actions=[(os.POSIX_SPAWN_OPEN, 1, "/dev/null", os.O_WRONLY, 0)])
    _, status, usage = os.wait4(pid, 0)
    wall = time.monotonic() - begun
    if status != 0:
        sys.exit(f"{command[0]} failed with status {os.waitstatus_to_exitcode(status)}")
    return wall, usage.ru_utime + usage.ru_stime, usage.ru_maxrss / 1024


def run(ctl, folder):
    return spent([str(ctl), "cerrar", "embebido", folder / "central.db", "--red", folder / "red", "--dir", folder / "dir"])


def report(title, figures):
    print(f"{title}, {len(figures)} runs")
    for name, unit, values in zip(("wall", "processor", "peak memory"), ("s", "s", "MiB"), zip(*figures)):
        print(f"  {name:12} {min(values):8.3f} {statistics.median(values):8.3f} {max(values):8.3f} {unit} (min, median, max)")
    return statistics.median(figure[1] for figure in figures)


def measure(ctl, runs, title, sql, terminals):
    figures = []
    for n in range(runs + 1):
        folder = restaurant(ctl, sql, terminals)
        figure = run(ctl, folder)
        shutil.rmtree(folder)
        if n:  # the first warms the caches up
            figures.append(figure)
    report(title, figures)


def busy_day(terminals):
    """The statements that register the terminals of a busy day."""
    yield "DELETE FROM Parametros"
    for key, number, text in (("FECHA_TRABAJO", "NULL", "'14112026'"), ("DIRTERMBD", "NULL", "'quimo'"),
                              ("FOLIOPRODUCTOSX", "1", "NULL")):
        yield f"INSERT INTO Parametros (ID_Parametro,Valor_Num,Valor_Cad) VALUES ('{key}',{number},{text})"
    yield "INSERT INTO Menu (ID_Menu,Nombre_Menu,Menu_Activo) VALUES (1,'Restaurante',1)"
    for n in range(1, terminals + 1):
        yield ("INSERT INTO Terminal (ID_Terminal,Nombre_Terminal,ID_Menu,Direccion_IP,Estado_Terminal,Servidor,Servidor_Backup) "
               f"VALUES ({n},'CAJA{n}',1,'10.0.0.{n}','A',0,0)")


def shell_import(folder):
    """The processor seconds of the shell that imports the same rows, and of a copy of the same files."""
    script = folder / "shell.sql"
    script.write_text(SHELL_SCHEMA + ".mode csv\n" + "".join(f".import {folder}/csv/{table}.csv {table}\n" for table in TABLES))
    database = folder / "shell.db"
    database.unlink(missing_ok=True)
    shutil.rmtree(folder / "copia", ignore_errors=True)
    return (spent(["sqlite3", database, f".read {script}"])[1]
            + spent(["cp", "-r", folder / "red", folder / "copia"])[1])


def busy_base(ctl, maker, terminals, history=None):
    """A folder with the files and tables of a busy day before its close."""
    base = pathlib.Path(tempfile.mkdtemp(prefix="cierre-"))
    spent([str(maker), DATA / "terminals" / "Plantilla.mdb", base, terminals, ITEMS])
    if history is None:
        subprocess.run([ctl, "crear", "embebido", base / "antes.db"], check=True, capture_output=True)
    else:
        shutil.copy(history, base / "antes.db")
    subprocess.run([ctl, "sql", "embebido", base / "antes.db", "--lineas"], input="\n".join(busy_day(terminals)) + "\n",
                   text=True, check=True, capture_output=True)
    return base


def close_busy(ctl, base, beside=None):
    """One close of a busy day. What the copies left to be written is written before."""
    folder = base / "corrida"
    (folder / "dir").mkdir(parents=True)
    shutil.copy(DATA / "terminals" / "Plantilla.mdb", folder / "dir")
    shutil.copytree(base / "red", folder / "red")
    shutil.copy(base / "antes.db", folder / "central.db")
    if beside is not None:
        shutil.copy(beside, folder / "beside.db")
    os.sync()
    figure = run(ctl, folder)
    shutil.rmtree(folder)
    return figure


def measure_busy(ctl, maker, runs, terminals):
    base = busy_base(ctl, maker, terminals)
    figures, shells = [], []
    for n in range(runs + 1):
        figure, shell = close_busy(ctl, base), shell_import(base)
        if n:
            figures.append(figure)
            shells.append(shell)
    shutil.rmtree(base)
    processor, shell = report(f"{terminals} terminals of {ITEMS} items", figures), statistics.median(shells)
    print(f"  the shell and cp: {shell:.3f} s of processor; the close: {processor / shell:.1f} times that")
    return processor


def measure_history(ctl, maker, runs, history):
    bases = busy_base(ctl, maker, 8), busy_base(ctl, maker, 8, history)
    figures = [], []
    for n in range(runs + 1):
        pair = close_busy(ctl, bases[0], history), close_busy(ctl, bases[1])
        if n:
            for figure, column in zip(pair, figures):
                column.append(figure)
    for base in bases:
        shutil.rmtree(base)
    one = report("8 terminals, one day, the history beside", figures[0])
    print(f"with history: {report('8 terminals on top of the history', figures[1]) / one:.2f} times one day")


def main():
    ctl = pathlib.Path(sys.argv[1]).resolve()
    runs = int(sys.argv[2]) if len(sys.argv) > 2 else 5
    if len(sys.argv) > 3:
        maker = pathlib.Path(sys.argv[3]).resolve()
        eight = measure_busy(ctl, maker, runs, 8)
        thirty_two = measure_busy(ctl, maker, runs, 32)
        print(f"32 terminals: {thirty_two / eight:.2f} times 8")
        if len(sys.argv) > 4:
            measure_history(ctl, maker, runs, sys.argv[4])
    terminals = {name: DATA / "terminals" / name / "Quimo_Terminal.mdb" for name in ("CAJA1", "CAJA2", "BARRA")}
    measure(ctl, runs, "the recorded day, three terminals", DATA / "day-golden" / "central-before.sql", terminals)
    sql = big_catalogue()
    measure(ctl, runs, f"one terminal, {PRODUCTS} products", sql, {"CAJA1": DATA / "terminals" / "Plantilla.mdb"})
    sql.unlink()


if __name__ == "__main__":
    main()
