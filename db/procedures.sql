-- Procedures and functions of the central database, for both engines. Dates come as texts
-- dd/mm/yyyy; a line that holds only GO ends a text.

-- Two decimals, halves away from zero.
CREATE FUNCTION dbo.Redondear (@Monto MONEY) RETURNS MONEY
AS
BEGIN
    RETURN ROUND(@Monto, 2)
END
GO

-- Adds to the caller's #Tmp_Ventas the amounts of each category, in several rows per category.
-- Net sales are prices plus modifiers less their tax, over lines that were not voided.
CREATE PROCEDURE Reporte_Ventas @Inicio VARCHAR(10), @Fin VARCHAR(10)
AS
BEGIN
    SET NOCOUNT ON

    INSERT INTO #Tmp_Ventas (ID_Categoria, Nombre, Ventas_Netas, Promociones)
    SELECT CAT.ID_Categoria, CAT.Nombre_Categoria, SUM(PXC.Precio_Venta),
           SUM(CASE WHEN PXC.ID_Promocion IS NULL THEN 0 ELSE PXC.Precio_Original - PXC.Precio_Venta END)
    FROM Comanda COM
         INNER JOIN ProductosXCuenta PXC ON PXC.ID_Comanda = COM.ID_Comanda
         INNER JOIN Producto P ON PXC.ID_Producto = P.ID_Producto
         INNER JOIN Categoria CAT ON P.ID_Categoria = CAT.ID_Categoria
    WHERE PXC.ID_Tipo_Anulacion IS NULL
      AND CONVERT(DateTime,SUBSTRING(Fecha_Trabajo,1,2)+'/'+SUBSTRING(Fecha_Trabajo,3,2)+'/'+SUBSTRING(Fecha_Trabajo,5,4),103)
          BETWEEN CONVERT(DateTime,@Inicio,103) AND CONVERT(DateTime,@Fin,103)
    GROUP BY CAT.ID_Categoria, CAT.Nombre_Categoria

    INSERT INTO #Tmp_Ventas (ID_Categoria, Nombre, Ventas_Netas, Anulaciones)
    SELECT CAT.ID_Categoria, CAT.Nombre_Categoria,
           SUM(CASE WHEN PXC.ID_Tipo_Anulacion IS NULL THEN M.Precio_Modificador - M.Impuesto_Modificador ELSE 0 END),
           SUM(CASE WHEN PXC.ID_Tipo_Anulacion IS NULL THEN 0 ELSE M.Precio_Modificador - M.Impuesto_Modificador END)
    FROM Comanda COM
         INNER JOIN ProductosXCuenta PXC ON PXC.ID_Comanda = COM.ID_Comanda
         INNER JOIN Modificador M ON M.ID_ProductosXCuenta = PXC.ID_ProductosXCuenta
         INNER JOIN Producto P ON PXC.ID_Producto = P.ID_Producto
         INNER JOIN Categoria CAT ON P.ID_Categoria = CAT.ID_Categoria
    WHERE CONVERT(DateTime,SUBSTRING(Fecha_Trabajo,1,2)+'/'+SUBSTRING(Fecha_Trabajo,3,2)+'/'+SUBSTRING(Fecha_Trabajo,5,4),103)
          BETWEEN CONVERT(DateTime,@Inicio,103) AND CONVERT(DateTime,@Fin,103)
    GROUP BY CAT.ID_Categoria, CAT.Nombre_Categoria

    INSERT INTO #Tmp_Ventas (ID_Categoria, Nombre, Anulaciones)
    SELECT CAT.ID_Categoria, CAT.Nombre_Categoria, SUM(PXC.Precio_Venta)
    FROM Comanda COM
         INNER JOIN ProductosXCuenta PXC ON PXC.ID_Comanda = COM.ID_Comanda
         INNER JOIN Producto P ON PXC.ID_Producto = P.ID_Producto
         INNER JOIN Categoria CAT ON P.ID_Categoria = CAT.ID_Categoria
    WHERE NOT PXC.ID_Tipo_Anulacion IS NULL
      AND CONVERT(DateTime,SUBSTRING(Fecha_Trabajo,1,2)+'/'+SUBSTRING(Fecha_Trabajo,3,2)+'/'+SUBSTRING(Fecha_Trabajo,5,4),103)
          BETWEEN CONVERT(DateTime,@Inicio,103) AND CONVERT(DateTime,@Fin,103)
    GROUP BY CAT.ID_Categoria, CAT.Nombre_Categoria

    INSERT INTO #Tmp_Ventas (ID_Categoria, Nombre, Cortesias)
    SELECT CAT.ID_Categoria, CAT.Nombre_Categoria, SUM(COR.Monto)
    FROM Comanda COM
         INNER JOIN ProductosXCuenta PXC ON PXC.ID_Comanda = COM.ID_Comanda
         INNER JOIN Cortesia COR ON COR.ID_ProductosXCuenta = PXC.ID_ProductosXCuenta
         INNER JOIN Producto P ON PXC.ID_Producto = P.ID_Producto
         INNER JOIN Categoria CAT ON P.ID_Categoria = CAT.ID_Categoria
    WHERE PXC.ID_Tipo_Anulacion IS NULL
      AND CONVERT(DateTime,SUBSTRING(Fecha_Trabajo,1,2)+'/'+SUBSTRING(Fecha_Trabajo,3,2)+'/'+SUBSTRING(Fecha_Trabajo,5,4),103)
          BETWEEN CONVERT(DateTime,@Inicio,103) AND CONVERT(DateTime,@Fin,103)
    GROUP BY CAT.ID_Categoria, CAT.Nombre_Categoria

    INSERT INTO #Tmp_Ventas (ID_Categoria, Nombre, Impuestos)
    SELECT CAT.ID_Categoria, CAT.Nombre_Categoria, SUM(IXC.Monto_ImpuestosXCuenta)
    FROM Comanda COM
         INNER JOIN ProductosXCuenta PXC ON PXC.ID_Comanda = COM.ID_Comanda
         INNER JOIN ImpuestosXCuenta IXC ON IXC.ID_ProductosXCuenta = PXC.ID_ProductosXCuenta
         INNER JOIN Producto P ON PXC.ID_Producto = P.ID_Producto
         INNER JOIN Categoria CAT ON P.ID_Categoria = CAT.ID_Categoria
    WHERE PXC.ID_Tipo_Anulacion IS NULL
      AND CONVERT(DateTime,SUBSTRING(Fecha_Trabajo,1,2)+'/'+SUBSTRING(Fecha_Trabajo,3,2)+'/'+SUBSTRING(Fecha_Trabajo,5,4),103)
          BETWEEN CONVERT(DateTime,@Inicio,103) AND CONVERT(DateTime,@Fin,103)
    GROUP BY CAT.ID_Categoria, CAT.Nombre_Categoria
