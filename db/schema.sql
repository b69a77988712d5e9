-- The central database. One text for both engines: Microsoft SQL Server 2008 or later and the
-- embedded one. Lines that hold only GO cut it into the texts that are sent one by one.
--
-- Sales tables (Comanda to Pago) hold no references: a sale is never refused because a product,
-- an employee or a payment type was deleted after the terminal sold it.

-- Settings -----------------------------------------------------------------------------------

CREATE TABLE Parametros (
    ID_Parametro VARCHAR(30) NOT NULL CONSTRAINT PK_Parametros PRIMARY KEY,
    Valor_Num NUMERIC(18,4) NULL,
    Valor_Cad VARCHAR(255) NULL
)
GO
CREATE TABLE Departamentos (
    ID_Departamento INT NOT NULL CONSTRAINT PK_Departamentos PRIMARY KEY,
    Nombre_Departamento VARCHAR(50) NOT NULL CONSTRAINT UQ_Departamentos UNIQUE
)
GO
CREATE TABLE Seccion_dia (
    Nombre VARCHAR(50) NOT NULL CONSTRAINT PK_Seccion_dia PRIMARY KEY,
    Hora_inicio DATETIME NOT NULL,
    Hora_Fin DATETIME NOT NULL
)
GO

-- People and rights --------------------------------------------------------------------------

CREATE TABLE Empleado (
    ID_Empleado INT NOT NULL CONSTRAINT PK_Empleado PRIMARY KEY,
    Usuario VARCHAR(20) NOT NULL CONSTRAINT UQ_Empleado_Usuario UNIQUE,
    Nombre_Empleado VARCHAR(50) NOT NULL,
    Apellido_Paterno VARCHAR(50) NULL,
    Apellido_Materno VARCHAR(50) NULL,
    Contraseña VARCHAR(255) NULL,
    Tarjeta_magnetica VARCHAR(50) NULL,
    Num_Tarjeta VARCHAR(20) NULL,
    Estado_Empleado CHAR(1) NOT NULL CONSTRAINT DF_Empleado_Estado DEFAULT 'A',
    Intentos INT NOT NULL CONSTRAINT DF_Empleado_Intentos DEFAULT 0,
    Admin_Usuarios BIT NOT NULL CONSTRAINT DF_Empleado_Admin DEFAULT 0,
    Id_Terminal INT NOT NULL CONSTRAINT DF_Empleado_Terminal DEFAULT 0,
    ID_Departamento INT NULL CONSTRAINT FK_Empleado_Departamentos
        REFERENCES Departamentos (ID_Departamento)
)
GO
CREATE TABLE Grupo_Trabajo (
    ID_Grupo_Trabajo INT NOT NULL CONSTRAINT PK_Grupo_Trabajo PRIMARY KEY,
    Nombre_Grupo_Trabajo VARCHAR(50) NOT NULL CONSTRAINT UQ_Grupo_Trabajo UNIQUE
)
GO
CREATE TABLE EmpleadosXGrupo (
    ID_Empleado INT NOT NULL CONSTRAINT FK_EmpleadosXGrupo_Empleado
        REFERENCES Empleado (ID_Empleado),
    ID_Grupo_Trabajo INT NOT NULL CONSTRAINT FK_EmpleadosXGrupo_Grupo_Trabajo
        REFERENCES Grupo_Trabajo (ID_Grupo_Trabajo),
    CONSTRAINT PK_EmpleadosXGrupo PRIMARY KEY (ID_Empleado, ID_Grupo_Trabajo)
)
GO
CREATE TABLE Permisos (
    ID_Permiso INT NOT NULL CONSTRAINT PK_Permisos PRIMARY KEY,
    Nombre_Permiso VARCHAR(50) NOT NULL CONSTRAINT UQ_Permisos UNIQUE,
    Activo BIT NOT NULL CONSTRAINT DF_Permisos_Activo DEFAULT 1
)
GO
CREATE TABLE PermisosXGrupo_Trabajo (
    ID_Grupo_Trabajo INT NOT NULL CONSTRAINT FK_PermisosXGrupo_Trabajo_Grupo_Trabajo
        REFERENCES Grupo_Trabajo (ID_Grupo_Trabajo),
    ID_Permiso INT NOT NULL CONSTRAINT FK_PermisosXGrupo_Trabajo_Permisos
        REFERENCES Permisos (ID_Permiso),
    CONSTRAINT PK_PermisosXGrupo_Trabajo PRIMARY KEY (ID_Grupo_Trabajo, ID_Permiso)
)
GO
CREATE TABLE HorasXEmpleado (
    ID_HorasXEmpleado INT IDENTITY(1,1) NOT NULL CONSTRAINT PK_HorasXEmpleado PRIMARY KEY,
    Id_Empleado INT NOT NULL,
    id_departamento INT NULL,
    Hora_Entrada DATETIME NULL,
    Hora_Salida DATETIME NULL,
    minutos INT NULL,
    Costo MONEY NULL
)
GO

