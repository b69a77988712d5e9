"""Rows of a terminal that the central database refuses, and rows that are only odd."""
from malos_casos import BAD, Case

ORDER, ITEM, PAYMENT = "50902", "20001", "94303"
# Table, key of the recorded row that is spoiled, obligatory central columns, those of the key first.
OBLIGATORY = [("Comanda", ORDER, ["ID_Comanda"], []),
              ("Cuenta", f"{ORDER},1", ["ID_Comanda", "Num_Cuenta"], []),
              ("ProductosXCuenta", ITEM, ["ID_ProductosXCuenta"], ["ID_Comanda", "Num_Cuenta", "ID_Producto"]),
              ("Cortesia", "20010,2", ["ID_ProductosXCuenta", "ID_Tipo_Cortesia"], []),
              ("ImpuestosXCuenta", f"{ITEM},1", ["ID_ProductosXCuenta", "ID_Tipo_Impuesto"], []),
              ("Modificador", "20012,12", ["ID_ProductosXCuenta", "ID_Tipo_Modificador"], []),
              ("Pago", PAYMENT, ["ID_Pago"], ["ID_comanda", "Num_Cuenta", "ID_Tipo_Pago"])]


def null_cases():
    for table, key, of_key, others in OBLIGATORY:
        for column in of_key + others:
            def prepare(day, table=table, key=key, column=column, in_key=column in of_key):
                if in_key:
                    day.rebuild(f"sin-llave:{table}")
                day.put(table, key, f"{column}=nulo")
            # Each engine and declaration writes "ID_Comanda" in its own case.
            yield Case(f"sin valor: {table}.{column}", prepare, says=(BAD, table, f"{column[:3]}", "obligatoria"),
                       changes_rows=True, more=column != (of_key + others)[-1])


def refused(name, *changes, says, rebuild=(), before=()):
    """A close that a row ends: `changes` are rows put into the terminal's file."""
    def prepare(day):
        day.sql(*before)
        if rebuild:
            day.rebuild(*rebuild)
        for table, key, *values in changes:
            day.put(table, key, *values)
    return Case(name, prepare, says=(BAD, *says), changes_rows=True)


def odd_double(name, value, shown):
    def prepare(day):
        day.rebuild("tipo:Comanda.Num_Mesa=doble")
        day.put_double("Comanda", "60001", "Num_Mesa", value)
    return Case(name, prepare, says=(BAD, "Comanda", "60001", "Num_Mesa", shown), changes_rows=True)


def copied(name, *changes, wanted, rebuild=(), status=0):
    """A row that is only odd: it must arrive as it stands."""
    def prepare(day):
        if rebuild:
            day.rebuild(*rebuild)
        for table, key, *values in changes:
            day.put(table, key, *values)
    return Case(name, prepare, status=(status,), says=(), wanted=wanted, changes_rows=True)


def order(column):
    return f"SELECT {column} FROM Comanda WHERE ID_Comanda=60001"


def item(column, key=ITEM):
    return f"SELECT {column} FROM ProductosXCuenta WHERE ID_ProductosXCuenta={key}"


def payment(column, key=PAYMENT):
    return f"SELECT {column} FROM Pago WHERE ID_Pago={key}"


def text_case(name, written, arrived):
    return copied(f"texto: {name}", ("ProductosXCuenta", ITEM, f"Comentario={written}"),
                  wanted={item("Comentario"): arrived})


MOST = "922337203685477.5807"
OTHER_DAY = "INSERT INTO Comanda (ID_Comanda,Fecha_Trabajo) VALUES (777,'13112026')"
ITS_ITEM = ("INSERT INTO ProductosXCuenta (ID_ProductosXCuenta,ID_Comanda,Num_Cuenta,ID_Producto,Precio_Venta) "
            f"VALUES ({ITEM},777,1,407,232)")

