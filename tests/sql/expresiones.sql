-- Operators, types and functions, as a server with us_english messages and SET DATEFORMAT dmy.

SELECT 7/2, -7/2, 7%3, -7%3, 7/2.0, 1+2*3, (1+2)*3, 10-4-3, -(-5), +5, ~5, 6&3, 6|3, 6^3
> 3 | -3 | 1 | -1 | 3.500000 | 7 | 9 | 3 | 5 | 5 | -6 | 2 | 7 | 5

SELECT 0.1+0.2, 1.50*2, 10.0/4, 1.0/3, 100.00*0.16, 5-2.25
> 0.3 | 3.00 | 2.500000 | 0.333333 | 16.0000 | 2.75

SELECT CAST(1 AS MONEY)/3, CAST(2 AS MONEY)/3, CAST(10 AS MONEY)*3, CAST(1.5 AS MONEY)*CAST(1.5 AS MONEY), $1.5+1
> 0.3333 | 0.6666 | 30.0000 | 2.2500 | 2.5000

SELECT 2147483647+1
! 8115 Arithmetic overflow error converting expression to data type int.

SELECT 2147483647, 2147483648, 4000000000, 99999999999, 0000000012, 12345678901234567890123
> 2147483647 | 2147483648 | 4000000000 | 99999999999 | 12 | 12345678901234567890123

SELECT CASE WHEN 2!<1 AND 1!>2 AND NOT 1!<2 AND 1!=2 AND 1<>2 THEN 'si' ELSE 'no' END
> si

SELECT 1/0
! 8134 Divide by zero error encountered.

SELECT 1.5/0, 5%0
! 8134

SELECT CASE WHEN 1=0 THEN 1/0 ELSE 5 END
> 5

SELECT '1'+'2', '1'+2, 'a'+NULL, 'x'+'y'+'z'
> 12 | 3 | NULL | xyz

SELECT 'a'+1
! 245 Conversion failed when converting the varchar value 'a' to data type int.

SELECT 1+CAST(2 AS BIT), CAST(5 AS BIT), CAST('true' AS BIT)
> 2 | 1 | 1

SELECT CAST(2.7 AS INT), CAST(-2.7 AS INT), CAST(CAST(2.7 AS MONEY) AS INT), CAST(2.5e0 AS INT), CAST('  12 ' AS INT), CAST('' AS INT)
> 2 | -2 | 3 | 2 | 12 | 0

SELECT CAST('1.5' AS INT)
! 245 Conversion failed when converting the varchar value '1.5' to data type int.

SELECT CAST('9999999999' AS INT)
! 248 The conversion of the varchar value '9999999999' overflowed an int column.

SELECT CAST(300 AS TINYINT)
! 220 Arithmetic overflow error for data type tinyint, value = 300.

SELECT CAST('abc' AS MONEY)
! 235 Cannot convert a char value to money. The char value has incorrect syntax.

SELECT CAST('abc' AS NUMERIC(5,2))
! 8114 Error converting data type varchar to numeric.

SELECT CAST(1234.5 AS NUMERIC(5,2))
! 8115 Arithmetic overflow error converting numeric to data type numeric.

SELECT CAST('$1,234.567' AS MONEY), CAST(12.345 AS NUMERIC(18,2)), CAST(-12.345 AS NUMERIC(18,2)), CAST(1e3 AS NUMERIC(10,1))
> 1234.5670 | 12.35 | -12.35 | 1000.0

SELECT CAST(12.5 AS VARCHAR(10)), CAST(CAST(12.345 AS MONEY) AS VARCHAR(10)), CONVERT(VARCHAR(20),CAST(1234567.891 AS MONEY),1), CONVERT(VARCHAR(20),CAST(12.3456 AS MONEY),2), CAST(1.5e0 AS VARCHAR(10)), CAST(1e10 AS VARCHAR(20))
> 12.5 | 12.35 | 1,234,567.89 | 12.3456 | 1.5 | 1e+010

SELECT CAST(12345 AS VARCHAR(3)), CAST('abcdef' AS VARCHAR(3)), CAST('ab' AS CHAR(4))+'|', CAST(N'ñandú' AS NVARCHAR(10))
> * | abc | ab  | | ñandú

SELECT CAST(123456789012345678901234567890 AS NUMERIC(38,0)), 12345678901234567890*1000
> 123456789012345678901234567890 | 12345678901234567890000

SELECT CASE WHEN 12345678901234567890 > 12345678901234567889 THEN 'si' ELSE 'no' END
> si

SELECT ISNULL(CAST(NULL AS VARCHAR(2)),'abc'), COALESCE(NULL,NULL,'abc'), ISNULL(NULL,5), NULLIF(1,1), NULLIF(1,2), NULLIF('a','A')
> ab | abc | 5 | NULL | 1 | NULL

SELECT ISNULL(CAST(NULL AS INT),2.7), COALESCE(CAST(NULL AS INT),2.7)
> 2 | 2.7

SELECT CASE 'e' WHEN 'E' THEN 'Efectivo' ELSE 'Otro' END, CASE WHEN NULL=NULL THEN 1 ELSE 0 END, CASE 2 WHEN 1 THEN 'a' WHEN 2 THEN 'b' END, CASE 3 WHEN 1 THEN 'a' END
> Efectivo | 0 | b | NULL

SELECT CASE WHEN 1=1 THEN 1 ELSE 2.5 END, CASE WHEN 1=0 THEN 1 ELSE CAST(2 AS MONEY) END
> 1.0 | 2.0000

SELECT LEN('abc  '), LEN('  abc'), LEN(''), DATALENGTH('abc  '), DATALENGTH(N'abc'), LEN(NULL)
> 3 | 5 | 0 | 5 | 6 | NULL

