#include <algorithm>
#include <array>

#include "tsql/lectura/lexer.h"
#include "tsql/valores/texto.h"

namespace quimo::tsql {

namespace {

/// In the order of the alphabet.
constexpr std::string_view kPalabras =
    "ADD ALL ALTER AND ANY AS ASC AUTHORIZATION BACKUP BEGIN BETWEEN BREAK BROWSE BULK BY "
    "CASCADE CASE CHECK CHECKPOINT CLOSE CLUSTERED COALESCE COLLATE COLUMN COMMIT COMPUTE "
    "CONSTRAINT CONTAINS CONTINUE CONVERT CREATE CROSS CURRENT CURRENT_DATE CURRENT_TIME "
    "CURRENT_TIMESTAMP CURRENT_USER CURSOR DATABASE DBCC DEALLOCATE DECLARE DEFAULT DELETE DENY "
    "DESC DISTINCT DISTRIBUTED DROP ELSE END ERRLVL ESCAPE EXCEPT EXEC EXECUTE EXISTS EXIT "
    "EXTERNAL FETCH FILE FILLFACTOR FOR FOREIGN FREETEXT FROM FULL FUNCTION GOTO GRANT GROUP "
    "HAVING HOLDLOCK IDENTITY IDENTITY_INSERT IF IN INDEX INNER INSERT INTERSECT INTO IS JOIN "
    "KEY KILL LEFT LIKE LINENO LOAD MERGE NATIONAL NOCHECK NONCLUSTERED NOT NULL NULLIF OF OFF "
    "OFFSETS ON OPEN OPENQUERY OPTION OR ORDER OUTER OVER PERCENT PIVOT PLAN PRIMARY PRINT PROC "
    "PROCEDURE PUBLIC RAISERROR READ RECONFIGURE REFERENCES REPLICATION RESTORE RESTRICT RETURN "
    "REVERT REVOKE RIGHT ROLLBACK ROWCOUNT ROWGUIDCOL RULE SAVE SCHEMA SELECT SESSION_USER SET "
    "SETUSER SHUTDOWN SOME STATISTICS SYSTEM_USER TABLE TABLESAMPLE THEN TO TOP TRAN TRANSACTION "
    "TRIGGER TRUNCATE TSEQUAL UNION UNIQUE UNPIVOT UPDATE USE USER VALUES VARYING VIEW WAITFOR "
    "WHEN WHERE WHILE WITH WRITETEXT";

constexpr auto kCuantas = std::count(kPalabras.begin(), kPalabras.end(), ' ') + 1;
constexpr auto kReservadas = [] {
    std::array<std::string_view, kCuantas> palabras{};
    std::string_view resto = kPalabras;
    for (std::string_view& palabra : palabras) {
        palabra = resto.substr(0, resto.find(' '));
        resto.remove_prefix(std::min(palabra.size() + 1, resto.size()));
    }
    return palabras;
}();
static_assert(std::is_sorted(kReservadas.begin(), kReservadas.end()));

}  // namespace

bool EsReservada(std::string_view palabra) {
    constexpr std::size_t kLargoMaximo = 20;
    if (palabra.size() > kLargoMaximo) return false;
    const std::string mayusculas = AMayusculas(palabra);
    return std::binary_search(kReservadas.begin(), kReservadas.end(), mayusculas);
}

}  // namespace quimo::tsql