-- Catalogues ---------------------------------------------------------------------------------

CREATE TABLE Mensajes (
    ID_Mensaje INT IDENTITY(1,1) NOT NULL CONSTRAINT PK_Mensajes PRIMARY KEY,
    Mensaje VARCHAR(255) NOT NULL CONSTRAINT UQ_Mensajes UNIQUE,
    Mensaje_Activo BIT NOT NULL CONSTRAINT DF_Mensajes_Activo DEFAULT 1
)
GO
CREATE TABLE Categoria (
    ID_Categoria INT NOT NULL CONSTRAINT PK_Categoria PRIMARY KEY,
    Nombre_Categoria VARCHAR(50) NOT NULL CONSTRAINT UQ_Categoria UNIQUE,
    Tipo_Categoria CHAR(1) NOT NULL
)
GO
CREATE TABLE Tipos_Anulacion (
    ID_Tipo_Anulacion INT IDENTITY(1,1) NOT NULL CONSTRAINT PK_Tipos_Anulacion PRIMARY KEY,
    Nombre_Tipos_Anulacion VARCHAR(50) NOT NULL CONSTRAINT UQ_Tipos_Anulacion UNIQUE,
    Regresa_Existencia BIT NOT NULL CONSTRAINT DF_Tipos_Anulacion_Regresa DEFAULT 1
)
GO
CREATE TABLE Modo_Preparacion (
    ID_Modo_Preparacion INT NOT NULL CONSTRAINT PK_Modo_Preparacion PRIMARY KEY,
    Nombre_Modo_Preparacion VARCHAR(50) NOT NULL CONSTRAINT UQ_Modo_Preparacion UNIQUE,
    Indicador VARCHAR(20) NOT NULL
)
GO
CREATE TABLE Tipo_Pago (
    ID_Tipo_Pago INT IDENTITY(1,1) NOT NULL CONSTRAINT PK_Tipo_Pago PRIMARY KEY,
    Nombre_Tipo_Pago VARCHAR(50) NOT NULL CONSTRAINT UQ_Tipo_Pago UNIQUE,
    Clase CHAR(1) NOT NULL,
    Abrir_Gaveta BIT NOT NULL CONSTRAINT DF_Tipo_Pago_Abrir DEFAULT 1
)
GO
CREATE TABLE Tipo_Modificador (
    ID_Tipo_Modificador INT NOT NULL CONSTRAINT PK_Tipo_Modificador PRIMARY KEY,
    Nombre_Tipo_Modificador VARCHAR(50) NOT NULL CONSTRAINT UQ_Tipo_Modificador UNIQUE,
    Estado_Modificador CHAR(1) NOT NULL,
    Precio_Tipo_Modificador MONEY NOT NULL
)
GO
CREATE TABLE Grupo_Modificadores (
    ID_Grupo_Modificadores INT NOT NULL CONSTRAINT PK_Grupo_Modificadores PRIMARY KEY,
    Nombre_Grupo_Modificadores VARCHAR(50) NOT NULL CONSTRAINT UQ_Grupo_Modificadores UNIQUE,
    Fluir_automatico BIT NOT NULL CONSTRAINT DF_Grupo_Modificadores_Fluir DEFAULT 0,
    Grupo_Mod_Activo BIT NOT NULL CONSTRAINT DF_Grupo_Modificadores_Activo DEFAULT 1
)
GO
CREATE TABLE TiposXGrupo_Modificadores (
    ID_Grupo_Modificadores INT NOT NULL CONSTRAINT FK_TiposXGrupo_Modificadores_Grupo
        REFERENCES Grupo_Modificadores (ID_Grupo_Modificadores),
    ID_Tipo_Modificador INT NOT NULL CONSTRAINT FK_TiposXGrupo_Modificadores_Tipo
        REFERENCES Tipo_Modificador (ID_Tipo_Modificador),
    CONSTRAINT PK_TiposXGrupo_Modificadores PRIMARY KEY (ID_Grupo_Modificadores, ID_Tipo_Modificador)
)
GO
CREATE TABLE Menu (
    ID_Menu INT NOT NULL CONSTRAINT PK_Menu PRIMARY KEY,
    Nombre_Menu VARCHAR(50) NOT NULL CONSTRAINT UQ_Menu UNIQUE,
    Descripcion VARCHAR(255) NULL,
    Menu_Activo BIT NOT NULL CONSTRAINT DF_Menu_Activo DEFAULT 1
)
GO
CREATE TABLE SubMenu (
    ID_SubMenu INT NOT NULL CONSTRAINT PK_SubMenu PRIMARY KEY,
    Nombre_SubMenu VARCHAR(50) NOT NULL CONSTRAINT UQ_SubMenu UNIQUE,
    SubMenu_Fijo BIT NOT NULL CONSTRAINT DF_SubMenu_Fijo DEFAULT 0
)
GO
CREATE TABLE SubMenuXMenu (
    ID_Menu INT NOT NULL CONSTRAINT FK_SubMenuXMenu_Menu REFERENCES Menu (ID_Menu),
    ID_SubMenu INT NOT NULL CONSTRAINT FK_SubMenuXMenu_SubMenu REFERENCES SubMenu (ID_SubMenu),
    Orden INT NOT NULL CONSTRAINT DF_SubMenuXMenu_Orden DEFAULT 0,
    CONSTRAINT PK_SubMenuXMenu PRIMARY KEY (ID_Menu, ID_SubMenu)
)
GO

