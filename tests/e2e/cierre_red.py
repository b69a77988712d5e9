#!/usr/bin/env python3
"""Closes the recorded day over the network: a real file server on loopback serves the terminals.

usage: cierre_red.py QUIMOCTL DATA_DIR [POINTS]

First with every terminal there: what is left behind must be the recorded day's. Then with a
terminal that cannot be reached, in each way that is, with both answers to the question. Last, the
close is killed at many points and goes on.
"""
import json
import os
import pwd
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import time
from decimal import Decimal, InvalidOperation

from matar_cierre import DATE, TERMINALS, Restaurant, digest, kill_many, new_central

SALES = {"Comanda": "ID_Comanda", "Cuenta": "ID_Comanda,Num_Cuenta", "ProductosXCuenta": "ID_ProductosXCuenta",
         "Cortesia": "ID_ProductosXCuenta,ID_Tipo_Cortesia", "Modificador": "ID_ProductosXCuenta,ID_Tipo_Modificador",
         "ImpuestosXCuenta": "ID_ProductosXCuenta,ID_Tipo_Impuesto", "Pago": "ID_Pago"}
# Each terminal has its own loopback address; the server serves the folder of the address called.
ADDRESS = {name: f"127.0.0.{n}" for n, name in enumerate(TERMINALS, start=2)}
PASSWORD = "cl@ve de la casa"
SETTINGS = """[global]
server role = standalone server
workgroup = PRUEBA
netbios name = PRUEBA
smb ports = {port}
interfaces = {interfaces}
bind interfaces only = yes
passdb backend = tdbsam:{dir}/interno/passdb.tdb
lock directory = {dir}/interno
state directory = {dir}/interno
cache directory = {dir}/interno
private dir = {dir}/interno
pid directory = {dir}/interno
ncalrpc dir = {dir}/interno/ncalrpc
log file = {dir}/interno/log
guest account = {user}
load printers = no
printing = bsd
printcap name = /dev/null
disable spoolss = yes
rpc start on demand helpers = no
usershare max shares = 0
[quimo]
path = {dir}/por_direccion/%i
read only = no
"""


def program(name):
    return shutil.which(name) or f"/usr/sbin/{name}"


def free_port():
    with socket.socket() as s:
        s.bind(("127.0.0.1", 0))
        return s.getsockname()[1]


class Server:
    """The terminals' shares; its own group, ended by id. It ends too when this process does: its input closes."""

    def __init__(self, folder):
        self.dir, self.port, self.process = folder, free_port(), None
        self.user = pwd.getpwuid(os.geteuid()).pw_name
        os.makedirs(f"{folder}/interno/ncalrpc")
        os.makedirs(f"{folder}/por_direccion")
        for name, address in ADDRESS.items():
            os.symlink(f"{folder}/red/{name}/quimo", f"{folder}/por_direccion/{address}")
        self.settings = f"{folder}/smb.conf"
        with open(self.settings, "w", encoding="utf-8") as f:
            f.write(SETTINGS.format(port=self.port, dir=folder, user=self.user,
                                    interfaces=" ".join(f"{a}/8" for a in ADDRESS.values())))
        subprocess.run([program("pdbedit"), "-s", self.settings, "-a", "-t", "-u", self.user],
                       input=f"{PASSWORD}\n{PASSWORD}\n", text=True, check=True, capture_output=True, timeout=60)

    def start(self):
        self.process = subprocess.Popen([program("smbd"), "--foreground", "--no-process-group", "-s", self.settings],
                                        stdin=subprocess.PIPE, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                                        start_new_session=True)
        limit = time.monotonic() + 20
        for address in ADDRESS.values():
            while True:
                try:
                    socket.create_connection((address, self.port), timeout=1).close()
                    break
                except OSError:
                    if self.process.poll() is not None or time.monotonic() > limit:
                        raise
                    time.sleep(0.05)

    def stop(self):
        if self.process is None:
            return
        os.killpg(self.process.pid, signal.SIGKILL)
        self.process.wait()
        self.process.stdin.close()
        self.process = None


