-- Variables, control of flow, procedures, functions, messages, transactions, temporary tables.

DECLARE @a INT, @b VARCHAR(5), @c MONEY SELECT @a, @b
SET @a = '12' SET @b = 'demasiado' SELECT @c = 1.23456, @a = @a + 1 SELECT @a, @b, @c
> NULL | NULL
> 13 | demas | 1.2346

SET @nada = 1
! 137 Must declare the scalar variable "@nada".

SELECT @nada
! 137

DECLARE @n INT = 5, @suma INT = 0 WHILE @n > 0 BEGIN SET @n = @n - 1 IF @n = 3 CONTINUE IF @n = 0 BREAK SET @suma = @suma + @n END SELECT @suma, @n
> 7 | 0

IF 1 = 2 PRINT 'no' ELSE IF 2 = 2 BEGIN PRINT 'si' PRINT 5 END
* si
* 5

IF EXISTS (SELECT 1 WHERE 1 = 1) AND NOT 1 = 0 SELECT 'hay'
> hay

PRINT 'antes' RAISERROR ('falla %s numero %d',16,1,'grande',7) PRINT 'despues'
* antes
* despues
! 50000 falla grande numero 7

RAISERROR ('solo aviso',10,1)
* solo aviso

SELECT 1/0 SELECT 'sigue', @@ERROR SELECT @@ERROR
> sigue | 8134
> 0
! 8134

SELECT CAST('x' AS INT) SELECT 'no llega'
! 245

CREATE PROCEDURE Saluda @nombre VARCHAR(20), @veces INT = 2, @total INT OUTPUT AS
BEGIN
    SET NOCOUNT ON
    DECLARE @i INT
    SET @i = 0
    SET @total = 0
    WHILE @i < @veces
    BEGIN
        SET @i = @i + 1
        SET @total = @total + LEN(@nombre)
    END
    SELECT 'Hola ' + @nombre AS Saludo, @veces AS Veces
    RETURN @veces * 10
END

DECLARE @t INT, @r INT EXEC @r = Saluda 'Ana', 3, @t OUTPUT SELECT @t, @r
> Hola Ana | 3
> 9 | 30

DECLARE @t INT EXECUTE dbo.Saluda @total = @t OUTPUT, @nombre = 'Beto' SELECT @t
> Hola Beto | 2
> 8

Saluda 'Caro', DEFAULT, NULL
> Hola Caro | 2

EXEC Saluda
! 201 Procedure or function 'Saluda' expects parameter '@nombre', which was not supplied.

EXEC Saluda 'a', 1, 2, 3
! 8144 Procedure or function Saluda has too many arguments specified.

EXEC Saluda @otro = 1
! 8145 @otro is not a parameter for procedure Saluda.

EXEC Saluda 'a', 'x', 2
! 8114 Error converting data type varchar to int.

EXEC NoExiste 1
! 2812 Could not find stored procedure 'NoExiste'.

CREATE PROCEDURE Saluda AS SELECT 1
! 2714 There is already an object named 'Saluda' in the database.

ALTER PROCEDURE Saluda AS SELECT 'cambiado'

EXEC Saluda
> cambiado

CREATE TABLE #lista (ID INT IDENTITY, Texto VARCHAR(20))

INSERT INTO #lista (Texto) EXEC Saluda
# 1

CREATE PROCEDURE Llena @cuantos INT AS
    DECLARE @i INT SET @i = 0
    WHILE @i < @cuantos BEGIN SET @i = @i + 1 INSERT INTO #lista (Texto) VALUES ('fila ' + CAST(@i AS VARCHAR(5))) END

EXEC Llena 2
# 1
# 1

SELECT ID, Texto FROM #lista ORDER BY ID
> 1 | cambiado
> 2 | fila 1
> 3 | fila 2

IF OBJECT_ID('tempdb..#lista') IS NOT NULL DROP TABLE #lista
IF OBJECT_ID('tempdb..#lista') IS NULL SELECT 'ya no'
> ya no

CREATE PROCEDURE ConTemporal AS CREATE TABLE #dentro (a INT) INSERT INTO #dentro VALUES (1) SELECT a FROM #dentro

EXEC ConTemporal
# 1
> 1

SELECT * FROM #dentro
! 208 Invalid object name '#dentro'.

CREATE FUNCTION dbo.Doble (@x MONEY) RETURNS MONEY AS BEGIN RETURN @x * 2 END

SELECT dbo.Doble(1.5), dbo.Doble(NULL), dbo.Doble(dbo.Doble(2))
> 3.0000 | NULL | 8.0000

CREATE FUNCTION dbo.Factorial (@n INT) RETURNS BIGINT AS
BEGIN
    DECLARE @r BIGINT
    IF @n <= 1 SET @r = 1 ELSE SET @r = @n * dbo.Factorial(@n - 1)
    RETURN @r
END

SELECT dbo.Factorial(10)
> 3628800

SELECT dbo.Factorial(40)
! 217

SELECT dbo.Factorial()
! 313

CREATE FUNCTION Otra () RETURNS VARCHAR(10) AS BEGIN DECLARE @n INT SELECT @n = COUNT(*) FROM sysobjects WHERE xtype = 'P' RETURN 'n=' + CAST(@n AS VARCHAR(5)) END

