-- Every statement that the program sends, on the recorded restaurant: one a line, each undone after it. "! N"
-- before one that the server must refuse with native error N; "+" before one whose effect stays for the next.
-- Data access
SELECT MAX(ID_Categoria) AS _RESULT FROM Categoria WHERE Tipo_Categoria='V'
SELECT Categoria.ID_Categoria AS _RESULT FROM Categoria WHERE ID_Categoria=1
SELECT GETDATE()
INSERT INTO Tipo_Pago (Nombre_Tipo_Pago,Clase,Abrir_Gaveta) VALUES ('Vale d''oro','O',0)
UPDATE Tipo_Pago SET Clase='T' WHERE ID_Tipo_Pago=1
! 156 UPDATE Tipo_Pago SET Clase='T' WHERE 
DELETE FROM Control_Paquetes
! 547 DELETE FROM Categoria WHERE ID_Categoria=1
-- Session and rights
SELECT Valor_Cad FROM Parametros WHERE ID_Parametro='FECHA_TRABAJO'
SELECT Valor_Num FROM Parametros WHERE Id_Parametro='CVEEMPRESA'
SELECT Valor_Num FROM Parametros WHERE Id_Parametro='TC_US'
SELECT Usuario,Intentos,Estado_Empleado,Contraseña FROM Empleado WHERE Usuario='maria1'
UPDATE Empleado SET Intentos=0 WHERE Usuario='maria1'
UPDATE Empleado SET Intentos=5,Estado_Empleado='S' WHERE Usuario='maria1'
SELECT ID_Empleado,Admin_Usuarios FROM Empleado WHERE Usuario='maria1'
! 105 SELECT Usuario FROM Empleado WHERE Usuario='o'hara'
SELECT Nombre_Permiso FROM EmpleadosXGrupo,Grupo_Trabajo,PermisosXGrupo_Trabajo,Permisos WHERE EmpleadosXGrupo.ID_Grupo_Trabajo=Grupo_Trabajo.ID_Grupo_Trabajo AND EmpleadosXGrupo.ID_Grupo_Trabajo=PermisosXGrupo_Trabajo.ID_Grupo_Trabajo AND PermisosXGrupo_Trabajo.ID_Permiso=Permisos.ID_Permiso AND Activo=1 AND ID_Empleado=1
-- Editors: rows and keys
SELECT * FROM Tipo_Pago
SELECT * FROM Tipos_Anulacion
SELECT * FROM Categoria
SELECT * FROM Modo_Preparacion
SELECT * FROM Mensajes
SELECT * FROM Producto
SELECT * FROM Tipos_Impuesto
SELECT * FROM Menu
SELECT * FROM SubMenu
SELECT * FROM Tipo_Modificador
SELECT * FROM Grupo_Modificadores
SELECT * FROM Promocion
SELECT * FROM Grupo_Promocional
SELECT * FROM Grupo_Obsequios
SELECT * FROM Tipo_Cortesia
SELECT * FROM Terminal
SELECT * FROM Impresora
SELECT * FROM Grupo_Impresoras
SELECT CASE ISNULL(MAX(ID_Producto),0) WHEN 0 THEN 1 ELSE MAX(ID_Producto)+1 END AS Clave FROM Producto
SELECT CASE ISNULL(MAX(ID_Submenu),0) WHEN 0 THEN 1 ELSE MAX(ID_Submenu)+1 END AS Clave FROM Submenu
SELECT CASE ISNULL(MAX(ID_Grupo_Modificadores),0) WHEN 0 THEN 1 ELSE MAX(ID_Grupo_Modificadores)+1 END AS Clave FROM Grupo_Modificadores
SELECT CASE ISNULL(MAX(ID_Tipo_Cortesia),0) WHEN 0 THEN 1 ELSE MAX(ID_Tipo_Cortesia)+1 END AS Clave FROM Tipo_Cortesia
SELECT case ISNULL(MAX(ID_Categoria),0) when 0 then 1 else MAX(ID_Categoria)+1 end AS Clave FROM Categoria
SELECT MAX(ID_Modo_Preparacion)+1 AS Clave FROM Modo_Preparacion
SELECT MAX(ID_Tipo_Impuesto)+1 AS Clave FROM Tipos_Impuesto
SELECT MAX(ID_Tipo_Modificador)+1 AS Clave FROM Tipo_Modificador
SELECT MAX(ID_Grupo_Modificadores)+1 AS Clave FROM Grupo_Modificadores
SELECT MAX(ID_Grupo_Impresoras)+1 AS Clave FROM Grupo_Impresoras
-- Editors: lists
SELECT Nombre_Grupo_Impresoras,ID_Grupo_Impresoras FROM Grupo_Impresoras ORDER BY Nombre_Grupo_Impresoras
SELECT Nombre_Grupo_Modificadores,ID_Grupo_Modificadores FROM Grupo_Modificadores ORDER BY Nombre_Grupo_Modificadores
SELECT Nombre_Categoria,ID_Categoria FROM Categoria ORDER BY Nombre_Categoria
SELECT Nombre_Menu,ID_Menu FROM Menu ORDER BY Nombre_Menu
SELECT Nombre_Terminal,ID_Terminal FROM Terminal ORDER BY Nombre_Terminal
SELECT Nombre_Impresora,ID_Impresora FROM Impresora ORDER BY Nombre_Impresora
SELECT ID_Tipo_Impuesto,Nombre_Tipo_Impuesto FROM Tipos_Impuesto ORDER BY Nombre_Tipo_Impuesto
SELECT ID_Menu,Nombre_Menu FROM Menu ORDER BY Nombre_Menu
SELECT ID_Grupo_Promocional,Nombre_Gpo_Promocional FROM Grupo_Promocional ORDER BY Nombre_Gpo_Promocional
SELECT ID_Grupo_Obsequio,Nombre_Gpo_Obsequio FROM Grupo_Obsequios ORDER BY Nombre_Gpo_Obsequio
-- Editors: detail grids
SELECT ImpuestosXProducto.ID_Tipo_Impuesto,ID_Producto,Nombre_Tipo_Impuesto,Incluir_en_precio,' ' FROM ImpuestosXProducto,Tipos_Impuesto WHERE ImpuestosXProducto.ID_Tipo_Impuesto=Tipos_Impuesto.ID_Tipo_Impuesto AND ID_Producto=101
SELECT PreciosXMenu.ID_Menu,ID_Producto,Nombre_Menu,Precio,' ' AS M FROM PreciosXMenu,Menu WHERE PreciosXMenu.ID_Menu=Menu.ID_Menu AND ID_Producto=101
SELECT *,' ' AS Modificar,Fecha_Inicio_Impuesto FROM PorcentajeXTipo_Impuesto WHERE ID_Tipo_Impuesto=1
SELECT SubMenuXMenu.ID_Menu,ID_SubMenu,Nombre_Menu,' ' AS M FROM SubMenuXMenu,Menu WHERE SubMenuXMenu.ID_Menu=Menu.ID_Menu AND ID_SubMenu=1
SELECT ID_Submenu,ProductosXSubmenu.ID_Producto,Nombre_Completo,NULL,' ',Orden FROM ProductosXSubmenu,Producto WHERE ProductosXSubmenu.ID_Producto=Producto.ID_Producto AND ID_SubMenu=1
SELECT TiposXGrupo_Modificadores.ID_Tipo_Modificador,Nombre_Tipo_Modificador,' ' FROM TiposXGrupo_Modificadores,Tipo_Modificador WHERE TiposXGrupo_Modificadores.ID_Tipo_Modificador=Tipo_Modificador.ID_Tipo_Modificador AND ID_Grupo_Modificadores=1
SELECT ID_Producto,Nombre_Completo FROM Producto WHERE Paquete=1
SELECT ID_Seccion_Paquete,Nombre_Seccion FROM Secciones_Paquete WHERE ID_Producto=101
SELECT ProductosXseccion.ID_Producto,Nombre_Completo,' ' FROM Producto,ProductosXseccion WHERE Producto.ID_Producto=ProductosXseccion.ID_Producto AND ID_Seccion_Paquete=1
SELECT MAX(ID_Seccion_Paquete) AS ID FROM Secciones_Paquete 
SELECT MAX(ID_Seccion_Paquete) AS ID FROM Secciones_Paquete WHERE ID_Producto=101
SELECT Detalle_Gpo_Promocional.ID_Producto,Nombre_Completo,0 FROM Detalle_Gpo_Promocional,Producto WHERE Detalle_Gpo_Promocional.ID_Producto=Producto.ID_Producto AND ID_Grupo_Promocional=1
SELECT Detalle_Gpo_Obsequios.ID_Producto,Nombre_Completo,0 FROM Detalle_Gpo_Obsequios,Producto WHERE Detalle_Gpo_Obsequios.ID_Producto=Producto.ID_Producto AND ID_Grupo_Obsequio=1
SELECT ProductoXTipo_Cortesia.ID_Producto,Nombre_Completo,' ' FROM ProductoXTipo_Cortesia,Producto WHERE ProductoXTipo_Cortesia.ID_Producto=Producto.ID_Producto AND ID_Tipo_Cortesia=1
SELECT ImpresorasXGrupo.ID_Impresora,Nombre_Impresora,' ' FROM ImpresorasXGrupo,Impresora WHERE ImpresorasXGrupo.ID_Impresora=Impresora.ID_Impresora AND ID_Grupo_Impresoras=1
SELECT ID_Terminal,Nombre_Terminal FROM Terminal WHERE Servidor=1
-- Editors: what Save writes
UPDATE Tipo_Pago SET Nombre_Tipo_Pago='Efectivo',Clase='E',Abrir_Gaveta=1 WHERE ID_Tipo_Pago=1
UPDATE Tipos_Anulacion SET Nombre_Tipos_Anulacion='Error',Regresa_Existencia=1 WHERE ID_Tipo_Anulacion=1
UPDATE Categoria SET Nombre_Categoria='Ñoquis',Tipo_Categoria='V' WHERE ID_Categoria=1
UPDATE Modo_Preparacion SET Nombre_Modo_Preparacion='Sin sal',Indicador='SS' WHERE ID_Modo_Preparacion=1
UPDATE Mensajes SET Mensaje='Hola',Mensaje_Activo=0 WHERE ID_Mensaje=1
UPDATE Producto SET Nombre_Completo='Sopa',Nombre_Boton='Sopa\nfría',Nombre_Cuenta='SOPA',Existencia=12.5,Abierto=0,Especial=1,ID_Grupo_Impresoras=NULL,ID_Grupo_Modificadores=NULL,Estado='A',ID_Categoria=1,Paquete=0 WHERE ID_Producto=101
UPDATE PreciosXMenu SET Precio=12.50 WHERE ID_Producto=101 AND ID_Menu=1
UPDATE ImpuestosXProducto SET Incluir_en_precio=0 WHERE ID_Producto=101 AND ID_Tipo_Impuesto=1
DELETE FROM PreciosXMenu WHERE ID_Producto=101 AND ID_Menu=1
INSERT INTO PorcentajeXTipo_Impuesto (ID_Tipo_Impuesto,Fecha_Inicio_Impuesto,Fecha_Fin_Impuesto,Porcentaje) VALUES (1,'15/3/2031',NULL,0.15)
UPDATE PorcentajeXTipo_Impuesto SET Fecha_Inicio_Impuesto='05/03/2032',Fecha_Fin_Impuesto=NULL,Porcentaje=0.16 WHERE ID_Tipo_Impuesto=1 AND Fecha_Inicio_Impuesto='01/01/2020'
! 242 INSERT INTO PorcentajeXTipo_Impuesto (ID_Tipo_Impuesto,Fecha_Inicio_Impuesto,Porcentaje) VALUES (1,'31/02/2031',0.15)
UPDATE Menu SET Nombre_Menu='Terraza',Descripcion='De tarde',Menu_Activo=1 WHERE ID_Menu=1
! 2627 INSERT INTO Menu (ID_Menu,Nombre_Menu,Descripcion,Menu_Activo) VALUES (1,'Otro menú','x',1)
UPDATE SubMenu SET Nombre_SubMenu='Bebidas muy frías',SubMenu_Fijo=0 WHERE ID_SubMenu=1
UPDATE ProductosXSubmenu SET Orden=3 WHERE ID_SubMenu=1 AND ID_Producto=101
UPDATE Tipo_Modificador SET Nombre_Tipo_Modificador='Con hielo',Estado_Modificador='A',Precio_Tipo_Modificador=4.50 WHERE ID_Tipo_Modificador=1
UPDATE Grupo_Modificadores SET Nombre_Grupo_Modificadores='Salsas',Fluir_automatico=0,Grupo_Mod_Activo=1 WHERE ID_Grupo_Modificadores=1
DELETE FROM TiposXGrupo_Modificadores WHERE ID_Grupo_Modificadores=1
INSERT INTO Secciones_Paquete (Id_Seccion_Paquete,Nombre_Seccion,ID_Producto,Numero) VALUES (900,'POSTRE',101,1)
DELETE FROM ProductosXSeccion WHERE ID_Seccion_Paquete=1
UPDATE Promocion SET Nombre_Promocion='Martes',Tipo_Promocion='P',CantMesa=NULL,Fecha_Inicio_Promocion='1/3/2026',Fecha_Fin_Promocion='31/3/2026',Activo=1 WHERE ID_Promocion=1
UPDATE Detalle_Promocion SET CantMinima=2,CantMaxima=NULL,CantObsequios=1,Descuento=NULL,ID_Grupo_Promocional=1,ID_Grupo_Obsequios=1 WHERE ID_Detalle_Promocion=1
UPDATE Tipo_Cortesia SET Nombre_Tipo_Cortesia='Casa',Tipo_Cortesia='P',Cantidad_Cortesia=10,Cantidad_Maxima=NULL,Sel_articulo=1,Fecha_Inicio_Cortesia='1/3/2026',Fecha_Fin_Cortesia='29/2/2028',Cortesia_Activa=1 WHERE ID_Tipo_Cortesia=1
DELETE FROM ProductoXTipo_Cortesia WHERE ID_Tipo_cortesia=1
UPDATE Terminal SET Nombre_Terminal='CAJA9',ID_Menu=1,Direccion_IP='10.0.0.9',Estado_Terminal='A',Servidor=0,Servidor_Backup=1 WHERE ID_Terminal=1
UPDATE Impresora SET Nombre_Impresora='Barra 2',Puerto='LPT1',Modo='E',Estado_Impresora='A',Comentario='',ID_Terminal=1,Redirigido=NULL,Esdecheques=1,Id_impresora_respaldo=NULL WHERE ID_Impresora=1
UPDATE Impresora SET Redirigido=ID_Impresora WHERE Redirigido IS NULL
DELETE FROM ImpresorasXgrupo WHERE ID_Grupo_Impresoras=1
-- Editors: filters
SELECT ID_Tipo_Pago,Nombre_Tipo_Pago,CASE Clase WHEN 'E' THEN 'Efectivo' WHEN 'T' THEN 'Tarjeta Crédito' WHEN 'D' THEN 'Débito' WHEN 'C' THEN 'Cheque' ELSE 'Otro' END AS Clase,Abrir_Gaveta FROM Tipo_Pago WHERE Clase='E'
SELECT ID_Categoria,Nombre_Categoria,CASE Tipo_Categoria WHEN 'V' THEN 'Ventas' WHEN 'S' THEN 'Sugestivo' WHEN 'R' THEN 'Retail' WHEN 'N' THEN 'Sin Ventas' END AS Tipo FROM Categoria WHERE Nombre_Categoria LIKE '%a%'
SELECT ID_Producto,Nombre_Completo,Nombre_Grupo_Impresoras,Nombre_Grupo_Modificadores,CASE Estado WHEN 'A' THEN 'Activo' WHEN 'S' THEN 'Sin existencia' WHEN 'B' THEN 'Bloqueado' WHEN 'D' THEN 'Descontinuado' END AS Estado FROM Producto,Grupo_Modificadores,Grupo_Impresoras WHERE Producto.ID_Grupo_Modificadores=Grupo_Modificadores.ID_Grupo_Modificadores AND Producto.ID_Grupo_Impresoras=Grupo_Impresoras.ID_Grupo_Impresoras AND Existencia>=0
SELECT Tipos_Impuesto.ID_Tipo_Impuesto,Nombre_Tipo_Impuesto,Tipo_Imp_Activo,Fecha_Inicio_Impuesto,Fecha_Fin_Impuesto FROM Tipos_Impuesto,PorcentajeXTipo_Impuesto WHERE Tipos_Impuesto.ID_Tipo_Impuesto=PorcentajeXTipo_Impuesto.ID_Tipo_Impuesto AND Fecha_Inicio_Impuesto>='01/01/2020'
! 207 SELECT ID_Menu,Nombre_Menu,Descripcion,Menu_Activo FROM Menu WHERE Nombre_Menuu='x'
SELECT ID_Tipo_Modificador,Nombre_Tipo_Modificador,CASE Estado_Modificador WHEN 'A' THEN 'Activo' WHEN 'S' THEN 'Suspendido' WHEN 'D' THEN 'Descontinuado' END AS Estado_Modificador,Precio_Tipo_Modificador FROM Tipo_Modificador WHERE Precio_Tipo_Modificador>1.5
SELECT ID_Promocion,Nombre_Promocion,CantMesa,CASE Tipo_Promocion WHEN 'M' THEN 'Minimo' WHEN 'P' THEN 'Porcentaje' WHEN 'R' THEN 'Rango' END AS Tipo FROM Promocion WHERE Tipo_Promocion='P'
! 207 SELECT ID_Tipo_Cortesia,Nombre_Tipo_Cortesia,CASE Clase WHEN 'E' THEN 'Efectivo' ELSE 'Otro' END AS Clase,Abrir_Gaveta FROM Tipo_Cortesia WHERE ID_Tipo_Cortesia=1
SELECT ID_Impresora,CASE Modo WHEN 'E' THEN 'Epson' WHEN 'C' THEN 'Citizen' END AS Modo,CASE Estado_Impresora WHEN 'A' THEN 'Activa' WHEN 'R' THEN 'Reparación' WHEN 'D' THEN 'Descompuesta' WHEN 'N' THEN 'No activa' END AS Modo FROM Impresora WHERE Modo='E'
+ CREATE TABLE #Tmp_Paquetes(ID_Paquete Integer,Nombre_Paquete Varchar(100),ID_Seccion_Paquete Integer,Nombre_seccion Varchar(100),ID_Producto Integer)
+ INSERT INTO #Tmp_Paquetes SELECT Producto.ID_Producto AS ID_Paquete,Nombre_Completo AS Nombre_Paquete,Secciones_Paquete.ID_Seccion_Paquete,Nombre_Seccion,ProductosXseccion.ID_Producto FROM Producto,Secciones_Paquete LEFT OUTER JOIN ProductosXseccion ON Secciones_Paquete.ID_Seccion_Paquete=ProductosXseccion.ID_Seccion_Paquete WHERE Producto.ID_Producto=Secciones_Paquete.ID_Producto AND Producto.Paquete=1
+ INSERT INTO #Tmp_Paquetes SELECT Producto.ID_Producto,Nombre_Completo,NULL,NULL,NULL FROM Producto WHERE ID_Producto NOT IN (SELECT ID_Producto FROM Secciones_Paquete) AND Paquete=1
SELECT ID_Paquete,Nombre_Paquete,ID_Seccion_Paquete,Nombre_Seccion,#Tmp_Paquetes.ID_Producto,Nombre_Completo FROM #Tmp_Paquetes LEFT OUTER JOIN Producto ON #Tmp_Paquetes.ID_Producto=Producto.ID_Producto WHERE Nombre_Paquete LIKE 'P%'
! 102 SELECT ID_Paquete FROM #Tmp_Paquetes,Producto WHERE #Tmp_Paquetes.ID_Producto*=Producto.ID_Producto
+ DROP TABLE #Tmp_Paquetes
-- Day close
DELETE FROM TransaccionesXTerminal
SELECT ID_Terminal,Nombre_Terminal FROM Terminal WHERE Estado_Terminal='A'
+ CREATE TABLE #Tmp_Conciliacion (ID_Terminal Int,Nombre_Term VARCHAR(25),RegistrosPXC Int,RegistrosCta Int,RegistrosCmd Int,RegistrosP Int,RegistrosCt Int,RegistrosM Int,RegistrosIXC Int,RegistrosA Int)
+ CREATE TABLE #Tmp_Conciliacion_Montos (ID_Terminal Int,Nombre_Term VARCHAR(25),TotalPXC Money,TotalCta Money,TotalPago Money,TotalCtesia Money,TotalMod Money,TotalIXC Money)
INSERT INTO #Tmp_Conciliacion_Montos (ID_Terminal,Nombre_Term,TotalPXC) VALUES (1,'CAJA1',123.4567)
SELECT * FROM #Tmp_Conciliacion
SELECT * FROM #Tmp_Conciliacion_Montos
+ DROP TABLE #Tmp_Conciliacion
+ DROP TABLE #Tmp_Conciliacion_Montos
SELECT COUNT(*),SUM(Precio_Venta) FROM ProductosXCuenta,Comanda WHERE ProductosXCuenta.ID_Comanda=Comanda.ID_Comanda AND Fecha_Trabajo='14112026'
SELECT COUNT(*),SUM(Total) FROM Cuenta,Comanda WHERE Cuenta.ID_Comanda=Cuenta.ID_Comanda AND Fecha_Trabajo='14112026'
SELECT COUNT(*),SUM(Monto) FROM Cortesia,ProductosXCuenta,Comanda WHERE Cortesia.ID_ProductosXCuenta=ProductosXCuenta.ID_ProductosXCuenta AND ProductosXCuenta.ID_Comanda=Comanda.ID_Comanda AND Fecha_Trabajo='14112026'
SELECT COUNT(*) FROM ProductosXCuenta,Comanda WHERE ProductosXCuenta.ID_Comanda=Comanda.ID_Comanda AND NOT ID_Tipo_Anulacion IS NULL AND Fecha_Trabajo='14112026'
SELECT * FROM ProductosXCuenta,Comanda WHERE ProductosXCuenta.ID_Comanda=Comanda.ID_Comanda AND Fecha_Trabajo='14112026' AND ID_ProductosXCuenta=15001
UPDATE Comanda SET ID_Empleado=1,Num_Mesa=2,Abierta=0,Fecha_Cierre='14/11/2026 00:00:00',Tipo='MESA' WHERE ID_Comanda=50901
INSERT INTO ProductosXCuenta (ID_ProductosXCuenta,ID_Comanda,Num_Cuenta,ID_Producto,Comentario,Preparado,Precio_Venta,Precio_Original,ID_Tipo_Anulacion,ID_Modo_Preparacion,ID_Promocion,ID_Paquete,Empleado_Anulacion,Hora_Anulacion) VALUES (1999999,50901,1,101,NULL,1,25.5,25.5,1,NULL,NULL,NULL,3,'14/11/2026 21:36:36')
SELECT Nombre_Empleado + ' ' + Apellido_Paterno + ' ' + Apellido_Materno AS Nombre_Empleado,Contraseña,Tarjeta_magnetica FROM Empleado
SELECT ID_Producto,0 AS Precio_Producto,Existencia FROM Producto
SELECT Tipos_Impuesto.ID_Tipo_Impuesto,Nombre_Tipo_Impuesto,Porcentaje,Tipo_Imp_Activo FROM Tipos_Impuesto,PorcentajeXTipo_Impuesto WHERE Tipos_Impuesto.ID_Tipo_Impuesto=PorcentajeXTipo_Impuesto.ID_Tipo_Impuesto AND (GETDATE() BETWEEN Fecha_Inicio_Impuesto AND Fecha_Fin_Impuesto OR Fecha_Fin_Impuesto IS NULL)
SELECT Submenu.ID_Submenu,Nombre_Submenu,SubMenu_Fijo,Orden FROM Submenu,SubmenuXMenu WHERE Submenu.ID_Submenu=SubmenuXMenu.ID_Submenu AND ID_Menu=1
SELECT ID_Producto,Precio FROM PreciosXMenu WHERE ID_Menu=1
SELECT ID_Terminal,Nombre_Terminal,ID_Menu FROM Terminal WHERE Estado_Terminal='A' ORDER BY ID_Menu
SELECT MAX(ID_ProductosXCuenta) AS ID FROM ProductosXCuenta WHERE ID_ProductosXCuenta LIKE '1%'
SELECT MAX(ID_Pago) AS ID FROM Pago
UPDATE Parametros SET Valor_Num=51000 WHERE ID_Parametro='FOLIOCOMANDA'
-- Queue and utilities
SELECT ID_Terminal FROM Terminal WHERE Estado_Terminal='A' AND ID_Terminal<>4
INSERT INTO Transacciones (Transaccion) VALUES ('!OFF ')
SELECT MAX(ID_Transaccion) AS Trans FROM Transacciones
UPDATE Transacciones SET Escribiendo=0 WHERE ID_Transaccion=1
EXEC Borrar_Comanda '010106',1
DELETE FROM Detallecolaimpresion
DELETE FROM ColaImpresion
UPDATE Empleado SET Id_Terminal=0 WHERE Id_Terminal<>0
-- Reports
select sum(cu.precio_venta) + sum(TotalMod) as TotalVenta from comanda com, productosxcuenta cu left outer join (select id_productosxcuenta, sum(precio_modificador-impuesto_modificador) as TotalMod from modificador group by id_productosxcuenta) Mod on mod.id_productosxcuenta = cu.id_productosxcuenta Where cu.id_tipo_anulacion Is Null And com.id_comanda = cu.id_comanda and CONVERT(DateTime,SUBSTRING(Fecha_Trabajo,1,2)+ '/' + SUBSTRING(Fecha_Trabajo,3,2) + '/' + SUBSTRING(Fecha_Trabajo,5,4),103) BETWEEN CONVERT(DateTime,'13/11/2026',103) AND CONVERT(DateTime,'14/11/2026',103)
SELECT (impNeto.Venta + ISNULL(impMod.modif,0) + ISNULL(impCor.cortesia,0) + impImp.impuesto) AS Bruto FROM (SELECT SUM(Precio_Venta) AS Venta FROM ProductosXCuenta WHERE id_tipo_anulacion is null AND ID_Comanda IN (SELECT ID_Comanda FROM Comanda WHERE CONVERT(DateTime,SUBSTRING(Fecha_Trabajo,1,2)+ '/' + SUBSTRING(Fecha_Trabajo,3,2) + '/' + SUBSTRING(Fecha_Trabajo,5,4),103) BETWEEN CONVERT(DateTime,'13/11/2026',103) AND CONVERT(DateTime,'14/11/2026',103))) impNeto,(SELECT SUM(Precio_Modificador) AS Modif FROM Modificador M,ProductosXCuenta P,Comanda C WHERE M.ID_ProductosXCuenta=P.ID_ProductosXCuenta AND P.ID_Comanda=C.ID_Comanda AND id_tipo_anulacion is null AND CONVERT(DateTime,SUBSTRING(Fecha_Trabajo,1,2)+ '/' + SUBSTRING(Fecha_Trabajo,3,2) + '/' + SUBSTRING(Fecha_Trabajo,5,4),103) BETWEEN CONVERT(DateTime,'13/11/2026',103) AND CONVERT(DateTime,'14/11/2026',103)) impMod,(SELECT SUM(Monto) AS Cortesia FROM Cortesia COR,ProductosXCuenta P,Comanda C WHERE COR.ID_ProductosXCuenta=P.ID_ProductosXCuenta AND P.ID_Comanda=C.ID_Comanda AND P.Control=C.Control AND id_tipo_anulacion is null AND CONVERT(DateTime,SUBSTRING(Fecha_Trabajo,1,2)+ '/' + SUBSTRING(Fecha_Trabajo,3,2) + '/' + SUBSTRING(Fecha_Trabajo,5,4),103) BETWEEN CONVERT(DateTime,'13/11/2026',103) AND CONVERT(DateTime,'14/11/2026',103)) impCor,(SELECT SUM(Monto_ImpuestosXCuenta) AS Impuesto FROM ImpuestosXCuenta I,ProductosXCuenta P,Comanda C WHERE I.ID_ProductosXCuenta=P.ID_ProductosXCuenta AND P.ID_Comanda=C.ID_Comanda AND P.Control=C.Control AND id_tipo_anulacion is null AND CONVERT(DateTime,SUBSTRING(Fecha_Trabajo,1,2)+ '/' + SUBSTRING(Fecha_Trabajo,3,2) + '/' + SUBSTRING(Fecha_Trabajo,5,4),103) BETWEEN CONVERT(DateTime,'13/11/2026',103) AND CONVERT(DateTime,'14/11/2026',103)) impImp
EXEC Invitados_X_SeccionDia '13/11/2026','14/11/2026'
+ CREATE TABLE #TempDia (ID_Comanda Numeric(18,0),Fecha_Apertura Datetime,Categoria Varchar(80),Huespedes Integer,Monto Numeric(18,2))
+ Insert into #TempDia select com.id_comanda, fecha_apertura, nombre_categoria, canthuespedes,(sum(precio_venta)+ sum(isnull(TotalMod,0))) as Monto from comanda com,categoria cat,producto pro,productosxcuenta pxc left outer join (select id_productosxcuenta, sum(precio_modificador-impuesto_modificador) as TotalMod from modificador group by id_productosxcuenta) Mod on pxc.id_productosxcuenta = mod.id_productosxcuenta where com.id_comanda = pxc.id_comanda and pxc.id_producto = pro.id_producto and pro.id_categoria = cat.id_categoria and id_tipo_anulacion is null and CONVERT(DateTime,SUBSTRING(Fecha_Trabajo,1,2)+ '/' + SUBSTRING(Fecha_Trabajo,3,2) + '/' + SUBSTRING(Fecha_Trabajo,5,4),103) BETWEEN CONVERT(DateTime,'13/11/2026',103) AND CONVERT(DateTime,'14/11/2026',103) group by com.id_comanda, fecha_apertura, nombre_categoria, canthuespedes
SELECT Categoria,SUM(Monto),COUNT(*) FROM #TempDia GROUP BY Categoria
+ CREATE TABLE #Tmp_Ventas (ID_Categoria Integer,Nombre Varchar(50),Ventas_Netas Money,Cortesias Money,Promociones Money,Anulaciones Money,Impuestos Money,Ventas_Brutas AS isnull(Ventas_Netas,0)+isnull(Cortesias,0)+isnull(Promociones,0)+isnull(Impuestos,0))
+ EXEC Reporte_Ventas '13/11/2026','14/11/2026'
SELECT ID_Categoria,Nombre,SUM(ISNULL(Ventas_Netas,0)) AS Ventas_Netas, SUM(ISNULL(Cortesias,0)) AS Cortesias, SUM(ISNULL(Promociones,0)) AS Promociones, SUM(ISNULL(Anulaciones,0)) AS Anulaciones, SUM(ISNULL(Impuestos,0)) AS Impuestos, SUM(ISNULL(Ventas_Brutas,0)) AS Ventas_Brutas FROM #Tmp_Ventas GROUP BY ID_Categoria,Nombre ORDER BY Nombre
+ CREATE TABLE #TempSecCat (Categoria Varchar(100),Seccion Varchar(100),Monto Numeric(18,2))
+ INSERT INTO #TempSecCat SELECT Categoria, 'Comida' , SUM(Monto) FROM #TempDia WHERE CONVERT(Char(8),Fecha_Apertura,108) BETWEEN '13:00:00' AND '17:59:59' GROUP BY Categoria
Select seccion, sum(monto) Monto from #TempSecCat group by seccion
SELECT Nombre_Tipo_Pago,SUM(Monto_Pago) AS Monto FROM Pago P,Tipo_Pago TP,Comanda COM WHERE P.ID_Tipo_Pago= TP.ID_Tipo_Pago AND P.ID_Comanda=COM.ID_Comanda and P.Control=Com.Control AND Clase <>'E' AND CONVERT(DateTime,SUBSTRING(Fecha_Trabajo,1,2)+ '/' + SUBSTRING(Fecha_Trabajo,3,2) + '/' + SUBSTRING(Fecha_Trabajo,5,4),103) BETWEEN CONVERT(DateTime,'13/11/2026',103) AND CONVERT(DateTime,'14/11/2026',103) GROUP BY Nombre_Tipo_Pago
SELECT Nombre_Tipo_Cortesia,SUM(Monto) AS Monto FROM Cortesia COR,ProductosXCuenta PXC,Tipo_Cortesia TC,Comanda COM WHERE COR.ID_Tipo_Cortesia=TC.ID_Tipo_Cortesia AND COR.ID_ProductosXCuenta=PXC.ID_ProductosXCuenta AND PXC.ID_Comanda=COM.ID_Comanda AND PXC.Control=COM.Control AND ID_Tipo_Anulacion IS NULL AND CONVERT(DateTime,SUBSTRING(Fecha_Trabajo,1,2)+ '/' + SUBSTRING(Fecha_Trabajo,3,2) + '/' + SUBSTRING(Fecha_Trabajo,5,4),103) BETWEEN CONVERT(DateTime,'13/11/2026',103) AND CONVERT(DateTime,'14/11/2026',103) GROUP BY Nombre_Tipo_Cortesia
SELECT Nombre_Categoria,SUM(Precio_Venta+ISNULL(TotalMod,0)+ISNULL(Monto_ImpuestosXCuenta,0)) AS Monto FROM Comanda INNER JOIN ProductosXCuenta ON Comanda.ID_Comanda=ProductosXCuenta.ID_Comanda AND Comanda.Control=ProductosXCuenta.Control LEFT OUTER JOIN ImpuestosXCuenta ON ProductosXCuenta.ID_ProductosXCuenta=ImpuestosXCuenta.ID_ProductosXCuenta LEFT OUTER JOIN (SELECT Modificador.ID_ProductosXCuenta,SUM(Precio_Modificador) AS TotalMod FROM Comanda,ProductosXCuenta,Modificador WHERE Comanda.ID_Comanda=ProductosXCuenta.ID_Comanda AND Comanda.Control=ProductosXCuenta.Control AND ProductosXCuenta.ID_ProductosXCuenta=Modificador.ID_ProductosXCuenta GROUP BY Modificador.ID_ProductosXCuenta) AS Mod ON ProductosXCuenta.ID_ProductosXCuenta=Mod.ID_ProductosXCuenta,Producto,Categoria WHERE ProductosXCuenta.ID_Producto=Producto.ID_Producto AND Producto.ID_Categoria=Categoria.ID_Categoria AND NOT ID_Tipo_Anulacion IS NULL AND CONVERT(DateTime,SUBSTRING(Fecha_Trabajo,1,2)+ '/' + SUBSTRING(Fecha_Trabajo,3,2) + '/' + SUBSTRING(Fecha_Trabajo,5,4),103) BETWEEN CONVERT(DateTime,'13/11/2026',103) AND CONVERT(DateTime,'14/11/2026',103) GROUP BY Nombre_Categoria
EXEC Rep_Ventas_Imp_Mod '13/11/2026','14/11/2026'
SELECT ISNULL(SUM(Monto_Pago),0) AS Monto FROM Pago P,Tipo_Pago TP,Comanda Com WHERE P.ID_Tipo_Pago=TP.ID_Tipo_Pago AND Com.ID_Comanda=P.ID_Comanda AND Com.Control=P.Control AND Clase='E' AND CONVERT(DateTime,SUBSTRING(Fecha_Trabajo,1,2)+ '/' + SUBSTRING(Fecha_Trabajo,3,2) + '/' + SUBSTRING(Fecha_Trabajo,5,4),103) BETWEEN CONVERT(DateTime,'13/11/2026',103) AND CONVERT(DateTime,'14/11/2026',103)
Select sum(propina)as monto from pago where id_comanda in (SELECT ID_Comanda FROM Comanda WHERE CONVERT(DateTime,SUBSTRING(Fecha_Trabajo,1,2)+ '/' + SUBSTRING(Fecha_Trabajo,3,2) + '/' + SUBSTRING(Fecha_Trabajo,5,4),103) BETWEEN CONVERT(DateTime,'13/11/2026',103) AND CONVERT(DateTime,'14/11/2026',103))
SELECT Nombre_Tipo_Pago,COUNT(Pago.ID_Tipo_Pago) AS ContID, SUM(Monto_Pago) AS SumaMontos,SUM(Propina) AS SumaPropinas, SUM((Propina + Monto_Pago)) As Total FROM Comanda,Tipo_Pago,Pago WHERE Comanda.ID_Comanda = Pago.ID_Comanda AND Pago.ID_Tipo_Pago = Tipo_Pago.Id_Tipo_Pago AND CONVERT(DateTime,SUBSTRING(Fecha_Trabajo,1,2)+ '/' + SUBSTRING(Fecha_Trabajo,3,2) + '/' + SUBSTRING(Fecha_Trabajo,5,4),103) BETWEEN CONVERT(DateTime,'13/11/2026',103) AND CONVERT(DateTime,'14/11/2026',103) AND Pago.ID_Comanda=Comanda.ID_Comanda GROUP BY Nombre_Tipo_Pago
SELECT Nombre_Tipo_Cortesia, COUNT(cor.ID_ProductosXCuenta) AS Cantidad, SUM(dbo.Redondear(Monto)) AS Monto FROM Cortesia COR,ProductosXCuenta PXC,Tipo_Cortesia TC,Comanda COM WHERE COR.ID_Tipo_Cortesia = TC.ID_Tipo_Cortesia AND COR.ID_ProductosXCuenta=PXC.ID_ProductosXCuenta AND PXC.ID_Comanda=COM.ID_Comanda AND ID_Tipo_Anulacion IS NULL AND CONVERT(DateTime,SUBSTRING(Fecha_Trabajo,1,2)+ '/' + SUBSTRING(Fecha_Trabajo,3,2) + '/' + SUBSTRING(Fecha_Trabajo,5,4),103) BETWEEN CONVERT(DateTime,'13/11/2026',103) AND CONVERT(DateTime,'14/11/2026',103) GROUP BY Nombre_Tipo_Cortesia
SELECT Cuenta.ID_Comanda,Cuenta.Num_Cuenta,Nombre_Tipo_Pago,Monto_Pago,Propina,Referencia FROM Cuenta,Pago,Tipo_Pago WHERE Cuenta.ID_Comanda=Pago.ID_comanda AND Cuenta.Num_Cuenta=Pago.Num_Cuenta AND Cuenta.Control=Pago.Control AND Pago.ID_Tipo_Pago=Tipo_Pago.ID_Tipo_Pago AND Cuenta.ID_Comanda IN (SELECT ID_Comanda FROM Comanda WHERE CAST(SUBSTRING(Fecha_Trabajo,1,2)+ '/' + SUBSTRING(Fecha_Trabajo,3,2)+ '/' + SUBSTRING(Fecha_Trabajo,5,4) AS Datetime) BETWEEN '13/11/2026 00:00:00' AND '14/11/2026 23:59:59') ORDER BY Cuenta.ID_Comanda
+ CREATE TABLE #Temp(Articulos Integer,id_Producto Integer,Nombre_Completo VarChar (100),PrecioVendido Numeric(18,2),PrecioOriginal Numeric(18,2),Costo Numeric(18,2))
+ INSERT INTO #Temp SELECT COUNT(ID_ProductosXCuenta) AS Articulos,Producto.ID_Producto,Nombre_Completo,(SUM(Precio_Venta)/Count(ID_ProductosXCuenta)),MAX(Precio_Original),0 FROM Producto LEFT OUTER JOIN ProductosXCuenta ON Producto.ID_Producto=ProductosXCuenta.ID_Producto AND ID_Comanda IN (SELECT ID_Comanda FROM Comanda WHERE CONVERT(DateTime,SUBSTRING(Fecha_Trabajo,1,2)+ '/' + SUBSTRING(Fecha_Trabajo,3,2) + '/' + SUBSTRING(Fecha_Trabajo,5,4),103) BETWEEN CONVERT(DateTime,'13/11/2026',103) AND CONVERT(DateTime,'14/11/2026',103)) AND ID_Tipo_Anulacion IS NULL GROUP BY Producto.ID_Producto,Nombre_Completo ORDER BY Producto.ID_Producto
SELECT ID_Producto,Nombre_Completo,PrecioOriginal,Articulos,PrecioVendido,(Articulos*PrecioVendido) AS MontoVenta FROM #Temp ORDER BY Nombre_Completo
select SUM(ISNULL(Ventas_Netas,0)) AS TotalNeto, Sum(ISNULL(Cortesias,0)) AS TotalCortesias, SUM(ISNULL(Promociones,0)) AS TotalPromocion, SUM(ISNULL(Anulaciones,0)) AS TotalAnulacion, SUM(ISNULL(Ventas_Brutas,0)) AS TotalBrutas, SUM(ISNULL(Impuestos,0)) AS TotalImpuesto FROM #Tmp_Ventas
SELECT SUM(Huespedes) FROM #TempDia WHERE convert(char(8),fecha_Apertura,108) between '22:00:00' and '24:00:00'
SELECT DISTINCT(Categoria) Nombre FROM #TempSecCat WHERE Monto > 0 ORDER BY Categoria
Select seccion, sum(monto) Monto from #TempSecCat where categoria='Bebidas' group by categoria, seccion
SELECT Seccion,SUM(Monto) MontoTotal FROM #TempSecCat GROUP BY Seccion
SELECT * FROM Seccion_dia ORDER BY Nombre
Invitados_X_SeccionDia '13/11/2026','14/11/2026'
Rep_Ventas_Imp_Mod '13/11/2026','14/11/2026'
! 102 SELECT Nombre_Promocion,SUM(Precio_Venta) AS Monto FROM ProductosXCuenta,Promocion,Comanda WHERE ProductosXCuenta.ID_Promocion=Promocion.ID_Promocion AND ProductosXCuenta.ID_Comanda=Comanda.ID_Comanda AND CONVERT(DateTime,substring(Fecha_Trabajo,1,2)+ '/' + substring(Fecha_Trabajo,3,2) + '/' + substring(Fecha_Trabajo,5,4),103) BETWEEN CONVERT('13/11/2026',103) AND CONVERT(DateTime,'14/11/2026',103) GROUP BY Nombre_Promocion
! 201 EXEC Reporte_Ventas '13/11/2026'
SELECT ID_Producto,Nombre_Completo,PrecioOriginal,Articulos,PrecioVendido,(Articulos*PrecioVendido) AS MontoVenta,Costo,PrcCosto = CASE WHEN TotalCosto=0 THEN 0 ELSE ((Costo*100)/ TotalCosto) END,PrcVenta =CASE WHEN TotalVenta=0 THEN 0 ELSE (((Articulos*PrecioVendido) *100)/TotalVenta) END FROM (SELECT ID_Producto,Nombre_Completo,PrecioOriginal,Articulos,PrecioVendido,Costo FROM #Temp) AS Detalle,(SELECT SUM(Costo) AS TotalCosto FROM #Temp) AS prcCosto,(SELECT SUM(ISNULL(PrecioVendido*Articulos,0)) AS TotalVenta FROM #Temp) AS prcVenta WHERE Articulos>0 ORDER BY Nombre_Completo
+ DROP TABLE #Tmp_Ventas
+ DROP Table #TempSecCat
+ drop table #TempDia
+ DROP TABLE #Temp
