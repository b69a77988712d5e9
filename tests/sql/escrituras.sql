-- Inserts, updates, deletes, and what the tables' rules refuse.

CREATE TABLE Grupo (ID INT NOT NULL CONSTRAINT PK_Grupo PRIMARY KEY, Nombre VARCHAR(10) NOT NULL CONSTRAINT UQ_Grupo UNIQUE, Activo BIT NOT NULL DEFAULT 1)
CREATE TABLE Miembro (ID INT IDENTITY(1,1) NOT NULL PRIMARY KEY, ID_Grupo INT NULL CONSTRAINT FK_Miembro_Grupo REFERENCES Grupo(ID), Clave CHAR(3) NULL, Precio MONEY NULL, Cuota NUMERIC(5,2) NULL, Alta DATETIME NULL DEFAULT GETDATE(), Doble AS Cuota*2, CONSTRAINT CK_Precio CHECK (Precio >= 0))
CREATE UNIQUE INDEX UX_Miembro ON Miembro (ID_Grupo, Clave)

INSERT INTO Grupo (ID,Nombre) VALUES (1,'Uno'),(2,'Dos')
# 2

INSERT INTO Grupo (ID,Nombre) VALUES (1,'otro')
! 2627 Violation of PRIMARY KEY constraint 'PK_Grupo'. Cannot insert duplicate key in object 'dbo.Grupo'.

INSERT INTO Grupo (ID,Nombre) VALUES (3,'UNO ')
! 2627 Violation of UNIQUE KEY constraint 'UQ_Grupo'. Cannot insert duplicate key in object 'dbo.Grupo'.

INSERT INTO Grupo (ID,Nombre) VALUES (3,NULL)
! 515 Cannot insert the value NULL into column 'Nombre', table 'central.dbo.Grupo'; column does not allow nulls. INSERT fails.

INSERT INTO Grupo (ID,Nombre) VALUES (NULL,'tres')
! 515 Cannot insert the value NULL into column 'ID'

INSERT INTO Grupo (Nombre) VALUES ('tres')
! 515 Cannot insert the value NULL into column 'ID'

UPDATE Grupo SET Nombre = NULL WHERE ID = 1
! 515 Cannot insert the value NULL into column 'Nombre', table 'central.dbo.Grupo'; column does not allow nulls. UPDATE fails.

INSERT INTO Grupo (ID,Nombre) VALUES (3,'demasiado largo')
! 8152 String or binary data would be truncated.

INSERT INTO Grupo (ID,Nombre) VALUES (3,'Tres           ')
# 1

INSERT INTO Grupo (ID,Nombre,Nada) VALUES (4,'x',1)
! 207 Invalid column name 'Nada'.

INSERT INTO Grupo (ID,Nombre) VALUES (4)
! 109

INSERT INTO Grupo VALUES (4,'x')
! 213 Column name or number of supplied values does not match table definition.

INSERT INTO Grupo (ID,Nombre) SELECT ID FROM Grupo
! 120

INSERT INTO Grupo VALUES ('x','y',1)
! 245

INSERT INTO Miembro (ID_Grupo,Clave,Precio,Cuota) VALUES (1,'a',10.12345,1.005)
# 1

SELECT ID, ID_Grupo, Clave+'|', Precio, Cuota, Alta, Doble FROM Miembro
> 1 | 1 | a  | | 10.1235 | 1.01 | 2026-11-14T21:36:08.000 | 2.02

INSERT INTO Miembro (ID_Grupo,Clave) VALUES (9,'b')
! 547 The INSERT statement conflicted with the FOREIGN KEY constraint "FK_Miembro_Grupo". The conflict occurred in database "central", table "dbo.Grupo", column 'ID'.

UPDATE Miembro SET ID_Grupo = 9
! 547 The UPDATE statement conflicted with the FOREIGN KEY constraint "FK_Miembro_Grupo". The conflict occurred in database "central", table "dbo.Grupo", column 'ID'.

DELETE FROM Grupo WHERE ID = 1
! 547 The DELETE statement conflicted with the REFERENCE constraint "FK_Miembro_Grupo". The conflict occurred in database "central", table "dbo.Miembro", column 'ID_Grupo'.

UPDATE Grupo SET ID = 7 WHERE ID = 1
! 547 The UPDATE statement conflicted with the REFERENCE constraint "FK_Miembro_Grupo".

INSERT INTO Miembro (ID_Grupo,Precio) VALUES (1,-1)
! 547 The INSERT statement conflicted with the CHECK constraint "CK_Precio". The conflict occurred in database "central", table "dbo.Miembro".

INSERT INTO Miembro (ID_Grupo,Clave) VALUES (1,'A')
! 2601 Cannot insert duplicate key row in object 'dbo.Miembro' with unique index 'UX_Miembro'.

INSERT INTO Miembro (ID_Grupo,Clave) VALUES (NULL,NULL)
# 1

-- An index takes two NULLs for equal.
INSERT INTO Miembro (ID_Grupo,Clave) VALUES (NULL,NULL)
! 2601 'UX_Miembro'

INSERT INTO Miembro (Cuota) VALUES (1000)
! 8115

INSERT INTO Miembro (ID,ID_Grupo) VALUES (50,2)
! 544 Cannot insert explicit value for identity column in table 'Miembro' when IDENTITY_INSERT is set to OFF.

INSERT INTO Miembro (Doble) VALUES (2)
! 271

UPDATE Miembro SET ID = 5
! 8102