SELECT dbo.Otra()
> n=3

CREATE TABLE Cuenta (ID INT NOT NULL PRIMARY KEY, Saldo MONEY NOT NULL)
INSERT INTO Cuenta VALUES (1,100),(2,200)
# 2

BEGIN TRAN UPDATE Cuenta SET Saldo = 0 SELECT @@TRANCOUNT ROLLBACK SELECT SUM(Saldo), @@TRANCOUNT FROM Cuenta
# 2
> 1
> 300.0000 | 0

BEGIN TRANSACTION BEGIN TRANSACTION DELETE FROM Cuenta WHERE ID = 1 COMMIT SELECT @@TRANCOUNT ROLLBACK SELECT COUNT(*) FROM Cuenta
# 1
> 1
> 2

BEGIN TRAN SAVE TRAN uno DELETE FROM Cuenta ROLLBACK TRAN uno SELECT COUNT(*) FROM Cuenta COMMIT
# 2
> 2

COMMIT
! 3902 The COMMIT TRANSACTION request has no corresponding BEGIN TRANSACTION.

ROLLBACK TRAN
! 3903 The ROLLBACK TRANSACTION request has no corresponding BEGIN TRANSACTION.

-- What was defined after a savepoint goes with it, and so do the savepoints inside.
BEGIN TRAN SAVE TRAN uno CREATE TABLE Primera (a INT) SAVE TRAN dos CREATE TABLE Segunda (a INT) INSERT INTO Segunda VALUES (1) ROLLBACK TRAN dos SELECT COUNT(*) FROM Primera
# 1
> 0

SELECT * FROM Segunda
! 208 Segunda

SAVE TRAN tres CREATE TABLE Segunda (b INT) INSERT INTO Segunda (b) VALUES (7) SELECT b FROM Segunda
# 1
> 7

ROLLBACK TRAN uno SELECT * FROM Primera
! 208 Primera

SELECT * FROM Segunda
! 208 Segunda

ROLLBACK TRAN tres
! 6401 Cannot roll back tres.

CREATE TABLE Primera (c INT) INSERT INTO Primera (c) VALUES (3) ROLLBACK TRAN uno ROLLBACK TRAN uno SELECT @@TRANCOUNT
# 1
> 1

ROLLBACK SELECT COUNT(*) FROM Cuenta
> 2

BEGIN TRAN ROLLBACK TRAN otra SELECT @@TRANCOUNT ROLLBACK
> 1
! 6401 Cannot roll back otra.

BEGIN TRAN CREATE TABLE Pasajera (a INT) CREATE TABLE #pasajera (a INT) ROLLBACK SELECT * FROM Pasajera
! 208

SELECT * FROM #pasajera
! 208

CREATE PROCEDURE Deja AS BEGIN TRAN

EXEC Deja SELECT @@TRANCOUNT ROLLBACK
> 1
! 266

SET XACT_ABORT ON BEGIN TRAN UPDATE Cuenta SET Saldo = 1 INSERT INTO Cuenta VALUES (1,1) SELECT 'no llega'
# 2
! 2627

SET XACT_ABORT OFF SELECT SUM(Saldo), @@TRANCOUNT FROM Cuenta
> 300.0000 | 0

EXEC ('SELECT ' + '''dinamico''' + ' AS x')
> dinamico

DECLARE @t TABLE (ID INT NOT NULL PRIMARY KEY, N VARCHAR(5)) INSERT INTO @t VALUES (1,'a'),(2,'b') SELECT N FROM @t WHERE ID = 2 UPDATE @t SET N = 'c' DELETE FROM @t WHERE ID = 1 SELECT * FROM @t
# 2
> b
# 2
# 1
> 2 | c

SELECT ID, Saldo INTO #copia FROM Cuenta WHERE ID = 1 SELECT * FROM #copia DROP TABLE #copia
# 1
> 1 | 100.0000

SELECT ID, Saldo*2 FROM Cuenta WHERE ID = 1 SELECT Saldo INTO Copia FROM Cuenta SELECT COUNT(*) FROM Copia
> 1 | 200.0000
# 2
> 2

SELECT ID+1 INTO Mala FROM Cuenta
! 1038

SELECT * FROM Cuenta SELECT * FROM Cuenta WHERE
! 156 Incorrect syntax near the keyword 'WHERE'. (line 1, column 43)

-- A wrong name anywhere in a text stops all of it.
DELETE FROM Cuenta SELECT Nada FROM Cuenta
! 207

SELECT COUNT(*) FROM Cuenta
> 2

SET NOCOUNT ON UPDATE Cuenta SET Saldo = Saldo SELECT @@ROWCOUNT
> 2

SET NOCOUNT OFF UPDATE Cuenta SET Saldo = Saldo WHERE 1 = 0 SELECT @@ROWCOUNT
# 0
> 0

MERGE INTO Cuenta USING Copia ON 1 = 1
! 156 Incorrect syntax near the keyword 'MERGE'.

SELECT * FROM Cuenta WHERE ID *= 1
! 102 Incorrect syntax near '*='.

SELECT 'abierta
! 105 Unclosed quotation mark after the character string 'abierta

RETURN SELECT 1

RETURN 5
! 178

USE otra
! 911

SET ANSI_NULLS OFF
! 195
