-- Queries: joins, groups, subqueries, sets, order, derived tables.

CREATE TABLE Cliente (ID INT NOT NULL PRIMARY KEY, Nombre VARCHAR(20) NOT NULL, Ciudad VARCHAR(20) NULL)
CREATE TABLE Venta (ID INT NOT NULL PRIMARY KEY, ID_Cliente INT NULL, Monto MONEY NULL, Fecha DATETIME NULL)
INSERT INTO Cliente VALUES (1,'Ana','Lima'),(2,'Beto','lima'),(3,'Caro',NULL),(4,'Ñoño','Quito')
INSERT INTO Venta VALUES (1,1,100,'01/11/2026'),(2,1,50.5,'02/11/2026'),(3,2,NULL,'02/11/2026'),(4,3,10,NULL),(5,NULL,7,'05/11/2026')
# 4
# 5

SELECT * FROM Cliente ORDER BY Nombre DESC
> 4 | Ñoño | Quito
> 3 | Caro | NULL
> 2 | Beto | lima
> 1 | Ana | Lima

SELECT C.Nombre, V.Monto FROM Cliente C, Venta V WHERE C.ID = V.ID_Cliente ORDER BY V.ID
> Ana | 100.0000
> Ana | 50.5000
> Beto | NULL
> Caro | 10.0000

SELECT c.Nombre, v.ID FROM Cliente AS c LEFT OUTER JOIN Venta AS v ON c.ID = v.ID_Cliente AND v.Monto > 20 ORDER BY c.ID, v.ID
> Ana | 1
> Ana | 2
> Beto | NULL
> Caro | NULL
> Ñoño | NULL

SELECT c.Nombre, v.ID FROM Venta v RIGHT JOIN Cliente c ON c.ID = v.ID_Cliente WHERE v.ID IS NULL OR v.ID > 2 ORDER BY 1
> Beto | 3
> Caro | 4
> Ñoño | NULL

SELECT c.Nombre, v.ID FROM Cliente c FULL JOIN Venta v ON c.ID = v.ID_Cliente WHERE c.ID IS NULL OR v.ID IS NULL ORDER BY 2
> Ñoño | NULL
> NULL | 5

SELECT COUNT(*) FROM Cliente CROSS JOIN Venta
> 20

SELECT COUNT(*) FROM Cliente a, Cliente b LEFT JOIN Venta v ON b.ID = v.ID_Cliente
> 20

SELECT a.ID, t.ID FROM Cliente a, (SELECT v.ID FROM Cliente c RIGHT JOIN Venta v ON c.ID = v.ID_Cliente WHERE c.ID IS NULL) t WHERE a.ID < 3 ORDER BY 1
> 1 | 5
> 2 | 5

SELECT a.Nombre, b.Nombre FROM Cliente a INNER JOIN (Venta v INNER JOIN Cliente b ON v.ID_Cliente = b.ID) ON a.ID = b.ID AND v.ID = 4
> Caro | Caro

SELECT Ciudad, COUNT(*) AS n, COUNT(Ciudad) AS c FROM Cliente GROUP BY Ciudad ORDER BY n DESC, Ciudad
> Lima | 2 | 2
> NULL | 1 | 0
> Quito | 1 | 1

SELECT ID_Cliente, SUM(Monto), AVG(Monto), MIN(Monto), MAX(Monto), COUNT(Monto) FROM Venta GROUP BY ID_Cliente HAVING COUNT(*) > 0 ORDER BY ID_Cliente
> NULL | 7.0000 | 7.0000 | 7.0000 | 7.0000 | 1
> 1 | 150.5000 | 75.2500 | 50.5000 | 100.0000 | 2
> 2 | NULL | NULL | NULL | NULL | 0
> 3 | 10.0000 | 10.0000 | 10.0000 | 10.0000 | 1

SELECT AVG(ID), SUM(ID), AVG(CAST(ID AS NUMERIC(9,2))), SUM(CAST(ID AS FLOAT)) FROM Venta WHERE ID < 5
> 2 | 10 | 2.500000 | 10

SELECT COUNT(*), SUM(Monto), MAX(Fecha) FROM Venta WHERE 1=0
> 0 | NULL | NULL

SELECT Nombre FROM Cliente GROUP BY Ciudad
! 8120 Column 'Cliente.Nombre' is invalid in the select list because it is not contained in either an aggregate function or the GROUP BY clause.

