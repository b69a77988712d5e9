"""The queries of the sales, payments and product mix reports, as the program asks them and by hand.

Each entry: a name; the T-SQL lines of one session, of which the last rows count; the same question for
the sqlite3 shell. {desde} and {hasta} are dd/mm/yyyy; {dias} is the list of working dates as kept.
In the file amounts are whole ten-thousandths and dates milliseconds.
"""

DIA = ("CONVERT(DateTime,SUBSTRING(Fecha_Trabajo,1,2)+ '/' + SUBSTRING(Fecha_Trabajo,3,2) + '/' + "
       "SUBSTRING(Fecha_Trabajo,5,4),103) BETWEEN CONVERT(DateTime,'{desde}',103) AND CONVERT(DateTime,'{hasta}',103)")
COMANDAS = "SELECT ID_Comanda FROM Comanda WHERE " + DIA
MOD = ("(select id_productosxcuenta, sum(precio_modificador-impuesto_modificador) as TotalMod from modificador "
       "group by id_productosxcuenta) Mod")
MOD_ANULADO = ("(SELECT Modificador.ID_ProductosXCuenta,SUM(Precio_Modificador) AS TotalMod FROM Comanda,ProductosXCuenta,"
               "Modificador WHERE Comanda.ID_Comanda=ProductosXCuenta.ID_Comanda AND Comanda.Control=ProductosXCuenta.Control "
               "AND ProductosXCuenta.ID_ProductosXCuenta=Modificador.ID_ProductosXCuenta "
               "GROUP BY Modificador.ID_ProductosXCuenta) AS Mod")
TEMPDIA = ["CREATE TABLE #TempDia (ID_Comanda Numeric(18,0),Fecha_Apertura Datetime,Categoria Varchar(80),"
           "Huespedes Integer,Monto Numeric(18,2))",
           "Insert into #TempDia select com.id_comanda, fecha_apertura, nombre_categoria, canthuespedes,"
           "(sum(precio_venta)+ sum(isnull(TotalMod,0))) as Monto from comanda com,categoria cat,producto pro,"
           "productosxcuenta pxc left outer join " + MOD + " on pxc.id_productosxcuenta = mod.id_productosxcuenta "
           "where com.id_comanda = pxc.id_comanda and pxc.id_producto = pro.id_producto and "
           "pro.id_categoria = cat.id_categoria and id_tipo_anulacion is null and " + DIA +
           " group by com.id_comanda, fecha_apertura, nombre_categoria, canthuespedes"]
TMP_VENTAS = ["CREATE TABLE #Tmp_Ventas (ID_Categoria Integer,Nombre Varchar(50),Ventas_Netas Money,Cortesias Money,"
              "Promociones Money,Anulaciones Money,Impuestos Money,Ventas_Brutas AS isnull(Ventas_Netas,0)+"
              "isnull(Cortesias,0)+isnull(Promociones,0)+isnull(Impuestos,0))",
              "EXEC Reporte_Ventas '{desde}','{hasta}'",
              "SELECT ID_Categoria,Nombre,SUM(ISNULL(Ventas_Netas,0)) AS Ventas_Netas, SUM(ISNULL(Cortesias,0)) AS Cortesias, "
              "SUM(ISNULL(Promociones,0)) AS Promociones, SUM(ISNULL(Anulaciones,0)) AS Anulaciones, "
              "SUM(ISNULL(Impuestos,0)) AS Impuestos, SUM(ISNULL(Ventas_Brutas,0)) AS Ventas_Brutas FROM #Tmp_Ventas "
              "GROUP BY ID_Categoria,Nombre ORDER BY Nombre"]
PMIX = ["CREATE TABLE #Temp(Articulos Integer,id_Producto Integer,Nombre_Completo VarChar (100),PrecioVendido Numeric(18,2),"
        "PrecioOriginal Numeric(18,2),Costo Numeric(18,2))",
        "INSERT INTO #Temp SELECT COUNT(ID_ProductosXCuenta) AS Articulos,Producto.ID_Producto,Nombre_Completo,"
        "(SUM(Precio_Venta)/Count(ID_ProductosXCuenta)),MAX(Precio_Original),0 FROM Producto LEFT OUTER JOIN ProductosXCuenta "
        "ON Producto.ID_Producto=ProductosXCuenta.ID_Producto AND ID_Comanda IN (" + COMANDAS + ") AND ID_Tipo_Anulacion IS NULL "
        "GROUP BY Producto.ID_Producto,Nombre_Completo ORDER BY Producto.ID_Producto",
        "SELECT ID_Producto,Nombre_Completo,PrecioOriginal,Articulos,PrecioVendido,(Articulos*PrecioVendido) AS MontoVenta "
        "FROM #Temp ORDER BY Nombre_Completo"]