-- Terminals and printers ---------------------------------------------------------------------

CREATE TABLE Terminal (
    ID_Terminal INT NOT NULL CONSTRAINT PK_Terminal PRIMARY KEY,
    Nombre_Terminal VARCHAR(25) NOT NULL CONSTRAINT UQ_Terminal UNIQUE,
    ID_Menu INT NOT NULL CONSTRAINT FK_Terminal_Menu REFERENCES Menu (ID_Menu),
    Direccion_IP VARCHAR(15) NULL,
    Estado_Terminal CHAR(1) NOT NULL CONSTRAINT DF_Terminal_Estado DEFAULT 'A',
    Servidor BIT NOT NULL CONSTRAINT DF_Terminal_Servidor DEFAULT 0,
    Servidor_Backup BIT NOT NULL CONSTRAINT DF_Terminal_Backup DEFAULT 0
)
GO
CREATE TABLE Grupo_Impresoras (
    ID_Grupo_Impresoras INT NOT NULL CONSTRAINT PK_Grupo_Impresoras PRIMARY KEY,
    Nombre_Grupo_Impresoras VARCHAR(50) NOT NULL CONSTRAINT UQ_Grupo_Impresoras UNIQUE
)
GO
CREATE TABLE Impresora (
    ID_Impresora INT NOT NULL CONSTRAINT PK_Impresora PRIMARY KEY,
    Nombre_Impresora VARCHAR(50) NOT NULL CONSTRAINT UQ_Impresora UNIQUE,
    Puerto VARCHAR(100) NULL,
    Modo CHAR(1) NULL,
    Estado_Impresora CHAR(1) NULL,
    Comentario VARCHAR(255) NULL,
    ID_Terminal INT NULL CONSTRAINT FK_Impresora_Terminal REFERENCES Terminal (ID_Terminal),
    Redirigido INT NULL CONSTRAINT FK_Impresora_Redirigido REFERENCES Impresora (ID_Impresora),
    EsDeCheques BIT NOT NULL CONSTRAINT DF_Impresora_Cheques DEFAULT 0,
    Id_Impresora_Respaldo INT NULL CONSTRAINT FK_Impresora_Respaldo
        REFERENCES Impresora (ID_Impresora)
)
GO
CREATE TABLE ImpresorasXGrupo (
    ID_Impresora INT NOT NULL CONSTRAINT FK_ImpresorasXGrupo_Impresora
        REFERENCES Impresora (ID_Impresora),
    ID_Grupo_Impresoras INT NOT NULL CONSTRAINT FK_ImpresorasXGrupo_Grupo
        REFERENCES Grupo_Impresoras (ID_Grupo_Impresoras),
    CONSTRAINT PK_ImpresorasXGrupo PRIMARY KEY (ID_Impresora, ID_Grupo_Impresoras)
)
GO