class NetworkRestaurant(Restaurant):
    running = []  # those whose server may have to be stopped when a check fails

    def __init__(self, ctl, data, central):
        super().__init__(ctl, data, central)
        self.server = Server(self.dir)
        self.running.append(self)
        self.server.start()
        self.write_access()

    def remove(self):
        self.server.stop()
        self.running.remove(self)
        super().remove()

    def network(self):
        return []

    def standing(self, name):
        path = self.terminal(name)
        return path if os.path.exists(path) else path + ".anterior"  # killed between the two renames

    def write_access(self, changes=None, mode=0o600):
        """red.conf: everybody's login and each terminal's address; `changes` are lines for a terminal."""
        lines = [f"usuario = {self.server.user}", f"clave = {PASSWORD}", f"puerto = {self.server.port}", "plazo = 5"]
        for name, address in ADDRESS.items():
            lines += [f"[{name}]", *(changes or {}).get(name, [f"direccion = {address}"])]
        path = f"{self.dir}/dir/red.conf"
        with open(path, "w", encoding="utf-8") as f:
            f.write("\n".join(lines) + "\n")
        os.chmod(path, mode)

    def close_and_listen(self, *options):
        return subprocess.run([self.ctl, "cerrar", "embebido", self.db, "--dir", f"{self.dir}/dir", *options],
                              capture_output=True, text=True, timeout=240)


def plain(value):
    """A value as both sides write it: money with four decimals, whatever its text."""
    if value is None or isinstance(value, bool):
        return value if value is None else int(value)
    try:
        return f"{Decimal(str(value)):.4f}"
    except InvalidOperation:
        return str(value).replace("T", " ") if str(value)[10:11] in ("T", " ") else value


def plain_rows(rows):
    return [{k.lower(): plain(v) for k, v in row.items()} for row in rows]


def compare(r, data, reached):
    """The sales tables, counters and queues, and the reached terminals' new databases."""
    golden = lambda name: json.load(open(f"{data}/day-golden/{name}", encoding="utf-8"))
    close = golden("close.json")
    day = close["closing_date"]
    if reached == TERMINALS:
        after = golden("central-after.json")
        for table, order in SALES.items():
            columns = list(after[table][0])
            got = r.query([f"SELECT {','.join(columns)} FROM {table} ORDER BY {order}"])[0]["rows"]
            got = plain_rows(dict(zip(columns, row)) for row in got)
            assert got == plain_rows(after[table]), f"{table} differs"
        for name, wanted in (("FOLIOPAGO", close["FOLIOPAGO_after"]), ("FOLIOCOMANDA", close["FOLIOCOMANDA_after"])):
            got = r.query([f"SELECT Valor_Num FROM Parametros WHERE ID_Parametro='{name}'"])[0]["rows"][0][0]
            assert plain(got) == plain(wanted), f"{name} is {got}"
    for table in ("Transacciones", "TransaccionesXTerminal", "Control_Paquetes"):
        assert r.query([f"SELECT COUNT(*) FROM {table}"])[0]["rows"][0][0] == 0, table
    assert r.query([DATE])[0]["rows"][0][0] == f"{int(day[:2]) + 1:02d}{day[2:]}"
    for name in reached:
        subprocess.run([r.ctl, "mdb", "verificar", r.terminal(name)], check=True, capture_output=True, timeout=120)
        got = {table.lower(): rows for table, rows in json.loads(r.dump(name)).items()}
        for table, rows in golden(f"terminal-after/{name}.json").items():
            wanted = plain_rows(rows)
            found = [{k: row.get(k) for k in (wanted[0] if wanted else {})} for row in plain_rows(got[table.lower()])]
            key = lambda row: json.dumps(row, sort_keys=True)
            assert sorted(found, key=key) == sorted(wanted, key=key), f"{name}.{table} differs"
    left = [f for _, _, names in os.walk(f"{r.dir}/red") for f in names if f != "Quimo_Terminal.mdb"]
    assert not left, f"left on the shares: {left}"


