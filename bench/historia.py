#!/usr/bin/env python3
"""Times the report queries on a generated history, against hand-written SQL in the sqlite3 shell.

usage: bench/historia.py QUIMOCTL FOLDER [--days N] [--runs N] [--only NAME]

Makes FOLDER/historia.db once: 1,096 days of 1,000 orders and 6,000 items each. Then every query of the
sales, payments and product mix reports is asked over one day and over one month, each in a process of
its own that starts cold, and the same question in the sqlite3 shell on the same file. Prints the
median wall seconds of both and their ratio, and whether the answers are the same.
"""
import argparse
import datetime
import json
import pathlib
import statistics
import subprocess
import time

from consultas_informe import CONSULTAS

PRIMER_DIA = datetime.date(2023, 11, 1)
PEDIDOS = 1000
RENGLONES = 6 * PEDIDOS
PRODUCTOS = 400


def catalogue():
    yield f"INSERT INTO Parametros VALUES ('FECHA_TRABAJO',NULL,'{PRIMER_DIA:%d%m%Y}')"
    for n in range(1, 13):
        yield f"INSERT INTO Categoria VALUES ({n},'Categoría {n}','V')"
    for n, (name, kind) in enumerate((("Efectivo", "E"), ("Tarjeta", "T"), ("Débito", "D"), ("Cheque", "C"))):
        yield f"INSERT INTO Tipo_Pago (Nombre_Tipo_Pago,Clase) VALUES ('{name}','{kind}')"
    yield "INSERT INTO Tipos_Anulacion (Nombre_Tipos_Anulacion) VALUES ('Error')"
    yield "INSERT INTO Tipos_Impuesto VALUES (1,'IVA',1)"
    yield "INSERT INTO Tipos_Impuesto VALUES (2,'IEPS',1)"
    yield "INSERT INTO Promocion (Nombre_Promocion,Fecha_Inicio_Promocion) VALUES ('Dos por uno','01/01/2023')"
    for n in range(1, 4):
        yield ("INSERT INTO Tipo_Cortesia (ID_Tipo_Cortesia,Nombre_Tipo_Cortesia,Fecha_Inicio_Cortesia) "
               f"VALUES ({n},'Cortesía {n}','01/01/2023')")
    for name, start, end in (("Comida", "13:00:00", "17:59:59"), ("Desayuno", "07:00:00", "12:59:59"),
                             ("Noche", "18:00:00", "02:00:00")):
        yield f"INSERT INTO Seccion_dia VALUES ('{name}','30/12/1899 {start}','30/12/1899 {end}')"
    for n in range(1, PRODUCTOS + 1):
        yield ("INSERT INTO Producto (ID_Producto,Nombre_Completo,ID_Categoria) "
               f"VALUES ({n},'Platillo {n:03}',{n % 12 + 1})")


def day(number):
    """The sales of one day, each table in one statement over the numbers 0 to 5,999."""
    date = PRIMER_DIA + datetime.timedelta(days=number)
    order, item = number * PEDIDOS + 1, 10_000_000 + number * RENGLONES
    product = f"(n*7919+{number}*31)%{PRODUCTOS}"
    price = f"20+({product})%90+0.5"
    yield (f"INSERT INTO Comanda SELECT {order}+n,1+n%8,1+n%40,0,DATEADD(second,n*61,'{date:%d/%m/%Y} 07:00:00'),"
           f"DATEADD(second,n*61+3600,'{date:%d/%m/%Y} 07:00:00'),'M','{date:%d%m%Y}',0,1+n%6 FROM Numero WHERE n<{PEDIDOS}")
    yield f"INSERT INTO Cuenta SELECT {order}+n,1,1,1,300+n%200,0 FROM Numero WHERE n<{PEDIDOS}"
    yield (f"INSERT INTO ProductosXCuenta SELECT {item}+n,{order}+n/6,1,1+{product},NULL,1,{price},{price}+2,"
           "CASE WHEN n%53=0 THEN 1 END,NULL,CASE WHEN n%71=0 THEN 1 END,NULL,NULL,NULL,0 FROM Numero")
    yield f"INSERT INTO Modificador SELECT {item}+n,1+n%5,4.5,0.62 FROM Numero WHERE n%4=0"
    yield f"INSERT INTO ImpuestosXCuenta SELECT {item}+n,1,ROUND(({price})*0.16,2) FROM Numero"
    yield f"INSERT INTO Cortesia SELECT {item}+n,1+n%3,10.25 FROM Numero WHERE n%97=0"
    yield (f"INSERT INTO Pago SELECT {order}+n,{order}+n,1,1+n%4,300+n%200,CASE WHEN n%13=0 THEN NULL ELSE n%30 END,NULL,0 "
           f"FROM Numero WHERE n<{PEDIDOS}")


