#!/usr/bin/env python3
"""Times the day close as a whole process: the recorded day, and one terminal with 5,000 products.

usage: bench/cierre.py QUIMOCTL [RUNS]

Prints the minimum, median and maximum of wall and processor seconds and of peak memory. The second
case is an upper bound of building a terminal database: its close has no sales, so that nearly all
of it is the new database of that size.
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


def run(ctl, folder):
    begun = time.monotonic()
    pid = os.posix_spawn(ctl, [str(ctl), "cerrar", "embebido", str(folder / "central.db"), "--red", str(folder / "red"),
                               "--dir", str(folder / "dir")], os.environ,
                         file_actions=[(os.POSIX_SPAWN_OPEN, 1, "/dev/null", os.O_WRONLY, 0)])
    _, status, usage = os.wait4(pid, 0)
    wall = time.monotonic() - begun
    if status != 0:
        sys.exit(f"the close failed with status {os.waitstatus_to_exitcode(status)}")
    return wall, usage.ru_utime + usage.ru_stime, usage.ru_maxrss / 1024


def measure(ctl, runs, title, sql, terminals):
    figures = []
    for n in range(runs + 1):
        folder = restaurant(ctl, sql, terminals)
        figure = run(ctl, folder)
        shutil.rmtree(folder)
        if n:  # the first warms the caches up
            figures.append(figure)
    print(f"{title}, {runs} runs")
    for name, unit, values in zip(("wall", "processor", "peak memory"), ("s", "s", "MiB"), zip(*figures)):
        print(f"  {name:12} {min(values):8.3f} {statistics.median(values):8.3f} {max(values):8.3f} {unit} (min, median, max)")


def main():
    ctl = pathlib.Path(sys.argv[1]).resolve()
    runs = int(sys.argv[2]) if len(sys.argv) > 2 else 5
    terminals = {name: DATA / "terminals" / name / "Quimo_Terminal.mdb" for name in ("CAJA1", "CAJA2", "BARRA")}
    measure(ctl, runs, "the recorded day, three terminals", DATA / "day-golden" / "central-before.sql", terminals)
    sql = big_catalogue()
    measure(ctl, runs, f"one terminal, {PRODUCTS} products", sql, {"CAJA1": DATA / "terminals" / "Plantilla.mdb"})
    sql.unlink()


if __name__ == "__main__":
    main()