-- Products -----------------------------------------------------------------------------------

CREATE TABLE Producto (
    ID_Producto INT NOT NULL CONSTRAINT PK_Producto PRIMARY KEY,
    Nombre_Completo VARCHAR(100) NOT NULL CONSTRAINT UQ_Producto UNIQUE,
    Nombre_Boton VARCHAR(50) NULL,
    Nombre_Cuenta VARCHAR(50) NULL,
    Existencia NUMERIC(18,2) NULL,
    Abierto BIT NOT NULL CONSTRAINT DF_Producto_Abierto DEFAULT 0,
    Especial BIT NOT NULL CONSTRAINT DF_Producto_Especial DEFAULT 0,
    ID_Grupo_Impresoras INT NULL CONSTRAINT FK_Producto_Grupo_Impresoras
        REFERENCES Grupo_Impresoras (ID_Grupo_Impresoras),
    ID_Grupo_Modificadores INT NULL CONSTRAINT FK_Producto_Grupo_Modificadores
        REFERENCES Grupo_Modificadores (ID_Grupo_Modificadores),
    Estado CHAR(1) NOT NULL CONSTRAINT DF_Producto_Estado DEFAULT 'A',
    ID_Categoria INT NOT NULL CONSTRAINT FK_Producto_Categoria REFERENCES Categoria (ID_Categoria),
    Paquete BIT NOT NULL CONSTRAINT DF_Producto_Paquete DEFAULT 0
)
GO
CREATE INDEX IX_Producto_Categoria ON Producto (ID_Categoria)
GO
CREATE TABLE PreciosXMenu (
    ID_Menu INT NOT NULL CONSTRAINT FK_PreciosXMenu_Menu REFERENCES Menu (ID_Menu),
    ID_Producto INT NOT NULL CONSTRAINT FK_PreciosXMenu_Producto REFERENCES Producto (ID_Producto),
    Precio MONEY NOT NULL CONSTRAINT DF_PreciosXMenu_Precio DEFAULT 0,
    CONSTRAINT PK_PreciosXMenu PRIMARY KEY (ID_Menu, ID_Producto)
)
GO
CREATE INDEX IX_PreciosXMenu_Producto ON PreciosXMenu (ID_Producto)
GO
CREATE TABLE Tipos_Impuesto (
    ID_Tipo_Impuesto INT NOT NULL CONSTRAINT PK_Tipos_Impuesto PRIMARY KEY,
    Nombre_Tipo_Impuesto VARCHAR(50) NOT NULL CONSTRAINT UQ_Tipos_Impuesto UNIQUE,
    Tipo_Imp_Activo BIT NOT NULL CONSTRAINT DF_Tipos_Impuesto_Activo DEFAULT 1
)
GO
CREATE TABLE PorcentajeXTipo_Impuesto (
    ID_Tipo_Impuesto INT NOT NULL CONSTRAINT FK_PorcentajeXTipo_Impuesto_Tipos
        REFERENCES Tipos_Impuesto (ID_Tipo_Impuesto),
    Fecha_Inicio_Impuesto DATETIME NOT NULL,
    Fecha_Fin_Impuesto DATETIME NULL,
    Porcentaje NUMERIC(9,4) NOT NULL,
    CONSTRAINT PK_PorcentajeXTipo_Impuesto PRIMARY KEY (ID_Tipo_Impuesto, Fecha_Inicio_Impuesto)
)
GO
CREATE TABLE ImpuestosXProducto (
    ID_Tipo_Impuesto INT NOT NULL CONSTRAINT FK_ImpuestosXProducto_Tipos
        REFERENCES Tipos_Impuesto (ID_Tipo_Impuesto),
    ID_Producto INT NOT NULL CONSTRAINT FK_ImpuestosXProducto_Producto
        REFERENCES Producto (ID_Producto),
    Incluir_en_precio BIT NOT NULL CONSTRAINT DF_ImpuestosXProducto_Incluir DEFAULT 1,
    CONSTRAINT PK_ImpuestosXProducto PRIMARY KEY (ID_Tipo_Impuesto, ID_Producto)
)
GO
CREATE TABLE ProductosXSubmenu (
    ID_Producto INT NOT NULL CONSTRAINT FK_ProductosXSubmenu_Producto
        REFERENCES Producto (ID_Producto),
    ID_SubMenu INT NOT NULL CONSTRAINT FK_ProductosXSubmenu_SubMenu REFERENCES SubMenu (ID_SubMenu),
    Orden INT NOT NULL CONSTRAINT DF_ProductosXSubmenu_Orden DEFAULT 0,
    CONSTRAINT PK_ProductosXSubmenu PRIMARY KEY (ID_Producto, ID_SubMenu)
)
GO
CREATE TABLE Secciones_Paquete (
    ID_Seccion_Paquete INT NOT NULL CONSTRAINT PK_Secciones_Paquete PRIMARY KEY,
    Nombre_Seccion VARCHAR(100) NOT NULL,
    ID_Producto INT NOT NULL CONSTRAINT FK_Secciones_Paquete_Producto
        REFERENCES Producto (ID_Producto),
    Numero INT NOT NULL CONSTRAINT DF_Secciones_Paquete_Numero DEFAULT 1
)
GO
-- A section is deleted without its products: these rows hold no reference to it.
CREATE TABLE ProductosXseccion (
    ID_Seccion_Paquete INT NOT NULL,
    ID_Producto INT NOT NULL CONSTRAINT FK_ProductosXseccion_Producto
        REFERENCES Producto (ID_Producto),
    CONSTRAINT PK_ProductosXseccion PRIMARY KEY (ID_Seccion_Paquete, ID_Producto)
)
GO