END
GO

-- Guests and orders of each part of the day, over orders with a line that was not voided. A part
-- across midnight has two windows; those of guests leave out the very second of midnight.
CREATE PROCEDURE Invitados_X_SeccionDia @Inicio VARCHAR(10), @Fin VARCHAR(10)
AS
BEGIN
    SET NOCOUNT ON

    SELECT S.Nombre,
           ISNULL(SUM(CASE
               WHEN S.Desde <= S.Hasta AND O.Hora BETWEEN S.Desde AND S.Hasta THEN O.Huespedes
               WHEN S.Desde > S.Hasta AND (O.Hora BETWEEN S.Desde AND '24:00:00'
                                           OR O.Hora BETWEEN '00:00:01' AND S.Hasta) THEN O.Huespedes
               ELSE 0 END), 0) AS Invitados,
           ISNULL(SUM(CASE
               WHEN S.Desde <= S.Hasta AND O.Hora BETWEEN S.Desde AND S.Hasta THEN O.Comandas
               WHEN S.Desde > S.Hasta AND (O.Hora BETWEEN S.Desde AND '23:59:59'
                                           OR O.Hora BETWEEN '00:00:00' AND S.Hasta) THEN O.Comandas
               ELSE 0 END), 0) AS Cuentas
    FROM (SELECT Nombre, CONVERT(CHAR(8),Hora_inicio,108) AS Desde, CONVERT(CHAR(8),Hora_Fin,108) AS Hasta
          FROM Seccion_dia) AS S
         LEFT OUTER JOIN
         (SELECT CONVERT(CHAR(8),Fecha_Apertura,108) AS Hora, SUM(CantHuespedes) AS Huespedes,
                 COUNT(*) AS Comandas
          FROM Comanda
          WHERE CONVERT(DateTime,SUBSTRING(Fecha_Trabajo,1,2)+'/'+SUBSTRING(Fecha_Trabajo,3,2)+'/'+SUBSTRING(Fecha_Trabajo,5,4),103)
                BETWEEN CONVERT(DateTime,@Inicio,103) AND CONVERT(DateTime,@Fin,103)
            AND EXISTS (SELECT * FROM ProductosXCuenta PXC
                        WHERE PXC.ID_Comanda = Comanda.ID_Comanda AND PXC.ID_Tipo_Anulacion IS NULL)
          GROUP BY CONVERT(CHAR(8),Fecha_Apertura,108)) AS O
         ON 1 = 1
    GROUP BY S.Nombre
    ORDER BY S.Nombre
