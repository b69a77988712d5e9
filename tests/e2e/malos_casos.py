"""A day with one bad terminal: what the cases of malos.py are told in."""
import dataclasses
import json
import os
import shutil
import stat
import struct
import subprocess
import typing

from matar_cierre import TERMINALS, Restaurant, digest

BAD = "CAJA2"
SALES = {"Comanda": ["ID_Comanda"], "Cuenta": ["ID_Comanda", "Num_Cuenta"],
         "ProductosXCuenta": ["ID_ProductosXCuenta"], "Cortesia": ["ID_ProductosXCuenta", "ID_Tipo_Cortesia"],
         "ImpuestosXCuenta": ["ID_ProductosXCuenta", "ID_Tipo_Impuesto"],
         "Modificador": ["ID_ProductosXCuenta", "ID_Tipo_Modificador"], "Pago": ["ID_Pago"]}
PAGE = 4096
LIMIT_S = 120  # for one program; a busy machine is slow, a hang is for ever
PROGRESS = ("Avanzando la fecha", "Revisando la plantilla", "Esperando a que", "Aviso:", "Leyendo la terminal", "Copiando las ventas", "Preparando la base", "Enviando catálogos",
            "Recibieron su base", "Proceso terminado", "Cierre del ")


@dataclasses.dataclass
class Case:
    name: str
    prepare: typing.Callable
    status: tuple = (1,)  # what the close may end with
    says: tuple = (BAD,)  # what the manager must read
    wanted: dict = dataclasses.field(default_factory=dict)  # query: value afterwards
    changes_rows: bool = False  # the central tables may hold rows of the bad terminal
    alone: bool = True  # the other terminals' rows are none of its business
    more: bool = False  # much like another case: only with --todo


class Day(Restaurant):
    """The recorded day's restaurant, one of whose terminals is about to be spoiled."""

    def __init__(self, ctl, data, tool, central):
        super().__init__(ctl, data, central)
        self.data = data
        self.tool = tool
        self.bad = self.terminal(BAD)
        self.held = []  # open files and processes that hold something until the case ends
        self.known = None

    # What cases are made with

    def put(self, table, key, *values):
        subprocess.run([self.tool, "poner", self.bad, table, key, *values], check=True, capture_output=True, timeout=LIMIT_S)

    def put_double(self, table, key, column, value, marker=123456.0625):
        """A number that no terminal writes, not a number among them, behind the back of the library."""
        self.put(table, key, f"{column}=doble:{marker}")
        content = self.bytes()
        at = content.find(struct.pack("<d", marker))
        assert at >= 0, "the number is not in the file"
        content[at:at + 8] = struct.pack("<d", value)
        self.write(content)

    def rebuild(self, *changes):
        subprocess.run([self.tool, "rehacer", self.bad, *changes], check=True, capture_output=True, timeout=LIMIT_S)

    def bytes(self):
        with open(self.bad, "rb") as f:
            return bytearray(f.read())

    def write(self, content):
        with open(self.bad, "wb") as f:
            f.write(content)

    def sql(self, *statements):
        self.query(list(statements))

    # What is looked at afterwards

    def remember(self):
        """Keeps the bad file's digest, to see later that it was not lost."""
        try:
            regular = stat.S_ISREG(os.stat(self.bad).st_mode) and os.path.getsize(self.bad) < 1 << 28
        except OSError:
            regular = False
        self.known = digest(self.bad) if regular else None

    def close(self, *options, limit=LIMIT_S):
        return subprocess.run([self.ctl, "cerrar", "embebido", self.db, *self.network(), "--dir", f"{self.dir}/dir",
                               *options], capture_output=True, text=True, errors="replace", timeout=limit)

    def value(self, query):
        rows = self.query([query])[0]["rows"]
        return rows[0][0] if rows else None

    def sales(self):
        tables = {}
        for (table, key), answer in zip(SALES.items(), self.query([f"SELECT * FROM {table}" for table in SALES])):
            at = [answer["columns"].index(c) for c in key]
            tables[table] = {tuple(row[i] for i in at): row for row in answer["rows"]}
        return tables

    def orders_at(self, name):
        """The orders in a terminal's database as it is now."""
        run = subprocess.run([self.ctl, "mdb", "volcar", self.terminal(name), "Comanda"], capture_output=True, text=True,
                             timeout=LIMIT_S)
        return json.loads(run.stdout)["Comanda"] if run.returncode == 0 else run.stderr

    def compare_others(self, reference, strict):
        """What differs from the undisturbed day, the bad terminal's own rows aside."""
        tables, contents = reference
        problems = []
        for table, rows in self.sales().items():
            own = {tuple(row[c] for c in SALES[table]) for row in contents[table]}
            wanted = {k: v for k, v in tables[table].items() if k not in own}
            lost = [k for k in wanted if k not in rows]
            changed = [k for k in wanted if k in rows and rows[k] != wanted[k]]
            extra = [k for k in rows if k not in tables[table]]
            if lost or changed or (strict and extra):
                problems.append(f"{table}: {len(lost)} lost, {len(changed)} changed, {len(extra)} extra "
                                f"({(lost + changed + extra)[:3]})")
        for name in TERMINALS:
            if name != BAD and self.orders_at(name) != []:
                problems.append(f"{name} did not get its new database")
        return problems

    def bad_file_is_safe(self):
        if self.known is None:
            return []
        kept = [self.bad] + [os.path.join(folder, f) for folder, _, files in os.walk(f"{self.dir}/dir/archivo")
                             for f in files]
        safe = any(os.path.isfile(f) and digest(f) == self.known for f in kept)
        return [] if safe else ["the bad terminal's file is neither where it was nor kept"]

    def message(self, done):
        """What the manager reads besides the progress and the tables of figures."""
        lines = (done.stdout + done.stderr).replace(self.dir, "…").split("\n")
        return "\n".join(line for line in lines if line.strip() and not line.startswith(PROGRESS) and
                         (line.startswith("  ") or "  " not in line.strip()))

    def remove(self):
        for thing in self.held:
            thing.close()
        subprocess.run(["chmod", "-R", "u+rwX", self.dir], check=False, capture_output=True)
        shutil.rmtree(self.dir, ignore_errors=True)