-- Courtesies and promotions ------------------------------------------------------------------

CREATE TABLE Tipo_Cortesia (
    ID_Tipo_Cortesia INT NOT NULL CONSTRAINT PK_Tipo_Cortesia PRIMARY KEY,
    Nombre_Tipo_Cortesia VARCHAR(50) NOT NULL CONSTRAINT UQ_Tipo_Cortesia UNIQUE,
    Tipo_Cortesia CHAR(1) NULL,
    Cantidad_Cortesia MONEY NULL,
    Cantidad_Maxima MONEY NULL,
    Sel_articulo BIT NOT NULL CONSTRAINT DF_Tipo_Cortesia_Sel DEFAULT 0,
    Fecha_Inicio_Cortesia DATETIME NOT NULL,
    Fecha_Fin_Cortesia DATETIME NULL,
    Cortesia_Activa BIT NOT NULL CONSTRAINT DF_Tipo_Cortesia_Activa DEFAULT 1
)
GO
CREATE TABLE ProductoXTipo_Cortesia (
    ID_Tipo_Cortesia INT NOT NULL CONSTRAINT FK_ProductoXTipo_Cortesia_Tipo
        REFERENCES Tipo_Cortesia (ID_Tipo_Cortesia),
    ID_Producto INT NOT NULL CONSTRAINT FK_ProductoXTipo_Cortesia_Producto
        REFERENCES Producto (ID_Producto),
    CONSTRAINT PK_ProductoXTipo_Cortesia PRIMARY KEY (ID_Tipo_Cortesia, ID_Producto)
)
GO
CREATE TABLE Grupo_Promocional (
    ID_Grupo_Promocional INT IDENTITY(1,1) NOT NULL CONSTRAINT PK_Grupo_Promocional PRIMARY KEY,
    Nombre_Gpo_Promocional VARCHAR(50) NOT NULL CONSTRAINT UQ_Grupo_Promocional UNIQUE
)
GO
CREATE TABLE Detalle_Gpo_Promocional (
    ID_Grupo_Promocional INT NOT NULL CONSTRAINT FK_Detalle_Gpo_Promocional_Grupo
        REFERENCES Grupo_Promocional (ID_Grupo_Promocional),
    ID_Producto INT NOT NULL CONSTRAINT FK_Detalle_Gpo_Promocional_Producto
        REFERENCES Producto (ID_Producto),
    CONSTRAINT PK_Detalle_Gpo_Promocional PRIMARY KEY (ID_Grupo_Promocional, ID_Producto)
)
GO
CREATE TABLE Grupo_Obsequios (
    ID_Grupo_Obsequio INT IDENTITY(1,1) NOT NULL CONSTRAINT PK_Grupo_Obsequios PRIMARY KEY,
    Nombre_Gpo_Obsequio VARCHAR(50) NOT NULL CONSTRAINT UQ_Grupo_Obsequios UNIQUE
)
GO
CREATE TABLE Detalle_Gpo_Obsequios (
    ID_Grupo_Obsequio INT NOT NULL CONSTRAINT FK_Detalle_Gpo_Obsequios_Grupo
        REFERENCES Grupo_Obsequios (ID_Grupo_Obsequio),
    ID_Producto INT NOT NULL CONSTRAINT FK_Detalle_Gpo_Obsequios_Producto
        REFERENCES Producto (ID_Producto),
    CONSTRAINT PK_Detalle_Gpo_Obsequios PRIMARY KEY (ID_Grupo_Obsequio, ID_Producto)
)
GO
CREATE TABLE Promocion (
    ID_Promocion INT IDENTITY(1,1) NOT NULL CONSTRAINT PK_Promocion PRIMARY KEY,
    ClaveUsr VARCHAR(20) NULL,
    Nombre_Promocion VARCHAR(50) NOT NULL CONSTRAINT UQ_Promocion UNIQUE,
    Tipo_Promocion CHAR(1) NULL,
    CantMesa INT NULL,
    Fecha_Inicio_Promocion DATETIME NOT NULL,
    Fecha_Fin_Promocion DATETIME NULL,
    Activo BIT NOT NULL CONSTRAINT DF_Promocion_Activo DEFAULT 1
)
GO
CREATE TABLE Detalle_Promocion (
    ID_Detalle_Promocion INT IDENTITY(1,1) NOT NULL CONSTRAINT PK_Detalle_Promocion PRIMARY KEY,
    ID_Promocion INT NOT NULL CONSTRAINT FK_Detalle_Promocion_Promocion
        REFERENCES Promocion (ID_Promocion),
    CantMinima NUMERIC(18,2) NULL,
    CantMaxima NUMERIC(18,2) NULL,
    CantObsequios NUMERIC(18,2) NULL,
    Descuento NUMERIC(18,4) NULL,
    ID_Grupo_Promocional INT NULL CONSTRAINT FK_Detalle_Promocion_Grupo_Promocional
        REFERENCES Grupo_Promocional (ID_Grupo_Promocional),
    ID_Grupo_Obsequios INT NULL CONSTRAINT FK_Detalle_Promocion_Grupo_Obsequios
        REFERENCES Grupo_Obsequios (ID_Grupo_Obsequio)
)
GO