-- Numbers that failed are spent.
SET IDENTITY_INSERT Miembro ON
INSERT INTO Miembro (ID,ID_Grupo,Clave) VALUES (50,2,'z')
SET IDENTITY_INSERT Miembro OFF
INSERT INTO Miembro (ID_Grupo,Clave) VALUES (2,'y')
SELECT @@IDENTITY, SCOPE_IDENTITY(), @@ROWCOUNT
# 1
# 1
> 51 | 51 | 1

SET IDENTITY_INSERT Grupo ON
! 8106

DELETE FROM Miembro WHERE ID = 51 INSERT INTO Miembro DEFAULT VALUES
# 1
! 2601

DELETE FROM Miembro WHERE ID_Grupo IS NULL INSERT INTO Miembro DEFAULT VALUES SELECT ID_Grupo, Clave FROM Miembro WHERE ID = @@IDENTITY
# 1
# 1
> NULL | NULL

UPDATE Miembro SET Precio = 5, Cuota += 1, Alta = DEFAULT WHERE ID = 1
# 1

SELECT Precio, Cuota, Doble FROM Miembro WHERE ID = 1
> 5.0000 | 2.01 | 4.02

UPDATE m SET Precio = g.ID * 10 FROM Miembro m INNER JOIN Grupo g ON m.ID_Grupo = g.ID
# 2

SELECT ID, Precio FROM Miembro WHERE ID_Grupo IS NOT NULL ORDER BY ID
> 1 | 10.0000
> 50 | 20.0000

UPDATE Miembro SET Precio = (SELECT MAX(ID) FROM Grupo), Nada = 1
! 207

UPDATE Miembro SET Precio = 1, Precio = 2
! 264

UPDATE TOP (1) Miembro SET Clave = 'q' WHERE ID_Grupo IS NOT NULL
# 1

DELETE m FROM Miembro m INNER JOIN Grupo g ON m.ID_Grupo = g.ID WHERE g.Nombre = 'dos'
# 1

DELETE FROM Miembro FROM Grupo WHERE Grupo.ID = Miembro.ID_Grupo AND Grupo.ID = 99
# 0

DELETE TOP (1) FROM Miembro WHERE ID_Grupo IS NULL
# 1

TRUNCATE TABLE Grupo
! 4712

TRUNCATE TABLE Miembro INSERT INTO Miembro (Clave) VALUES ('a') SELECT ID FROM Miembro
# 1
> 1

INSERT INTO Grupo (ID,Nombre) SELECT ID+10, 'G'+Nombre FROM Grupo WHERE ID < 3
# 2

-- A statement that fails half way leaves nothing of itself.
INSERT INTO Grupo (ID,Nombre) SELECT ID+5, 'N'+CAST(ID AS VARCHAR(5)) FROM Grupo UNION ALL SELECT 1,'rep'
! 2627

SELECT COUNT(*) FROM Grupo
> 5

-- What stands before it in a transaction stays.
BEGIN TRANSACTION INSERT INTO Grupo (ID,Nombre) VALUES (20,'veinte') INSERT INTO Grupo (ID,Nombre) VALUES (20,'otra') SELECT COUNT(*) FROM Grupo WHERE ID = 20 COMMIT
# 1
> 1
! 2627

CREATE TABLE Lista (ID INT NOT NULL PRIMARY KEY, Orden INT NOT NULL UNIQUE) INSERT INTO Lista VALUES (1,1),(2,2),(3,3) UPDATE Lista SET ID = ID + 1, Orden = 4 - Orden SELECT * FROM Lista ORDER BY ID
# 3
# 3
> 2 | 3
> 3 | 2
> 4 | 1

UPDATE Lista SET Orden = 1
! 2627

CREATE TABLE Jefe (ID INT NOT NULL PRIMARY KEY, ID_Jefe INT NULL CONSTRAINT FK_Jefe REFERENCES Jefe(ID))
INSERT INTO Jefe VALUES (1,1),(2,1),(3,4),(4,2)
DELETE FROM Jefe
SELECT COUNT(*) FROM Jefe
# 4
# 4
> 0

CREATE TABLE Ancho (N NUMERIC(38,4) NULL, T TEXT NULL, U UNIQUEIDENTIFIER NULL, B VARBINARY(8) NULL, F REAL NULL, C BIGINT NULL, X TINYINT NULL)
INSERT INTO Ancho VALUES (1234567890123456789012.3456,'largo','6F9619FF-8B86-D011-B42D-00C04FC964FF',0x0102,1.5,9223372036854775807,255)
INSERT INTO Ancho (N) VALUES (-99999999999999999999.5)
SELECT SUM(N), MAX(N), MIN(N), AVG(N) FROM Ancho
SELECT N, N+1, N*2, N/3 FROM Ancho WHERE N > 0
SELECT T,U,B,F,C,X FROM Ancho WHERE C IS NOT NULL
SELECT N FROM Ancho ORDER BY N
# 1
# 1
> 1134567890123456789012.8456 | 1234567890123456789012.3456 | -99999999999999999999.5000 | 567283945061728394506.422800
> 1234567890123456789012.3456 | 1234567890123456789013.3456 | 2469135780246913578024.6912 | 411522630041152263004.115200
> largo | 6F9619FF-8B86-D011-B42D-00C04FC964FF | 0x0102 | 1.5 | 9223372036854775807 | 255
> -99999999999999999999.5000
> 1234567890123456789012.3456

INSERT INTO Ancho (X) VALUES (256)
! 220 Arithmetic overflow error for data type tinyint, value = 256.

INSERT INTO Ancho (U) VALUES ('no es')
! 8169

INSERT INTO Ancho (C) VALUES (9223372036854775808)
! 8115