SELECT Ciudad FROM Cliente GROUP BY Ciudad HAVING Nombre = 'Ana'
! 8120 Column 'Cliente.Nombre' is invalid in the HAVING clause

SELECT ID FROM Venta WHERE SUM(Monto) > 1
! 147

SELECT LEFT(Nombre,1) AS L, COUNT(*) FROM Cliente GROUP BY LEFT(Nombre,1) ORDER BY LEFT(Nombre,1)
> A | 1
> B | 1
> C | 1
> Ñ | 1

SELECT DISTINCT Ciudad FROM Cliente WHERE Ciudad IS NOT NULL ORDER BY Ciudad
> Lima
> Quito

SELECT DISTINCT Ciudad FROM Cliente ORDER BY Nombre
! 145

SELECT COUNT(DISTINCT Ciudad) FROM Cliente
> 2

SELECT MAX() FROM Cliente WHERE ID LIKE '1%'
! 174

SELECT TOP 2 Nombre FROM Cliente ORDER BY ID DESC
> Ñoño
> Caro

SELECT TOP (1) Nombre FROM Cliente ORDER BY ID
> Ana

SELECT TOP 50 PERCENT Nombre FROM Cliente ORDER BY ID
> Ana
> Beto

DECLARE @n INT SET @n = 3 SELECT TOP (@n) ID FROM Cliente ORDER BY ID
> 1
> 2
> 3

SELECT Nombre FROM Cliente WHERE ID IN (SELECT ID_Cliente FROM Venta WHERE Monto > 20)
> Ana

SELECT Nombre FROM Cliente WHERE ID NOT IN (SELECT ID_Cliente FROM Venta)
> (nothing)

SELECT Nombre FROM Cliente c WHERE NOT EXISTS (SELECT * FROM Venta v WHERE v.ID_Cliente = c.ID)
> Ñoño

SELECT Nombre, (SELECT SUM(Monto) FROM Venta WHERE ID_Cliente = Cliente.ID) AS Total FROM Cliente ORDER BY Total DESC, Nombre
> Ana | 150.5000
> Caro | 10.0000
> Beto | NULL
> Ñoño | NULL

SELECT Nombre FROM Cliente WHERE ID = (SELECT ID_Cliente FROM Venta)
! 512

SELECT Nombre FROM Cliente WHERE ID >= ALL (SELECT ID FROM Cliente)
> Ñoño

SELECT Nombre FROM Cliente WHERE ID < ANY (SELECT ID_Cliente FROM Venta WHERE ID_Cliente IS NOT NULL) ORDER BY ID
> Ana
> Beto

SELECT ID FROM Cliente WHERE ID IN (SELECT ID, Nombre FROM Cliente)
! 116

SELECT t.Ciudad, t.n FROM (SELECT Ciudad, COUNT(*) AS n FROM Cliente GROUP BY Ciudad) AS t WHERE t.n > 1
> Lima | 2

SELECT x FROM (SELECT ID, Nombre FROM Cliente) AS t(x, y) WHERE y = 'ana'
> 1

SELECT * FROM (SELECT COUNT(*) FROM Cliente) AS t
! 8155

SELECT Nombre FROM Cliente WHERE ID < 3 UNION SELECT UPPER(Ciudad) FROM Cliente WHERE Ciudad IS NOT NULL ORDER BY Nombre
> Ana
> Beto
> LIMA
> QUITO

SELECT 1 AS a UNION ALL SELECT 2.5 UNION ALL SELECT NULL
> 1.0
> 2.5
> NULL

SELECT LOWER(Ciudad) FROM Cliente EXCEPT SELECT 'QUITO' ORDER BY 1
> NULL
> lima

SELECT ID FROM Cliente INTERSECT SELECT ID_Cliente FROM Venta ORDER BY ID
> 1
> 2
> 3

SELECT 1 UNION SELECT 1, 2
! 205

SELECT ID FROM Cliente ORDER BY 2
! 108

SELECT Nombre AS ID FROM Cliente ORDER BY Cliente.ID DESC
> Ñoño
> Caro
> Beto
> Ana

SELECT ID FROM Cliente, Venta
! 209 Ambiguous column name 'ID'.

SELECT Apellido FROM Cliente
! 207 Invalid column name 'Apellido'.

SELECT z.ID FROM Cliente
! 4104 The multi-part identifier "z.ID" could not be bound.