-- Sales --------------------------------------------------------------------------------------

CREATE TABLE Comanda (
    ID_Comanda INT NOT NULL CONSTRAINT PK_Comanda PRIMARY KEY,
    ID_Empleado INT NULL,
    Num_Mesa INT NULL,
    Abierta BIT NULL,
    Fecha_Apertura DATETIME NULL,
    Fecha_Cierre DATETIME NULL,
    Tipo VARCHAR(10) NULL,
    Fecha_Trabajo VARCHAR(8) NULL,
    Control INT NOT NULL CONSTRAINT DF_Comanda_Control DEFAULT 0,
    CantHuespedes INT NULL
)
GO
-- The reports ask for a range of working dates; the embedded engine keeps the date that the eight
-- digits spell beside this index, SQL Server reads this narrow index whole. A computed column of the
-- date would refuse a sale whose digits are no date, in the middle of a close.
CREATE INDEX IX_Comanda_Fecha_Trabajo ON Comanda (Fecha_Trabajo)
GO
CREATE TABLE Cuenta (
    ID_Comanda INT NOT NULL,
    Num_Cuenta INT NOT NULL,
    Pagada BIT NULL,
    Num_Impresiones INT NULL,
    Total MONEY NULL,
    Control INT NOT NULL CONSTRAINT DF_Cuenta_Control DEFAULT 0,
    CONSTRAINT PK_Cuenta PRIMARY KEY (ID_Comanda, Num_Cuenta)
)
GO
CREATE TABLE ProductosXCuenta (
    ID_ProductosXCuenta INT NOT NULL CONSTRAINT PK_ProductosXCuenta PRIMARY KEY,
    ID_Comanda INT NOT NULL,
    Num_Cuenta INT NOT NULL,
    ID_Producto INT NOT NULL,
    Comentario VARCHAR(255) NULL,
    Preparado BIT NULL,
    Precio_Venta MONEY NULL,
    Precio_Original MONEY NULL,
    ID_Tipo_Anulacion INT NULL,
    ID_Modo_Preparacion INT NULL,
    ID_Promocion INT NULL,
    ID_Paquete INT NULL,
    Empleado_Anulacion INT NULL,
    Hora_Anulacion DATETIME NULL,
    Control INT NOT NULL CONSTRAINT DF_ProductosXCuenta_Control DEFAULT 0
)
GO
CREATE INDEX IX_ProductosXCuenta_Comanda ON ProductosXCuenta (ID_Comanda, Num_Cuenta)
GO
CREATE TABLE Cortesia (
    ID_ProductosXCuenta INT NOT NULL,
    ID_Tipo_Cortesia INT NOT NULL,
    Monto MONEY NULL,
    CONSTRAINT PK_Cortesia PRIMARY KEY (ID_ProductosXCuenta, ID_Tipo_Cortesia)
)
GO
CREATE TABLE Modificador (
    ID_ProductosXCuenta INT NOT NULL,
    ID_Tipo_Modificador INT NOT NULL,
    Precio_Modificador MONEY NULL,
    Impuesto_Modificador MONEY NOT NULL CONSTRAINT DF_Modificador_Impuesto DEFAULT 0,
    CONSTRAINT PK_Modificador PRIMARY KEY (ID_ProductosXCuenta, ID_Tipo_Modificador)
)
GO
CREATE TABLE ImpuestosXCuenta (
    ID_ProductosXCuenta INT NOT NULL,
    ID_Tipo_Impuesto INT NOT NULL,
    Monto_ImpuestosXCuenta MONEY NULL,
    CONSTRAINT PK_ImpuestosXCuenta PRIMARY KEY (ID_ProductosXCuenta, ID_Tipo_Impuesto)
)
GO
CREATE TABLE Pago (
    ID_Pago INT NOT NULL CONSTRAINT PK_Pago PRIMARY KEY,
    ID_Comanda INT NOT NULL,
    Num_Cuenta INT NOT NULL,
    ID_Tipo_Pago INT NOT NULL,
    Monto_Pago MONEY NULL,
    Propina MONEY NULL,
    Referencia VARCHAR(50) NULL,
    Control INT NOT NULL CONSTRAINT DF_Pago_Control DEFAULT 0
)
GO
CREATE INDEX IX_Pago_Comanda ON Pago (ID_Comanda, Num_Cuenta)
GO