CASI = "FROM Comanda c JOIN ProductosXCuenta p ON p.ID_Comanda=c.ID_Comanda "
EN_DIAS = "c.Fecha_Trabajo IN ({dias}) "
HORA = "time(-2208988800+Fecha_Apertura/1000,'unixepoch')"
POR_LINEA = ("(SELECT SUM(Precio_Modificador-Impuesto_Modificador) FROM Modificador m "
             "WHERE m.ID_ProductosXCuenta=p.ID_ProductosXCuenta)")

CONSULTAS = [
    ("sales: net", [
        "select sum(cu.precio_venta) + sum(TotalMod) as TotalVenta from comanda com, productosxcuenta cu left outer join " + MOD +
        " on mod.id_productosxcuenta = cu.id_productosxcuenta Where cu.id_tipo_anulacion Is Null And "
        "com.id_comanda = cu.id_comanda and " + DIA],
     "SELECT (SUM(Precio_Venta)+SUM(" + POR_LINEA + "))/1e4 " + CASI + "WHERE ID_Tipo_Anulacion IS NULL AND " + EN_DIAS),
    ("sales: gross", [
        "SELECT (impNeto.Venta + ISNULL(impMod.modif,0) + ISNULL(impCor.cortesia,0) + impImp.impuesto) AS Bruto FROM "
        "(SELECT SUM(Precio_Venta) AS Venta FROM ProductosXCuenta WHERE id_tipo_anulacion is null AND ID_Comanda IN (" + COMANDAS +
        ")) impNeto,(SELECT SUM(Precio_Modificador) AS Modif FROM Modificador M,ProductosXCuenta P,Comanda C WHERE "
        "M.ID_ProductosXCuenta=P.ID_ProductosXCuenta AND P.ID_Comanda=C.ID_Comanda AND id_tipo_anulacion is null AND " + DIA +
        ") impMod,(SELECT SUM(Monto) AS Cortesia FROM Cortesia COR,ProductosXCuenta P,Comanda C WHERE "
        "COR.ID_ProductosXCuenta=P.ID_ProductosXCuenta AND P.ID_Comanda=C.ID_Comanda AND P.Control=C.Control AND "
        "id_tipo_anulacion is null AND " + DIA + ") impCor,(SELECT SUM(Monto_ImpuestosXCuenta) AS Impuesto FROM "
        "ImpuestosXCuenta I,ProductosXCuenta P,Comanda C WHERE I.ID_ProductosXCuenta=P.ID_ProductosXCuenta AND "
        "P.ID_Comanda=C.ID_Comanda AND P.Control=C.Control AND id_tipo_anulacion is null AND " + DIA + ") impImp"],
     "SELECT SUM(Precio_Venta+coalesce((SELECT SUM(Precio_Modificador) FROM Modificador m WHERE m.ID_ProductosXCuenta=p.ID_ProductosXCuenta),0)"
     "+coalesce((SELECT SUM(Monto) FROM Cortesia m WHERE m.ID_ProductosXCuenta=p.ID_ProductosXCuenta),0)"
     "+(SELECT SUM(Monto_ImpuestosXCuenta) FROM ImpuestosXCuenta m WHERE m.ID_ProductosXCuenta=p.ID_ProductosXCuenta))/1e4 " +
     CASI + "WHERE ID_Tipo_Anulacion IS NULL AND " + EN_DIAS),
    ("sales: guests by part of day", ["EXEC Invitados_X_SeccionDia '{desde}','{hasta}'"],
     "SELECT s.Nombre,sum(iif(d<=h,o.hora BETWEEN d AND h,o.hora>=d OR o.hora BETWEEN '00:00:01' AND h)*o.g),"
     "sum(iif(d<=h,o.hora BETWEEN d AND h,o.hora>=d OR o.hora<=h)) FROM (SELECT Nombre,time(Hora_inicio/1000,'unixepoch') d,"
     "time(Hora_Fin/1000,'unixepoch') h FROM Seccion_dia) s,(SELECT time(Fecha_Apertura/1000,'unixepoch') hora,CantHuespedes g "
     "FROM Comanda c WHERE " + EN_DIAS + "AND EXISTS (SELECT 1 FROM ProductosXCuenta p WHERE p.ID_Comanda=c.ID_Comanda AND "
     "ID_Tipo_Anulacion IS NULL)) o GROUP BY s.Nombre"),
    ("sales: by order and category", TEMPDIA + ["SELECT Categoria,SUM(Monto),COUNT(*) FROM #TempDia GROUP BY Categoria"],
     "CREATE TEMP TABLE d AS SELECT c.ID_Comanda,c.Fecha_Apertura,k.Nombre_Categoria n,c.CantHuespedes,"
     "SUM(Precio_Venta+coalesce(" + POR_LINEA + ",0)) m " + CASI + "JOIN Producto r ON r.ID_Producto=p.ID_Producto "
     "JOIN Categoria k ON k.ID_Categoria=r.ID_Categoria WHERE ID_Tipo_Anulacion IS NULL AND " + EN_DIAS +
     "GROUP BY 1,2,k.ID_Categoria,4;SELECT n,SUM(m)/1e4,COUNT(*) FROM d GROUP BY n"),
    ("sales: by category", TMP_VENTAS,
     "SELECT k.ID_Categoria,k.Nombre_Categoria,sum(v*(pv+mo))/1e4,sum(v*co)/1e4,sum(v*pr)/1e4,sum((1-v)*(pv+mo))/1e4,"
     "sum(v*im)/1e4,sum(v*(pv+mo+co+pr+im))/1e4 FROM (SELECT p.ID_Producto,ID_Tipo_Anulacion IS NULL v,Precio_Venta pv,"
     "coalesce(" + POR_LINEA + ",0) mo,coalesce((SELECT sum(Monto) FROM Cortesia m WHERE m.ID_ProductosXCuenta=p.ID_ProductosXCuenta),0) co,"
     "iif(ID_Promocion IS NULL,0,Precio_Original-Precio_Venta) pr,coalesce((SELECT sum(Monto_ImpuestosXCuenta) FROM ImpuestosXCuenta m "
     "WHERE m.ID_ProductosXCuenta=p.ID_ProductosXCuenta),0) im " + CASI + "WHERE " + EN_DIAS + ") q "
     "JOIN Producto r ON r.ID_Producto=q.ID_Producto JOIN Categoria k ON k.ID_Categoria=r.ID_Categoria GROUP BY k.ID_Categoria"),
    ("sales: by part of day and category", TEMPDIA + [
        "CREATE TABLE #TempSecCat (Categoria Varchar(100),Seccion Varchar(100),Monto Numeric(18,2))",
        "INSERT INTO #TempSecCat SELECT Categoria, 'Comida' , SUM(Monto) FROM #TempDia WHERE CONVERT(Char(8),Fecha_Apertura,108) "
        "BETWEEN '13:00:00' AND '17:59:59' GROUP BY Categoria",
        "Select seccion, sum(monto) Monto from #TempSecCat group by seccion"],
     "SELECT 'Comida',SUM(Precio_Venta+coalesce(" + POR_LINEA + ",0))/1e4 " + CASI + "WHERE ID_Tipo_Anulacion IS NULL AND " + EN_DIAS +
     "AND time(c.Fecha_Apertura/1000,'unixepoch') BETWEEN '13:00:00' AND '17:59:59'"),
    ("sales: payments not in cash", [
        "SELECT Nombre_Tipo_Pago,SUM(Monto_Pago) AS Monto FROM Pago P,Tipo_Pago TP,Comanda COM WHERE P.ID_Tipo_Pago= TP.ID_Tipo_Pago "
        "AND P.ID_Comanda=COM.ID_Comanda and P.Control=Com.Control AND Clase <>'E' AND " + DIA + " GROUP BY Nombre_Tipo_Pago"],
     "SELECT Nombre_Tipo_Pago,SUM(Monto_Pago)/1e4 FROM Comanda c CROSS JOIN Pago p ON p.ID_Comanda=c.ID_Comanda AND p.Control=c.Control "
     "JOIN Tipo_Pago t ON t.ID_Tipo_Pago=p.ID_Tipo_Pago WHERE Clase<>'E' AND " + EN_DIAS + "GROUP BY t.ID_Tipo_Pago"),
    ("sales: courtesies", [
        "SELECT Nombre_Tipo_Cortesia,SUM(Monto) AS Monto FROM Cortesia COR,ProductosXCuenta PXC,Tipo_Cortesia TC,Comanda COM WHERE "
        "COR.ID_Tipo_Cortesia=TC.ID_Tipo_Cortesia AND COR.ID_ProductosXCuenta=PXC.ID_ProductosXCuenta AND "
        "PXC.ID_Comanda=COM.ID_Comanda AND PXC.Control=COM.Control AND ID_Tipo_Anulacion IS NULL AND " + DIA +
        " GROUP BY Nombre_Tipo_Cortesia"],
     "SELECT Nombre_Tipo_Cortesia,SUM(Monto)/1e4 FROM Comanda c CROSS JOIN ProductosXCuenta p ON p.ID_Comanda=c.ID_Comanda "
     "AND p.Control=c.Control CROSS JOIN Cortesia x ON x.ID_ProductosXCuenta=p.ID_ProductosXCuenta JOIN Tipo_Cortesia t ON "
     "t.ID_Tipo_Cortesia=x.ID_Tipo_Cortesia WHERE ID_Tipo_Anulacion IS NULL AND " + EN_DIAS + "GROUP BY t.ID_Tipo_Cortesia"),
    ("sales: voids", [
        "SELECT Nombre_Categoria,SUM(Precio_Venta+ISNULL(TotalMod,0)+ISNULL(Monto_ImpuestosXCuenta,0)) AS Monto FROM "
        "Comanda INNER JOIN ProductosXCuenta ON Comanda.ID_Comanda=ProductosXCuenta.ID_Comanda AND "
        "Comanda.Control=ProductosXCuenta.Control LEFT OUTER JOIN ImpuestosXCuenta ON "
        "ProductosXCuenta.ID_ProductosXCuenta=ImpuestosXCuenta.ID_ProductosXCuenta LEFT OUTER JOIN " + MOD_ANULADO + " ON "
        "ProductosXCuenta.ID_ProductosXCuenta=Mod.ID_ProductosXCuenta,Producto,Categoria WHERE "
        "ProductosXCuenta.ID_Producto=Producto.ID_Producto AND Producto.ID_Categoria=Categoria.ID_Categoria AND "
        "NOT ID_Tipo_Anulacion IS NULL AND " + DIA + " GROUP BY Nombre_Categoria"],
     "SELECT k.Nombre_Categoria,SUM(Precio_Venta+coalesce((SELECT SUM(Precio_Modificador) FROM Modificador m WHERE "
     "m.ID_ProductosXCuenta=p.ID_ProductosXCuenta),0)+coalesce(i.Monto_ImpuestosXCuenta,0))/1e4 " + CASI +
     "LEFT JOIN ImpuestosXCuenta i ON i.ID_ProductosXCuenta=p.ID_ProductosXCuenta JOIN Producto r ON r.ID_Producto=p.ID_Producto "
     "JOIN Categoria k ON k.ID_Categoria=r.ID_Categoria WHERE ID_Tipo_Anulacion IS NOT NULL AND " + EN_DIAS + "GROUP BY k.ID_Categoria"),
    ("sales: taxes", ["EXEC Rep_Ventas_Imp_Mod '{desde}','{hasta}'"],
     "SELECT t.Nombre_Tipo_Impuesto,SUM(Monto_ImpuestosXCuenta)/1e4 " + CASI + "CROSS JOIN ImpuestosXCuenta i ON "
     "i.ID_ProductosXCuenta=p.ID_ProductosXCuenta JOIN Tipos_Impuesto t ON t.ID_Tipo_Impuesto=i.ID_Tipo_Impuesto "
     "WHERE ID_Tipo_Anulacion IS NULL AND " + EN_DIAS + "GROUP BY t.ID_Tipo_Impuesto"),
    ("sales: cash", [
        "SELECT ISNULL(SUM(Monto_Pago),0) AS Monto FROM Pago P,Tipo_Pago TP,Comanda Com WHERE P.ID_Tipo_Pago=TP.ID_Tipo_Pago AND "
        "Com.ID_Comanda=P.ID_Comanda AND Com.Control=P.Control AND Clase='E' AND " + DIA],
     "SELECT coalesce(SUM(Monto_Pago),0)/1e4 FROM Comanda c CROSS JOIN Pago p ON p.ID_Comanda=c.ID_Comanda AND p.Control=c.Control "
     "JOIN Tipo_Pago t ON t.ID_Tipo_Pago=p.ID_Tipo_Pago WHERE Clase='E' AND " + EN_DIAS),
    ("sales: tips", ["Select sum(propina)as monto from pago where id_comanda in (" + COMANDAS + ")"],
     "SELECT SUM(Propina)/1e4 FROM Comanda c CROSS JOIN Pago p ON p.ID_Comanda=c.ID_Comanda WHERE " + EN_DIAS),
    ("payments: by type", [
        "SELECT Nombre_Tipo_Pago,COUNT(Pago.ID_Tipo_Pago) AS ContID, SUM(Monto_Pago) AS SumaMontos,SUM(Propina) AS SumaPropinas, "
        "SUM((Propina + Monto_Pago)) As Total FROM Comanda,Tipo_Pago,Pago WHERE Comanda.ID_Comanda = Pago.ID_Comanda AND "
        "Pago.ID_Tipo_Pago = Tipo_Pago.Id_Tipo_Pago AND " + DIA + " AND Pago.ID_Comanda=Comanda.ID_Comanda GROUP BY Nombre_Tipo_Pago"],
     "SELECT Nombre_Tipo_Pago,COUNT(*),SUM(Monto_Pago)/1e4,SUM(Propina)/1e4,SUM(Propina+Monto_Pago)/1e4 FROM Comanda c CROSS JOIN Pago p "
     "ON p.ID_Comanda=c.ID_Comanda JOIN Tipo_Pago t ON t.ID_Tipo_Pago=p.ID_Tipo_Pago WHERE " + EN_DIAS + "GROUP BY t.ID_Tipo_Pago"),
    ("payments: courtesies", [
        "SELECT Nombre_Tipo_Cortesia, COUNT(cor.ID_ProductosXCuenta) AS Cantidad, SUM(dbo.Redondear(Monto)) AS Monto FROM "
        "Cortesia COR,ProductosXCuenta PXC,Tipo_Cortesia TC,Comanda COM WHERE COR.ID_Tipo_Cortesia = TC.ID_Tipo_Cortesia AND "
        "COR.ID_ProductosXCuenta=PXC.ID_ProductosXCuenta AND PXC.ID_Comanda=COM.ID_Comanda AND ID_Tipo_Anulacion IS NULL AND " + DIA +
        " GROUP BY Nombre_Tipo_Cortesia"],
     "SELECT Nombre_Tipo_Cortesia,COUNT(*),SUM(round(Monto/1e4,2)) FROM Comanda c CROSS JOIN ProductosXCuenta p ON "
     "p.ID_Comanda=c.ID_Comanda CROSS JOIN Cortesia x ON x.ID_ProductosXCuenta=p.ID_ProductosXCuenta JOIN Tipo_Cortesia t ON "
     "t.ID_Tipo_Cortesia=x.ID_Tipo_Cortesia WHERE ID_Tipo_Anulacion IS NULL AND " + EN_DIAS + "GROUP BY t.ID_Tipo_Cortesia"),
    ("payments: list", [
        "SELECT Cuenta.ID_Comanda,Cuenta.Num_Cuenta,Nombre_Tipo_Pago,Monto_Pago,Propina,Referencia FROM Cuenta,Pago,Tipo_Pago WHERE "
        "Cuenta.ID_Comanda=Pago.ID_comanda AND Cuenta.Num_Cuenta=Pago.Num_Cuenta AND Cuenta.Control=Pago.Control AND "
        "Pago.ID_Tipo_Pago=Tipo_Pago.ID_Tipo_Pago AND Cuenta.ID_Comanda IN (SELECT ID_Comanda FROM Comanda WHERE "
        "CAST(SUBSTRING(Fecha_Trabajo,1,2)+ '/' + SUBSTRING(Fecha_Trabajo,3,2)+ '/' + SUBSTRING(Fecha_Trabajo,5,4) AS Datetime) "
        "BETWEEN '{desde} 00:00:00' AND '{hasta} 23:59:59') ORDER BY Cuenta.ID_Comanda"],
     "SELECT u.ID_Comanda,u.Num_Cuenta,Nombre_Tipo_Pago,Monto_Pago/1e4,Propina/1e4,Referencia FROM Comanda c CROSS JOIN Cuenta u ON "
     "u.ID_Comanda=c.ID_Comanda CROSS JOIN Pago p ON p.ID_Comanda=u.ID_Comanda AND p.Num_Cuenta=u.Num_Cuenta AND p.Control=u.Control "
     "JOIN Tipo_Pago t ON t.ID_Tipo_Pago=p.ID_Tipo_Pago WHERE " + EN_DIAS + "ORDER BY u.ID_Comanda"),
    ("product mix", PMIX,
     "WITH v AS (SELECT p.ID_Producto i,COUNT(*) n,SUM(Precio_Venta) s,MAX(Precio_Original) o " + CASI +
     "WHERE ID_Tipo_Anulacion IS NULL AND " + EN_DIAS + "GROUP BY 1) SELECT r.ID_Producto,Nombre_Completo,round(o/1e4,2),"
     "coalesce(n,0),round(s/1e4/n,2),n*round(s/1e4/n,2) FROM Producto r LEFT JOIN v ON v.i=r.ID_Producto ORDER BY 2"),
]