SELECT Cliente.ID FROM Cliente c
! 4104

SELECT z.* FROM Cliente
! 107

SELECT * FROM Nada
! 208 Invalid object name 'Nada'.

SELECT * FROM Cliente, Cliente
! 1013

SELECT [c].[Nombre], "c"."ID" FROM [dbo].[Cliente] "c" WHERE [c].ID = 1
> Ana | 1

SELECT dbo.Cliente.Nombre FROM dbo.Cliente WHERE Cliente.ID = 2
> Beto

SELECT nombre, NOMBRE FROM CLIENTE WITH (NOLOCK) WHERE id = 3
> Caro | Caro

WITH Grandes (Cual, Cuanto) AS (SELECT ID_Cliente, SUM(Monto) FROM Venta GROUP BY ID_Cliente), Uno AS (SELECT * FROM Grandes WHERE Cuanto > 100)
SELECT c.Nombre, u.Cuanto FROM Cliente c JOIN Uno u ON u.Cual = c.ID
> Ana | 150.5000

SELECT Nombre, ROW_NUMBER() OVER (ORDER BY Nombre DESC) AS n, SUM(ID) OVER (PARTITION BY Ciudad) AS s FROM Cliente ORDER BY n
> Ñoño | 1 | 4
> Caro | 2 | 3
> Beto | 3 | 3
> Ana | 4 | 3

SELECT COUNT(*) FROM Venta WHERE Fecha BETWEEN '01/11/2026' AND '02/11/2026 23:59:59'
> 3

SELECT Nombre + ' de ' + Ciudad AS Quien FROM Cliente WHERE ID < 4
> Ana de Lima
> Beto de lima
> NULL

SELECT Clave = CASE WHEN ID > 2 THEN 'alta' ELSE 'baja' END, n = COUNT(*) FROM Cliente GROUP BY CASE WHEN ID > 2 THEN 'alta' ELSE 'baja' END ORDER BY Clave
> alta | 2
> baja | 2

SELECT TABLE_NAME FROM INFORMATION_SCHEMA.TABLES ORDER BY TABLE_NAME
> Cliente
> Venta

SELECT COLUMN_NAME, IS_NULLABLE, DATA_TYPE, CHARACTER_MAXIMUM_LENGTH FROM INFORMATION_SCHEMA.COLUMNS WHERE TABLE_NAME = 'Cliente' ORDER BY ORDINAL_POSITION
> ID | NO | int | NULL
> Nombre | NO | varchar | 20
> Ciudad | YES | varchar | 20

SELECT name FROM sysobjects WHERE xtype = 'U' ORDER BY name
> Cliente
> Venta

SELECT name FROM sys.objects WHERE type = 'U' AND object_id = OBJECT_ID('dbo.Venta')
> Venta

-- A join to the groups of a query: asked for by key, answered as if all groups had been made

CREATE TABLE Linea (ID INT NOT NULL PRIMARY KEY, Pedido INT NOT NULL, Precio MONEY NULL)
CREATE TABLE Extra (ID_Linea INT NOT NULL, N INT NOT NULL, Precio MONEY NULL, Nombre VARCHAR(10) NULL, PRIMARY KEY (ID_Linea, N))
INSERT INTO Linea VALUES (1,10,5),(2,10,7),(3,11,9)
INSERT INTO Extra VALUES (1,1,2,'a'),(1,2,0.5,'b'),(3,1,NULL,'a'),(9,1,8,'c')
# 3
# 4

SELECT L.ID, M.Total, M.Cuantos, M.ID_Linea FROM Linea L LEFT OUTER JOIN (SELECT ID_Linea, SUM(Precio) AS Total, COUNT(*) AS Cuantos FROM Extra GROUP BY ID_Linea) M ON L.ID = M.ID_Linea ORDER BY L.ID
> 1 | 2.5000 | 2 | 1
> 2 | NULL | NULL | NULL
> 3 | NULL | 1 | 3

SELECT * FROM (SELECT ID_Linea, SUM(Precio) AS Total FROM Extra GROUP BY ID_Linea) M RIGHT OUTER JOIN Linea ON M.ID_Linea = Linea.ID ORDER BY ID
> 1 | 2.5000 | 1 | 10 | 5.0000
> NULL | NULL | 2 | 10 | 7.0000
> 3 | NULL | 3 | 11 | 9.0000