-- Queues -------------------------------------------------------------------------------------

CREATE TABLE Transacciones (
    ID_Transaccion INT IDENTITY(1,1) NOT NULL CONSTRAINT PK_Transacciones PRIMARY KEY,
    Transaccion VARCHAR(255) NOT NULL,
    Escribiendo BIT NOT NULL CONSTRAINT DF_Transacciones_Escribiendo DEFAULT 1
)
GO
CREATE TABLE TransaccionesXTerminal (
    ID_Transaccion INT NOT NULL CONSTRAINT FK_TransaccionesXTerminal_Transacciones
        REFERENCES Transacciones (ID_Transaccion),
    ID_Terminal INT NOT NULL,
    CONSTRAINT PK_TransaccionesXTerminal PRIMARY KEY (ID_Transaccion, ID_Terminal)
)
GO
CREATE TABLE ColaImpresion (
    ID_Cola INT IDENTITY(1,1) NOT NULL CONSTRAINT PK_ColaImpresion PRIMARY KEY,
    ID_Impresora INT NULL,
    ID_Terminal INT NULL,
    ID_Comanda INT NULL,
    Hora DATETIME NULL
)
GO
CREATE TABLE Detallecolaimpresion (
    ID_Cola INT NOT NULL CONSTRAINT FK_Detallecolaimpresion_ColaImpresion
        REFERENCES ColaImpresion (ID_Cola),
    Renglon INT NOT NULL,
    Texto VARCHAR(255) NULL,
    CONSTRAINT PK_Detallecolaimpresion PRIMARY KEY (ID_Cola, Renglon)
)
GO
CREATE TABLE Control_Paquetes (
    ID_ProductosXCuenta INT NOT NULL,
    ID_Seccion_Paquete INT NOT NULL,
    ID_Producto INT NOT NULL,
    Cantidad INT NULL,
    CONSTRAINT PK_Control_Paquetes PRIMARY KEY (ID_ProductosXCuenta, ID_Seccion_Paquete, ID_Producto)
)
GO