END
GO

-- Tax collected per tax type, over lines that were not voided.
CREATE PROCEDURE Rep_Ventas_Imp_Mod @Inicio VARCHAR(10), @Fin VARCHAR(10)
AS
BEGIN
    SET NOCOUNT ON

    SELECT TI.Nombre_Tipo_Impuesto, SUM(IXC.Monto_ImpuestosXCuenta) AS Monto
    FROM Comanda COM
         INNER JOIN ProductosXCuenta PXC ON PXC.ID_Comanda = COM.ID_Comanda
         INNER JOIN ImpuestosXCuenta IXC ON IXC.ID_ProductosXCuenta = PXC.ID_ProductosXCuenta
         INNER JOIN Tipos_Impuesto TI ON IXC.ID_Tipo_Impuesto = TI.ID_Tipo_Impuesto
    WHERE PXC.ID_Tipo_Anulacion IS NULL
      AND CONVERT(DateTime,SUBSTRING(Fecha_Trabajo,1,2)+'/'+SUBSTRING(Fecha_Trabajo,3,2)+'/'+SUBSTRING(Fecha_Trabajo,5,4),103)
          BETWEEN CONVERT(DateTime,@Inicio,103) AND CONVERT(DateTime,@Fin,103)
    GROUP BY TI.Nombre_Tipo_Impuesto
    ORDER BY TI.Nombre_Tipo_Impuesto
END
GO

-- Deletes sales: all of them when @Todas is 1, otherwise those of the working date @Fecha (ddmmyy).
CREATE PROCEDURE Borrar_Comanda @Fecha VARCHAR(8), @Todas INT
AS
BEGIN
    SET NOCOUNT ON

    IF @Todas = 1
    BEGIN
        DELETE FROM Pago
        DELETE FROM ImpuestosXCuenta
        DELETE FROM Modificador
        DELETE FROM Cortesia
        DELETE FROM ProductosXCuenta
        DELETE FROM Cuenta
        DELETE FROM Comanda
        RETURN
    END

    DECLARE @Dia VARCHAR(8)
    SET @Dia = LEFT(@Fecha, 4) + '20' + RIGHT(@Fecha, 2)
    DELETE FROM Pago WHERE ID_Comanda IN (SELECT ID_Comanda FROM Comanda WHERE Fecha_Trabajo = @Dia)
    DELETE FROM ImpuestosXCuenta WHERE ID_ProductosXCuenta IN
        (SELECT ID_ProductosXCuenta FROM ProductosXCuenta PXC INNER JOIN Comanda COM
         ON PXC.ID_Comanda = COM.ID_Comanda WHERE COM.Fecha_Trabajo = @Dia)
    DELETE FROM Modificador WHERE ID_ProductosXCuenta IN
        (SELECT ID_ProductosXCuenta FROM ProductosXCuenta PXC INNER JOIN Comanda COM
         ON PXC.ID_Comanda = COM.ID_Comanda WHERE COM.Fecha_Trabajo = @Dia)
    DELETE FROM Cortesia WHERE ID_ProductosXCuenta IN
        (SELECT ID_ProductosXCuenta FROM ProductosXCuenta PXC INNER JOIN Comanda COM
         ON PXC.ID_Comanda = COM.ID_Comanda WHERE COM.Fecha_Trabajo = @Dia)
    DELETE FROM ProductosXCuenta WHERE ID_Comanda IN
        (SELECT ID_Comanda FROM Comanda WHERE Fecha_Trabajo = @Dia)
    DELETE FROM Cuenta WHERE ID_Comanda IN (SELECT ID_Comanda FROM Comanda WHERE Fecha_Trabajo = @Dia)
    DELETE FROM Comanda WHERE Fecha_Trabajo = @Dia
END
GO