SELECT Pedido, SUM(L.Precio) + SUM(ISNULL(M.Total,0)), COUNT(M.Total) FROM Linea L LEFT JOIN (SELECT ID_Linea, SUM(Precio) AS Total FROM Extra WHERE N < 2 OR N = 2 GROUP BY ID_Linea) AS M ON M.ID_Linea = L.ID GROUP BY Pedido ORDER BY Pedido
> 10 | 14.5000 | 1
> 11 | 9.0000 | 0

SELECT L.ID, M.Doble FROM Linea L LEFT JOIN (SELECT ID_Linea, SUM(Precio)*2 AS Doble FROM Extra GROUP BY ID_Linea HAVING COUNT(*) > 1) M ON L.ID = M.ID_Linea WHERE M.Doble IS NOT NULL
> 1 | 5.0000

SELECT L.ID, M.Mayor, M.Fijo FROM Linea L LEFT JOIN (SELECT ID_Linea, MAX(Nombre) AS Mayor, 'x' AS Fijo FROM Extra GROUP BY ID_Linea) M ON L.ID = M.ID_Linea AND L.Precio > 5 ORDER BY L.ID
> 1 | NULL | NULL
> 2 | NULL | NULL
> 3 | a | x

SELECT L.ID, M.Fijo, M.V FROM Linea L LEFT JOIN (SELECT ID_Linea, 'x' AS Fijo, SUM(COUNT(*)) OVER () AS V FROM Extra GROUP BY ID_Linea) M ON L.ID = M.ID_Linea ORDER BY L.ID
> 1 | x | 4
> 2 | NULL | NULL
> 3 | x | 4

-- What a join asks of its optional side alone, beside a subquery

CREATE TABLE Carta (ID INT NOT NULL PRIMARY KEY, Nombre VARCHAR(10) NOT NULL)
CREATE TABLE Vendido (ID INT NOT NULL PRIMARY KEY, Pedido INT NOT NULL, Producto INT NOT NULL, Anulado INT NULL, Precio MONEY NULL)
CREATE INDEX IX_Vendido ON Vendido (Pedido)
INSERT INTO Carta VALUES (1,'Sopa'),(2,'Pan'),(3,'Té')
INSERT INTO Vendido VALUES (1,10,1,NULL,5),(2,10,1,1,5),(3,11,1,NULL,6),(4,12,2,NULL,1)
# 3
# 4

SELECT Nombre, COUNT(Vendido.ID), SUM(Precio)/COUNT(Vendido.ID) FROM Carta LEFT OUTER JOIN Vendido ON Carta.ID = Producto AND Pedido IN (SELECT Pedido FROM Linea) AND Anulado IS NULL GROUP BY Nombre ORDER BY Nombre
> Pan | 0 | NULL
> Sopa | 2 | 5.5000
> Té | 0 | NULL

SELECT Nombre, Vendido.ID FROM Carta LEFT JOIN Vendido ON Carta.ID = Producto AND Pedido NOT IN (SELECT Pedido FROM Linea) AND Carta.ID < 2 + 1 WHERE Nombre <> 'x' ORDER BY Nombre
> Pan | 4
> Sopa | NULL
> Té | NULL

SELECT Nombre, Vendido.ID FROM Carta LEFT JOIN Vendido ON Pedido IN (SELECT Pedido FROM Linea WHERE Linea.ID = 3) AND 1 = 1 ORDER BY Nombre
> Pan | 3
> Sopa | 3
> Té | 3

-- A piece of a row counts as one.
CREATE TABLE Tres (N INT NOT NULL) INSERT INTO Tres VALUES (1),(2),(3)
# 3

SELECT (SELECT COUNT(*) FROM (SELECT TOP 0 PERCENT N FROM Tres) x), (SELECT COUNT(*) FROM (SELECT TOP 1 PERCENT N FROM Tres) x), (SELECT COUNT(*) FROM (SELECT TOP 33 PERCENT N FROM Tres) x), (SELECT COUNT(*) FROM (SELECT TOP 34 PERCENT N FROM Tres) x), (SELECT COUNT(*) FROM (SELECT TOP 66 PERCENT N FROM Tres) x), (SELECT COUNT(*) FROM (SELECT TOP 67 PERCENT N FROM Tres) x), (SELECT COUNT(*) FROM (SELECT TOP 100 PERCENT N FROM Tres) x)
> 0 | 1 | 1 | 2 | 2 | 3 | 3