-- The close that was begun and not yet finished, and how far it came with each terminal --------

CREATE TABLE Cierre_Pendiente (
    Fecha_Cierre VARCHAR(8) NOT NULL CONSTRAINT PK_Cierre_Pendiente PRIMARY KEY,
    Paso INT NOT NULL,
    Inicio DATETIME NOT NULL
)
GO
CREATE TABLE Cierre_Avance (
    Nombre_Term VARCHAR(25) NOT NULL,
    ID_Terminal INT NOT NULL,
    Tabla VARCHAR(30) NOT NULL,
    Estado INT NOT NULL,
    Detalle VARCHAR(100) NULL,
    CONSTRAINT PK_Cierre_Avance PRIMARY KEY (Nombre_Term, Tabla)
)
GO

-- Who holds a lock of the installation, as it is told to the others. The lock itself is the
-- session's (sp_getapplock): a row without it means nothing.
CREATE TABLE Candado (
    Nombre VARCHAR(50) NOT NULL CONSTRAINT PK_Candado PRIMARY KEY,
    Quien VARCHAR(200) NOT NULL,
    Desde DATETIME NOT NULL,
    Renovado DATETIME NOT NULL
)
GO

-- Views of reports ---------------------------------------------------------------------------

CREATE VIEW Vw_DetalleHoras AS
SELECT H.Id_Empleado, H.id_departamento, H.Hora_Entrada, H.Hora_Salida, H.minutos, H.Costo,
       E.Nombre_Empleado, E.Apellido_Paterno, E.Apellido_Materno, D.Nombre_Departamento
FROM HorasXEmpleado H
     INNER JOIN Empleado E ON H.Id_Empleado = E.ID_Empleado
     LEFT OUTER JOIN Departamentos D ON H.id_departamento = D.ID_Departamento
GO
CREATE VIEW Vw_DepartamentosXEmpleado AS
SELECT E.ID_Empleado, E.Nombre_Empleado, E.Apellido_Paterno, E.Apellido_Materno,
       D.ID_Departamento, D.Nombre_Departamento
FROM Empleado E LEFT OUTER JOIN Departamentos D ON E.ID_Departamento = D.ID_Departamento
GO
CREATE VIEW Vw_ReporteCortesias AS
SELECT COM.ID_Comanda, COM.Fecha_Trabajo, COM.Control, PXC.ID_ProductosXCuenta, PXC.Num_Cuenta,
       PXC.ID_Producto, P.Nombre_Completo, PXC.Precio_Venta, COR.ID_Tipo_Cortesia,
       TC.Nombre_Tipo_Cortesia, COR.Monto
FROM Cortesia COR
     INNER JOIN ProductosXCuenta PXC ON COR.ID_ProductosXCuenta = PXC.ID_ProductosXCuenta
     INNER JOIN Comanda COM ON PXC.ID_Comanda = COM.ID_Comanda
     INNER JOIN Tipo_Cortesia TC ON COR.ID_Tipo_Cortesia = TC.ID_Tipo_Cortesia
     LEFT OUTER JOIN Producto P ON PXC.ID_Producto = P.ID_Producto
WHERE PXC.ID_Tipo_Anulacion IS NULL
GO
CREATE VIEW Vw_ReporteCortesiasEspeciales AS
SELECT COM.ID_Comanda, COM.Fecha_Trabajo, COM.Control, PXC.ID_ProductosXCuenta, PXC.Num_Cuenta,
       PXC.ID_Producto, P.Nombre_Completo, PXC.Precio_Venta, COR.ID_Tipo_Cortesia,
       TC.Nombre_Tipo_Cortesia, COR.Monto
FROM Cortesia COR
     INNER JOIN ProductosXCuenta PXC ON COR.ID_ProductosXCuenta = PXC.ID_ProductosXCuenta
     INNER JOIN Comanda COM ON PXC.ID_Comanda = COM.ID_Comanda
     INNER JOIN Tipo_Cortesia TC ON COR.ID_Tipo_Cortesia = TC.ID_Tipo_Cortesia
     INNER JOIN Producto P ON PXC.ID_Producto = P.ID_Producto
WHERE PXC.ID_Tipo_Anulacion IS NULL AND P.Especial = 1
GO