def close_whole_day(ctl, data, central):
    r = NetworkRestaurant(ctl, data, central)
    r.write_access(mode=0o644)
    refused = r.close_and_listen()
    assert refused.returncode == 1 and "chmod 600" in refused.stderr and not refused.stdout, refused
    r.write_access()
    done = r.close_and_listen()
    assert done.returncode == 0 and done.stderr == "", done.stderr
    assert "Proceso terminado" in done.stdout.splitlines()
    with open(f"{r.dir}/dir/QUIMO.log", encoding="utf-8", errors="replace") as log:
        assert PASSWORD not in done.stdout + log.read()
    compare(r, data, TERMINALS)
    r.remove()


REMOTE = r"\\CAJA2\quimo\Quimo_Terminal.mdb"
UNREACHABLE = [  # what is wrong with CAJA2, its lines of red.conf, the error's description
    ("switched off", lambda s: ["direccion = 127.0.0.3", f"puerto = {free_port()}"],
     rf"Nombre o número de archivo incorrecto: {REMOTE} (el equipo no comparte carpetas en el puerto "),
    ("not found", lambda s: ["direccion = caja2.invalid"],
     rf"Nombre o número de archivo incorrecto: {REMOTE} (no se encontró en la red el equipo caja2.invalid)"),
    ("wrong password", lambda s: ["direccion = 127.0.0.3", f"usuario = {s.user}", "clave = otra"],
     rf"Error de acceso a la ruta o al archivo: {REMOTE} (el equipo no acepta al usuario o su clave, "),
    ("no such share", None, r"No se encontró la ruta de acceso: \\CAJA2\quimo"),
]


def close_without(ctl, data, central, answer, case):
    what, access, description = case
    r = NetworkRestaurant(ctl, data, central)
    if access is None:
        os.remove(f"{r.dir}/por_direccion/{ADDRESS['CAJA2']}")
    else:
        r.write_access({"CAJA2": access(r.server)})
    files = {name: digest(r.terminal(name)) for name in TERMINALS}
    done = r.close_and_listen("--ante-falla", answer)
    told = done.stderr.splitlines()
    assert any(line.startswith(description) for line in done.stdout.splitlines()), (what, done.stdout)
    if answer == "abortar":
        assert done.returncode == 1, (what, done)
        assert told == ["Falla de comunicación con CAJA2 [Anular]"], (what, told)
        assert "Abortado" in done.stdout.splitlines() and "Proceso terminado" not in done.stdout
        assert files == {name: digest(r.terminal(name)) for name in TERMINALS}, f"{what}: a terminal was replaced"
        assert r.query([DATE])[0]["rows"][0][0] == "15112026", "the date moves on before any terminal is touched"
    else:
        assert done.returncode == 4, (what, done.returncode, done.stderr)
        assert told[:2] == ["Falla de comunicación con CAJA2 [Omitir]",
                            "Error fin día: Error de comunicación con terminales:"], (what, told)
        assert len(told) == 3 and told[2].startswith("CAJA2 " + description), (what, told)
        assert "Proceso terminado" in done.stdout.splitlines()
        assert digest(r.terminal("CAJA2")) == files["CAJA2"], f"{what}: CAJA2's file changed"
        compare(r, data, ["CAJA1", "BARRA"])
        for name in ("CAJA1", "BARRA"):
            assert digest(r.terminal(name)) != files[name], f"{what}: {name} has no new database"
    r.remove()


def main():
    ctl, data = sys.argv[1:3]
    points = int(sys.argv[3]) if len(sys.argv) > 3 else 20
    with tempfile.TemporaryDirectory(prefix="cierre-") as folder:
        central = new_central(ctl, data, folder)
        try:
            close_whole_day(ctl, data, central)
            print("the day closed over the network: nothing differs")
            for answer in ("abortar", "ignorar"):
                for case in UNREACHABLE:
                    close_without(ctl, data, central, answer, case)
            print(f"{2 * len(UNREACHABLE)} closes without CAJA2 said what they must")
            kill_many(lambda: NetworkRestaurant(ctl, data, central), points)
        finally:
            for restaurant in NetworkRestaurant.running:
                restaurant.server.stop()


if __name__ == "__main__":
    main()