SELECT LEFT('abcdef',2), RIGHT('abcdef',2), SUBSTRING('abcdef',3,2), SUBSTRING('abc',0,2), SUBSTRING('abc',-1,3), SUBSTRING('abc',2,100), RIGHT('ab',5)
> ab | ef | cd | a | a | bc | ab

SELECT LEFT('abc',-1)
! 536

SELECT CHARINDEX('B','abcabc'), CHARINDEX('b','abcabc',3), CHARINDEX('z','abc'), PATINDEX('%[0-9]%','abc5d'), PATINDEX('a%','xa'), PATINDEX('%c','abc')
> 2 | 5 | 0 | 4 | 0 | 3

SELECT REPLACE('ABCabc','b','-'), REPLICATE('ab',3), SPACE(2)+'x', REVERSE('abc'), STUFF('abcdef',2,3,'XY'), LTRIM('  a '), RTRIM(' a  ')+'|', UPPER('ñandú'), LOWER('ÑANDÚ')
> A-Ca-c | ababab |   x | cba | aXYef | a  |  a| | ÑANDÚ | ñandú

SELECT ASCII('A'), CHAR(65), UNICODE(N'ñ'), NCHAR(241), STR(123.456,8,2), STR(5), STR(12345,3), QUOTENAME('a]b')
> 65 | A | 241 | ñ |   123.46 |          5 | *** | [a]]b]

SELECT ABS(-5), CEILING(1.2), FLOOR(-1.2), ROUND(12.345,2), ROUND(12.345,2,1), ROUND(-2.5,0), ROUND(1250,-2), SIGN(-3), POWER(2,10), SQRT(16), SQUARE(3)
> 5 | 2 | -2 | 12.350 | 12.340 | -3.0 | 1300 | -1 | 1024 | 4 | 9

SELECT ROUND(CAST(2.345 AS MONEY),2), ROUND(CAST(-2.345 AS MONEY),2), CEILING(CAST(1.2 AS MONEY)), ROUND(2.5e0,0)
> 2.3500 | -2.3500 | 2.0000 | 3

SELECT ROUND(748.58,-3)
! 8115 Arithmetic overflow error converting numeric to data type numeric.

SELECT ISNUMERIC('12.5'), ISNUMERIC('abc'), ISNUMERIC('$5'), ISNUMERIC(''), ISDATE('14/11/2026'), ISDATE('31/02/2026'), ISDATE('x')
> 1 | 0 | 1 | 0 | 1 | 0 | 0

SELECT SQRT(-1)
! 3623 An invalid floating point operation occurred.

SELECT 0x41, CAST('AB' AS VARBINARY(4)), CAST(0x4142 AS VARCHAR(4)), CAST(1 AS BINARY(4)), CAST(0x0102 AS INT)
> 0x41 | 0x4142 | AB | 0x00000001 | 258

SELECT N'a' + 'b', 'It''s', "x" FROM (SELECT 1 AS x) AS t
> ab | It's | 1

SELECT NO_EXISTE(1)
! 195 'NO_EXISTE' is not a recognized built-in function name.

SELECT dbo.NoExiste(1)
! 4121

SELECT LEN()
! 174 The len function requires 1 argument(s).

SELECT DB_NAME(), @@TRANCOUNT, @@ERROR
> central | 0 | 174

SELECT 1 WHERE 'abc' = 'ABC  ' AND 'acción' <> 'accion' AND 'Ñ' = 'ñ' AND NOT 'a' = 'b'
> 1

SELECT 1 WHERE 'abc' LIKE 'A%' AND 'abc' LIKE '_b_' AND 'abc' LIKE '[a-c]bc' AND 'abc' NOT LIKE '[^a]%' AND '50%' LIKE '50!%' ESCAPE '!' AND 123 LIKE '12%'
> 1

SELECT 1 WHERE 5 BETWEEN 1 AND 5 AND 5 NOT BETWEEN 6 AND 9 AND 5 IN (1,5) AND 5 NOT IN (1,2) AND NULL IS NULL AND 1 IS NOT NULL AND 'b' BETWEEN 'A' AND 'C'
> 1

SELECT 1 WHERE 5 NOT IN (1,NULL)
> (nothing)

SELECT 1 WHERE 1=1 AND 1=0 OR 1=1
> 1

SELECT 1 WHERE NOT 1=0 AND 1=1
> 1

SELECT 1 WHERE '10' = 10 AND '1.50' = 1.5 AND CAST(1.5 AS MONEY) = 1.50 AND 1 = 1e0
> 1

SELECT 1 WHERE 'x' = 5
! 245

SELECT 1 WHERE 5
! 4145 An expression of non-boolean type specified in a context where a condition is expected, near '5'.

SELECT 5 AS a, a = 6, 'b' = 7, 8 b2, 9 AS 'c d', [e f] = 10
> 5 | 6 | 7 | 8 | 9 | 10

SELECT /* a /* nested */ comment */ 1 -- and one to the end
> 1

-- Nothing divided by zero is nothing
SELECT CAST(NULL AS MONEY)/0, CAST(NULL AS INT)%0, CAST(NULL AS FLOAT)/0, CAST(NULL AS NUMERIC(5,2))/0, 0/CAST(NULL AS INT)
> NULL | NULL | NULL | NULL | NULL

SELECT 7/2, -7/2, 7%3, -7%3, 7/2.0, CAST(7 AS FLOAT)/2, CAST(7 AS MONEY)/2, CAST('0.0001' AS MONEY)/2
> 3 | -3 | 1 | -1 | 3.500000 | 3.5 | 3.5000 | 0.0000
