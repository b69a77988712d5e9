"""Terminal files that are damaged, foreign or not there."""
import fcntl
import os
import random
import shutil
import socket
import struct

from malos_casos import BAD, PAGE, Case

UTF16 = "utf-16-le"


def edit(name, change, **rest):
    """A case whose file has its bytes changed by `change(content)`, which may return others."""
    def prepare(day):
        content = day.bytes()
        changed = change(content)
        day.write(content if changed is None else changed)
    return Case(f"archivo: {name}", prepare, **rest)


def rebuilt(name, *changes, **rest):
    return Case(f"archivo: {name}", lambda day: day.rebuild(*changes), **rest)


def pages(content, kind):
    return [n for n in range(len(content) // PAGE) if content[n * PAGE] == kind]


def definition_of(content, column):
    """The page of the definition of the first table that has this column."""
    text = column.encode(UTF16)
    return next(n for n in pages(content, 2) if text in content[n * PAGE:(n + 1) * PAGE])


def pages_of(content, kind, definition):
    """Data (1) or index leaf (4) pages of a table."""
    return [n for n in pages(content, kind) if struct.unpack_from("<I", content, n * PAGE + 4)[0] == definition]


def zero(content, page):
    content[page * PAGE:(page + 1) * PAGE] = bytes(PAGE)


def flip(content, page, start=16):
    rest = random.Random(page)
    for at in rest.sample(range(start, PAGE), 60):
        content[page * PAGE + at] ^= rest.randrange(1, 256)


def payments(content):
    return definition_of(content, "Monto_Pago")


def on_page(action, kind):
    """Does something to the first page of this kind that belongs to the payments."""
    def change(content):
        action(content, pages_of(content, kind, payments(content))[0])
    return change


def count(content, by):
    at = payments(content) * PAGE + 16
    struct.pack_into("<I", content, at, struct.unpack_from("<I", content, at)[0] + by)


def on_usage_map(content):
    # The page of the table's own map of pages stands in its definition.
    at = payments(content) * PAGE + 0x37
    page = int.from_bytes(content[at + 1:at + 4], "little")
    row = content[at]
    offset = struct.unpack_from("<H", content, page * PAGE + 14 + 2 * row)[0] & 0x1FFF
    for i in range(offset, offset + 30):
        content[page * PAGE + i] ^= 0xFF


def put_byte(at, value):
    def change(content):
        content[at] = value
    return change


def head(word):
    def change(content):
        content[4:4 + len(word)] = word
    return change


def replace(make):
    """A case whose file is taken away and something else put in its place."""
    def prepare(day):
        os.remove(day.bad)
        make(day)
    return prepare


def busy(day, lock, path):
    held = open(path, "r+b")
    lock(held, fcntl.LOCK_EX)
    day.held.append(held)


def sparse(day):
    with open(day.bad, "r+b") as f:
        f.truncate((2 << 30) - PAGE)  # the largest that such a file can be


def unix_socket(day):
    listener = socket.socket(socket.AF_UNIX)
    here = os.getcwd()
    listener.bind(os.path.relpath(day.bad, here)[:100])
    day.held.append(listener)


def of(day, name):
    return f"{day.data}/terminals/{name}"


UNREACHED = dict(status=(1,), says=(f"Falla de comunicación con {BAD}",))
# What two terminals have in common is told before anything is copied.
SHARED = dict(status=(0, 1, 4), says=("mismo archivo", BAD), alone=False)
# Nothing to count: the terminal counts as missing, or its share as out of reach.
ELSE = dict(status=(0, 1, 4), says=(BAD,))
LOCKED = dict(status=(0, 1, 4), says=(f"La terminal {BAD} no se cerro",))

CASES = [
    # Cut short
    *[edit(f"cortado a {n} bytes", lambda c, n=n: c[:n], more=n not in (100, 4096, 300000))
      for n in (1, 100, 2048, 4095, 4096, 4097, 2 * PAGE, 3 * PAGE, 300000)],
    edit("vacío", lambda c: b""),
    edit("cortado a la mitad", lambda c: c[:len(c) // 2]),
    edit("sin su última página", lambda c: c[:-PAGE]),
    edit("sin su último byte", lambda c: c[:-1]),
    edit("con una página de más", lambda c: c + bytes(PAGE), status=(0, 1), says=()),
    edit("con un byte de más", lambda c: c + b"\0", status=(0, 1), says=()),
    # Something else
    edit("de texto", lambda c: "Estimado cliente: su terminal…\n".encode() * 5000),
    edit("una página web", lambda c: b"<html><body>504 Gateway Timeout</body></html>"),
    edit("comprimido", lambda c: b"PK\x03\x04" + bytes(c[4:])),
    edit("de ceros", lambda c: bytes(len(c))),
    edit("de unos", lambda c: b"\xff" * len(c), more=True),
    edit("al azar", lambda c: random.Random(1).randbytes(len(c))),
    # Other versions
    edit("de la versión anterior", put_byte(0x14, 0)),
    *[edit(f"de una versión posterior ({n})", put_byte(0x14, n), more=n != 2) for n in (2, 3, 5, 255)],
    edit("de otro formato", head(b"Standard ACE DB\0")),
    edit("cifrado", lambda c: put_byte(0x3E, c[0x3E] ^ 0x5A)(c)),
    edit("con contraseña", lambda c: put_byte(0x42, c[0x42] ^ 0x61)(c)),
    # Damaged inside
    edit("sin su primera página", lambda c: zero(c, 0)),
    edit("sin el mapa de páginas", lambda c: zero(c, 1)),
    edit("sin el catálogo", lambda c: zero(c, 2)),
    edit("catálogo con bytes cambiados", lambda c: flip(c, pages_of(c, 1, 2)[0])),
    edit("definición de Pago borrada", lambda c: zero(c, payments(c))),
    edit("definición de Pago cambiada", lambda c: flip(c, payments(c))),
    edit("página de renglones borrada", on_page(zero, 1)),
    edit("página de renglones cambiada", on_page(flip, 1)),
    edit("página de índice borrada", on_page(zero, 4)),
    edit("página de índice cambiada", on_page(flip, 4)),
    edit("mapa de la tabla cambiado", on_usage_map),
    edit("cuenta de renglones de más", lambda c: count(c, 1)),
    edit("cuenta de renglones de menos", lambda c: count(c, -1)),
    edit("cuenta de renglones enorme", lambda c: count(c, 0x7FFF0000)),
    # Not the tables that are expected
    *[rebuilt(f"sin la tabla {t}", f"sin-tabla:{t}", says=(BAD, t), more=t not in ("Cortesia", "Pago"))
      for t in ("Comanda", "Cuenta", "ProductosXCuenta", "Cortesia", "ImpuestosXCuenta", "Modificador", "Pago")],
    *[rebuilt(f"sin la columna {c}", f"sin-columna:{c}", says=(BAD, c.split(".")[1]), more=c == "Cuenta.Total")
      for c in ("Comanda.Fecha_Trabajo", "Cuenta.Total", "Pago.ID_Pago", "ProductosXCuenta.ID_Tipo_Anulacion")],
    rebuilt("con el total en texto", "tipo:Cuenta.Total=texto", says=(BAD, "Cuenta", "Total")),
    rebuilt("con los pagos en doble", "tipo:Pago.Monto_Pago=doble", says=(BAD, "Pago", "Monto_Pago")),
    rebuilt("con la apertura en doble", "tipo:Comanda.Fecha_Apertura=doble", says=(BAD, "Comanda", "Fecha_Apertura"),
            changes_rows=True),
    rebuilt("con las claves en doble", "tipo:Pago.ID_Pago=doble", status=(0,), says=()),
    rebuilt("sin llaves", "sin-llave:Pago", "sin-llave:Comanda", status=(0,), says=()),
    rebuilt("sin pagos", "vaciar:Pago", status=(0,), says=()),
    Case("archivo: la plantilla, sin ventas", lambda day: shutil.copy(f"{day.data}/terminals/Plantilla.mdb", day.bad),
         status=(0,), says=()),
    # Not a file, or not there
    Case("archivo: una carpeta en su lugar", replace(lambda d: os.mkdir(d.bad)), **ELSE),
    Case("archivo: un enlace a sí mismo", replace(lambda d: os.symlink(d.bad, d.bad)), **ELSE),
    Case("archivo: un enlace a nada", replace(lambda d: os.symlink("/no/hay", d.bad)), **ELSE),
    Case("archivo: un tubo en su lugar", replace(lambda d: os.mkfifo(d.bad)), **ELSE),
    Case("archivo: un conector en su lugar", replace(unix_socket), **ELSE),
    Case("archivo: un dispositivo sin fin", replace(lambda d: os.symlink("/dev/zero", d.bad)), **ELSE),
    Case("archivo: no está", replace(lambda d: None), status=(0, 4), says=(f"{BAD}: no se leyó",)),
    Case("archivo: sin su carpeta", lambda d: shutil.rmtree(os.path.dirname(d.bad)), **UNREACHED),
    Case("archivo: la terminal apagada", lambda d: shutil.rmtree(os.path.dirname(os.path.dirname(d.bad))), **UNREACHED),
    Case("archivo: sin permiso de lectura", lambda d: os.chmod(d.bad, 0), status=(0, 1) if os.getuid() == 0 else (1,),
         says=() if os.getuid() == 0 else (f"Falla de comunicación con {BAD}",)),
    Case("archivo: abierto en la terminal", lambda d: busy(d, fcntl.flock, d.bad), **LOCKED),
    Case("archivo: con su .ldb tomado",
         lambda d: (open(d.bad[:-3] + "ldb", "wb").close(), busy(d, fcntl.lockf, d.bad[:-3] + "ldb")), **LOCKED),
    Case("archivo: con un .ldb olvidado", lambda d: open(d.bad[:-3] + "ldb", "wb").close(), status=(0,), says=()),
    Case("archivo: de dos gigas", sparse, status=(0, 1), says=(), more=True),
    # Another terminal's, another restaurant's
    Case("archivo: el de CAJA1", lambda d: shutil.copy(d.terminal("CAJA1"), d.bad), **SHARED),
    Case("archivo: el mismo en dos terminales", lambda d: shutil.copy(d.bad, d.terminal("BARRA")), **SHARED),
]