CASES = [
    *null_cases(),
    # Texts that are too long
    refused("texto largo: Tipo", ("Comanda", "60001", "Tipo=texto:MESA DE LA TERRAZA"), says=("Comanda", "60001", "Tipo", "10"),
            rebuild=("largo:Comanda.Tipo=50",)),
    refused("texto largo: Fecha_Trabajo", ("Comanda", "60001", "Fecha_Trabajo=texto:14/11/2026"),
            says=("Comanda", "60001", "Fecha_Trabajo", "14/11/2026"), rebuild=("largo:Comanda.Fecha_Trabajo=20",)),
    # Dates that the central database does not keep
    refused("fecha: año 100", ("Comanda", "60001", "Fecha_Apertura=fecha:-657434"),
            says=("Comanda", "60001", "Fecha_Apertura", "01/01/0100")),
    refused("fecha: víspera de 1753", ("Comanda", "60001", "Fecha_Cierre=fecha:-53689"),
            says=("Comanda", "60001", "Fecha_Cierre", "31/12/1752")),
    refused("fecha: hora de anulación de 1700", ("ProductosXCuenta", "29999", f"ID_Comanda=entero:{ORDER}",
                                                 "Num_Cuenta=entero:1", "ID_Producto=entero:407",
                                                 "Hora_Anulacion=fecha:-73000"),
            says=("ProductosXCuenta", "29999", "Hora_Anulacion")),
    copied("fecha: primer día admitido", ("Comanda", "60001", "Fecha_Apertura=fecha:-53688"),
           wanted={order("Fecha_Apertura"): "1753-01-01T00:00:00"}),
    copied("fecha: último segundo", ("Comanda", "60001", "Fecha_Apertura=fecha:2958465.99998843"),
           wanted={order("Fecha_Apertura"): "9999-12-31T23:59:59"}),
    # Numbers where the file's column is of another type than ours
    refused("número: mesa 3e9", ("Comanda", "60001", "Num_Mesa=doble:3000000000"),
            says=("Comanda", "60001", "Num_Mesa", "3000000000"), rebuild=("tipo:Comanda.Num_Mesa=doble",)),
    odd_double("número: mesa nan", float("nan"), "nan"),
    odd_double("número: mesa infinita", float("-inf"), "inf"),
    refused("número: propina 1e300", ("Pago", "99001", f"ID_comanda=entero:{ORDER}", "Num_Cuenta=entero:1",
                                      "ID_Tipo_Pago=entero:1", "Propina=doble:1e300"),
            says=("Pago", "99001", "Propina", "e+300"), rebuild=("tipo:Pago.Propina=doble",)),
    refused("número: mesa en letras", ("Comanda", "60001", "Num_Mesa=texto:la de siempre"),
            says=("Comanda", "60001", "Num_Mesa", "la de siempre"), rebuild=("tipo:Comanda.Num_Mesa=texto",)),
    copied("número: mesa en texto", ("Comanda", "60001", "Num_Mesa=texto:12"), wanted={order("Num_Mesa"): 12},
           rebuild=("tipo:Comanda.Num_Mesa=texto",)),
    # Keys
    refused("clave: artículo que es de otra fecha", says=("ProductosXCuenta", ITEM, "777", "13/11/2026", ORDER),
            before=(OTHER_DAY, ITS_ITEM)),
    refused("clave: artículo de ayer otra vez", ("ProductosXCuenta", "29001", "ID_Comanda=entero:10902", "Num_Cuenta=entero:1",
                                                 "ID_Producto=entero:407"),
            says=("ProductosXCuenta", "29001", "10902", "13/11/2026")),
    copied("clave: dos veces en el archivo", ("Pago", PAYMENT, "ID_Pago=entero:94304", "Monto_Pago=dinero:1.5"),
           wanted={"SELECT COUNT(*) FROM Pago WHERE ID_Pago IN (94303,94304)": 1}, rebuild=("sin-llave:Pago",), status=4),
    copied("clave: pago negativo", ("Pago", PAYMENT, "ID_Pago=entero:-5"), wanted={payment("ID_Comanda", -5): int(ORDER)}),
    copied("clave: la orden más alta", ("Comanda", "2147483646", "Fecha_Trabajo=texto:14112026"),
           wanted={"SELECT Valor_Num FROM Parametros WHERE ID_Parametro='FOLIOCOMANDA'": "2147483647.0000"}),
    copied("clave: el pago más alto", ("Pago", "2147483647", f"ID_comanda=entero:{ORDER}", "Num_Cuenta=entero:1",
                                       "ID_Tipo_Pago=entero:1"),
           wanted={"SELECT Valor_Num FROM Parametros WHERE ID_Parametro='FOLIOPAGO'": "2147483648.0000"}),
    copied("clave: artículo sin el número de su terminal", ("ProductosXCuenta", ITEM, "ID_ProductosXCuenta=entero:99001"),
           wanted={item("ID_Comanda", 99001): int(ORDER)}),
    copied("clave: el artículo más alto", ("ProductosXCuenta", ITEM, "ID_ProductosXCuenta=entero:2147483647"),
           wanted={item("ID_Comanda", 2147483647): int(ORDER)}),
    # Rows that belong nowhere
    copied("sin madre: artículo sin orden", ("ProductosXCuenta", ITEM, "ID_Comanda=entero:7"), wanted={item("ID_Comanda"): 7}),
    copied("sin madre: pago sin cuenta", ("Pago", PAYMENT, "Num_Cuenta=entero:99"), wanted={payment("Num_Cuenta"): 99}),
    copied("sin madre: producto de otro restaurante", ("ProductosXCuenta", ITEM, "ID_Producto=entero:987654"),
           wanted={item("ID_Producto"): 987654}),
    copied("sin madre: mesero de otro restaurante", ("Comanda", "60001", "ID_Empleado=entero:9999"),
           wanted={order("ID_Empleado"): 9999}),
    # Working dates
    copied("fecha de trabajo: de ayer", ("Comanda", "60001", "Fecha_Trabajo=texto:13112026"),
           wanted={order("Fecha_Trabajo"): "13112026"}),
    copied("fecha de trabajo: mal escrita", ("Comanda", "60001", "Fecha_Trabajo=texto:3113"),
           wanted={order("Fecha_Trabajo"): "3113"}),
    copied("fecha de trabajo: letras", ("Comanda", "60001", "Fecha_Trabajo=texto:ayer"),
           wanted={order("Fecha_Trabajo"): "ayer"}),
    copied("fecha de trabajo: vacía", ("Comanda", "60001", "Fecha_Trabajo=texto:"), wanted={order("Fecha_Trabajo"): ""}),
    copied("fecha de trabajo: sin valor", ("Comanda", "60001", "Fecha_Trabajo=nulo"), wanted={order("Fecha_Trabajo"): None}),
    # Amounts
    copied("monto: negativo", ("Pago", PAYMENT, "Monto_Pago=dinero:-50.25", "Propina=dinero:-0.0001"),
           wanted={payment("Monto_Pago"): "-50.2500", payment("Propina"): "-0.0001"}),
    copied("monto: la propina más alta", ("Pago", PAYMENT, f"Propina=dinero:{MOST}"), wanted={payment("Propina"): MOST}),
    copied("monto: la propina más baja", ("Pago", PAYMENT, "Propina=diezmilesimas:-9223372036854775808"),
           wanted={payment("Propina"): "-922337203685477.5808"}),
    # These are summed: the sum leaves what money can be.
    refused("monto: el pago más alto", ("Pago", PAYMENT, f"Monto_Pago=dinero:{MOST}"), says=("Pago", "Monto_Pago")),
    refused("monto: el precio más bajo dos veces", ("ProductosXCuenta", ITEM, "Precio_Venta=diezmilesimas:-9223372036854775808"),
            ("ProductosXCuenta", "20002", "Precio_Venta=diezmilesimas:-9223372036854775808"),
            says=("ProductosXCuenta", "Precio_Venta")),
    copied("monto: sin valor", ("Pago", PAYMENT, "Monto_Pago=nulo"), wanted={payment("Monto_Pago"): None}),
    # Texts that look dangerous
    text_case("apóstrofos", "texto:'; DROP TABLE Pago; --'", "'; DROP TABLE Pago; --'"),
    text_case("saltos y tabuladores", "hex:41,D,A,9,42", "A\r\n\tB"),
    text_case("caracteres de control", "hex:41,1,7,1B,7F,42", "A\x01\x07\x1b\x7fB"),
    text_case("emoji", "texto:sin picante \U0001F336 por favor", "sin picante \U0001F336 por favor"),
    text_case("vacío", "texto:", ""),
    text_case("solo blancos", "texto:   ", "   "),
    text_case("interrogaciones y llaves", "texto:{?=call x} ? %s \\ $(rm)", "{?=call x} ? %s \\ $(rm)"),
    text_case("chino y árabe", "texto:少糖 بدون سكر", "少糖 بدون سكر"),
    text_case("carácter cero", "hex:41,0,42", "A\0B"),
    text_case("mitad de un carácter", "hex:41,D83D,42", "A?B"),
]