def generate(ctl, file, days):
    print(f"making {days} days of {PEDIDOS} orders", flush=True)
    script = file.with_suffix(".sql")
    subprocess.run([ctl, "crear", "embebido", file], check=True, capture_output=True)
    with open(script, "w", encoding="utf-8") as out:
        out.write("CREATE TABLE Numero (n INT NOT NULL PRIMARY KEY)\nGO\nBEGIN TRANSACTION\nDECLARE @n INT\nSET @n=0\n"
                  f"WHILE @n<{RENGLONES} BEGIN INSERT INTO Numero VALUES (@n) SET @n=@n+1 END\nCOMMIT\nGO\n")
        out.write("\n".join(catalogue()) + "\nGO\n")
        for number in range(days):
            out.write("BEGIN TRANSACTION\n" + "\n".join(day(number)) + "\nCOMMIT\nGO\n")
        out.write("DROP TABLE Numero\nGO\n")
    begun = time.monotonic()
    subprocess.run([ctl, "sql", "embebido", file, "--archivo", script], check=True, stdout=subprocess.DEVNULL)
    script.unlink()
    print(f"made in {time.monotonic() - begun:.0f} s, {file.stat().st_size / 2**30:.2f} GiB")


def timed(command, text, runs):
    walls = []
    for _ in range(runs):
        begun = time.monotonic()
        answer = subprocess.run(command, input=text, capture_output=True, text=True, check=True)
        walls.append(time.monotonic() - begun)
    return statistics.median(walls), answer.stdout


def numbers(rows):
    """Rows as the shell writes them: amounts as whole ten-thousandths."""
    return sorted("|".join("" if cell is None else f"{float(cell):.4f}" if number(cell) else str(cell) for cell in row)
                  for row in rows)


def number(cell):
    try:
        float(cell)
        return True
    except (TypeError, ValueError):
        return False


def answers_of(text):
    rows = []
    for line in text.splitlines():
        answer = json.loads(line)
        if "error" in answer:
            raise SystemExit(f"the program refuses: {answer['error']}")
        if answer.get("rows"):
            rows = answer["rows"]
    return numbers(rows)


def main():
    arguments = argparse.ArgumentParser(usage=__doc__)
    arguments.add_argument("quimoctl", type=pathlib.Path)
    arguments.add_argument("folder", type=pathlib.Path)
    arguments.add_argument("--days", type=int, default=1096)
    arguments.add_argument("--runs", type=int, default=3)
    arguments.add_argument("--only", default="")
    given = arguments.parse_args()
    ctl = given.quimoctl.resolve()
    file = given.folder / "historia.db"
    given.folder.mkdir(parents=True, exist_ok=True)
    if not file.exists():
        generate(ctl, file, given.days)
    last = PRIMER_DIA + datetime.timedelta(days=given.days // 2)
    print(f"{'query':34} {'range':6} {'quimoctl':>9} {'sqlite3':>9} {'ratio':>6}  answers")
    for name, tsql, sqlite in CONSULTAS:
        if given.only not in name:
            continue
        for title, days in (("day", 1), ("month", 30)):
            start = last - datetime.timedelta(days=days - 1)
            lines = "\n".join(text.format(desde=f"{start:%d/%m/%Y}", hasta=f"{last:%d/%m/%Y}") for text in tsql)
            mine, answer = timed([ctl, "sql", "embebido", file, "--lineas"], lines + "\n", given.runs)
            zero = datetime.date(1900, 1, 1)
            first, until = (start - zero).days * 86_400_000, (last - zero).days * 86_400_000
            days_list = ",".join(f"'{start + datetime.timedelta(days=n):%d%m%Y}'" for n in range(days))
            theirs, shell = timed(["sqlite3", "-readonly", "-list", file],
                                  sqlite.format(dias=days_list, desde=first, hasta=until) + ";\n", given.runs)
            same = answers_of(answer) == numbers(row.split("|") for row in shell.splitlines())
            print(f"{name:34} {title:6} {mine:9.3f} {theirs:9.3f} {mine / theirs:6.2f}  {'same' if same else 'DIFFER'}",
                  flush=True)


main()
