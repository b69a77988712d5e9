#include "tsql/error_sql.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace quimo::tsql {

namespace {

struct Plantilla {
    int nativo;
    std::string_view sqlstate;
    std::string_view texto;
};

constexpr auto kPlantillas = std::to_array<Plantilla>({
    {102, "42000", "Incorrect syntax near '%1'.%2"},
    {105, "42000", "Unclosed quotation mark after the character string '%1'."},
    {107, "42000",
     "The column prefix '%1' does not match with a table name or alias name used in the "
     "query."},
    {108, "42000",
     "The ORDER BY position number %1 is out of range of the number of items in the "
     "select list."},
    {109, "21S01",
     "There are more columns in the INSERT statement than values specified in the VALUES "
     "clause. The number of values in the VALUES clause must match the number of columns "
     "specified in the INSERT statement."},
    {110, "21S01",
     "There are fewer columns in the INSERT statement than values specified in the VALUES "
     "clause. The number of values in the VALUES clause must match the number of columns "
     "specified in the INSERT statement."},
    {116, "42000",
     "Only one expression can be specified in the select list when the subquery is not "
     "introduced with EXISTS."},
    {120, "42000",
     "The select list for the INSERT statement contains fewer items than the insert list. "
     "The number of SELECT values must match the number of INSERT columns."},
    {121, "42000",
     "The select list for the INSERT statement contains more items than the insert list. "
     "The number of SELECT values must match the number of INSERT columns."},
    {134, "42000",
     "The variable name '%1' has already been declared. Variable names must be unique "
     "within a query batch or stored procedure."},
    {135, "42000", "Cannot use a BREAK statement outside the scope of a WHILE statement."},
    {136, "42000", "Cannot use a CONTINUE statement outside the scope of a WHILE statement."},
    {137, "42000", "Must declare the scalar variable \"%1\"."},
    {141, "42000",
     "A SELECT statement that assigns a value to a variable must not be combined with "
     "data-retrieval operations."},
    {145, "42000",
     "ORDER BY items must appear in the select list if SELECT DISTINCT is specified."},
    {147, "42000",
     "An aggregate may not appear in the WHERE clause unless it is in a subquery contained "
     "in a HAVING clause or a select list, and the column being aggregated is an outer "
     "reference."},
    {155, "42000", "'%1' is not a recognized %2 option."},
    {156, "42000", "Incorrect syntax near the keyword '%1'.%2"},
    {157, "42000", "An aggregate may not appear in the set list of an UPDATE statement."},
    {174, "42000", "The %1 function requires %2 argument(s)."},
    {178, "42000", "A RETURN statement with a return value cannot be used in this context."},
    {189, "42000", "The %1 function requires %2 arguments."},
    {191, "42000",
     "Some part of your SQL statement is nested too deeply. Rewrite the query or break it "
     "up into smaller queries."},
    {195, "42000", "'%1' is not a recognized %2."},
    {201, "42000", "Procedure or function '%1' expects parameter '%2', which was not supplied."},
    {205, "42000",
     "All queries combined using a UNION, INTERSECT or EXCEPT operator must have an equal "
     "number of expressions in their target lists."},
    {206, "42000", "Operand type clash: %1 is incompatible with %2"},
    {207, "42S22", "Invalid column name '%1'."},
    {208, "42S02", "Invalid object name '%1'."},
    {209, "42000", "Ambiguous column name '%1'."},
    {213, "21S01", "Column name or number of supplied values does not match table definition."},
    {217, "42000",
     "Maximum stored procedure, function, trigger, or view nesting level exceeded (limit "
     "%1)."},
    {220, "22003", "Arithmetic overflow error for data type %1, value = %2."},
    {232, "22003", "Arithmetic overflow error for type %1, value = %2."},
    {234, "22003", "There is insufficient result space to convert a money value to %1."},
    {235, "22018", "Cannot convert a char value to money. The char value has incorrect syntax."},
    {237, "22003", "There is insufficient result space to convert a money value to %1."},
    {241, "22007", "Conversion failed when converting date and/or time from character string."},
    {242, "22007",
     "The conversion of a %1 data type to a %2 data type resulted in an out-of-range "
     "value."},
    {244, "22003",
     "The conversion of the %1 value '%2' overflowed an %3 column. Use a larger integer "
     "column."},
    {245, "22018", "Conversion failed when converting the %1 value '%2' to data type %3."},
    {248, "22003", "The conversion of the %1 value '%2' overflowed an int column."},
    {257, "42000",
     "Implicit conversion from data type %1 to %2 is not allowed. Use the CONVERT function "
     "to run this query."},
    {264, "42000",
     "The column name '%1' is specified more than once in the SET clause or column list of "
     "an INSERT. A column cannot be assigned more than one value in the same clause."},
    {266, "25000",
     "Transaction count after EXECUTE indicates a mismatching number of BEGIN and COMMIT "
     "statements. Previous count = %1, current count = %2."},
    {271, "42000",
     "The column \"%1\" cannot be modified because it is either a computed column or is "
     "the result of a UNION operator."},
    {281, "42000", "%1 is not a valid style number when converting from %2 to a %3."},
    {402, "42000", "The data types %1 and %2 are incompatible in the %3 operator."},
    {512, "21000",
     "Subquery returned more than 1 value. This is not permitted when the subquery "
     "follows =, !=, <, <= , >, >= or when the subquery is used as an expression."},
    {515, "23000",
     "Cannot insert the value NULL into column '%1', table '%2'; column does not allow "
     "nulls. %3 fails."},
    {517, "22007", "Adding a value to a '%1' column caused an overflow."},
    {535, "22003",
     "The datediff function resulted in an overflow. The number of dateparts separating "
     "two date/time instances is too large. Try to use datediff with a less precise "
     "datepart."},
    {536, "42000", "Invalid length parameter passed to the %1 function."},
    {537, "42000", "Invalid length parameter passed to the LEFT or SUBSTRING function."},
    {544, "23000",
     "Cannot insert explicit value for identity column in table '%1' when IDENTITY_INSERT "
     "is set to OFF."},
    {545, "23000",
     "Explicit value must be specified for identity column in table '%1' either when "
     "IDENTITY_INSERT is set to ON or when a replication user is inserting into a NOT FOR "
     "REPLICATION identity column."},
    {911, "08004", "Database '%1' does not exist. Make sure that the name is entered correctly."},
    {1013, "42000",
     "The objects \"%1\" and \"%2\" in the FROM clause have the same exposed names. Use "
     "correlation names to distinguish them."},
    {1023, "42000", "Invalid parameter %1 specified for %2."},
    {1205, "40001",
     "Transaction was deadlocked on lock resources with another process and has been "
     "chosen as the deadlock victim. Rerun the transaction."},
    {1223, "42000",
     "Cannot release the application lock (Database Principal: 'public', Resource: '%1') because "
     "it "
     "is not currently held."},
    {1222, "HYT00", "Lock request time out period exceeded."},
    {1750, "42000", "Could not create constraint or index. See previous errors."},
    {1767, "42000", "Foreign key '%1' references invalid table '%2'."},
    {1769, "42000", "Foreign key '%1' references invalid column '%2' in referencing table '%3'."},
    {1770, "42000", "Foreign key '%1' references invalid column '%2' in referenced table '%3'."},
    {1776, "42000",
     "There are no primary or candidate keys in the referenced table '%1' that match the "
     "referencing column list in the foreign key '%2'."},
    {1779, "42000", "Table '%1' already has a primary key defined on it."},
    {1505, "23000",
     "The CREATE UNIQUE INDEX statement terminated because a duplicate key was found for "
     "the object name '%1' and the index name '%2'."},
    {1911, "42S22", "Column name '%1' does not exist in the target table or view."},
    {1913, "42S11",
     "The operation failed because an index or statistics with name '%1' already exists on "
     "table '%2'."},
    {2010, "42000", "Cannot perform alter on '%1' because it is an incompatible object type."},
    {2528, "42000", "%1"},
    {2601, "23000", "Cannot insert duplicate key row in object '%1' with unique index '%2'."},
    {2627, "23000", "Violation of %1 constraint '%2'. Cannot insert duplicate key in object '%3'."},
    {2705, "42S21",
     "Column names in each table must be unique. Column name '%1' in table '%2' is "
     "specified more than once."},
    {2714, "42S01", "There is already an object named '%1' in the database."},
    {2715, "42000", "Column, parameter, or variable: Cannot find data type %1."},
    {2739, "42000", "The text, ntext, and image data types are invalid for local variables."},
    {2744, "42000",
     "Multiple identity columns specified for table '%1'. Only one identity column per "
     "table is allowed."},
    {2750, "42000",
     "Column or parameter: Specified column precision %1 is greater than "
     "the maximum precision of 38."},
    {2751, "42000",
     "Column or parameter: Specified column scale %1 is greater than the specified "
     "precision of %2."},
    {2812, "42000", "Could not find stored procedure '%1'."},
    {3701, "42S02",
     "Cannot drop the %1 '%2', because it does not exist or you do not have permission."},
    {3621, "01000", "The statement has been terminated."},
    {3623, "42000", "An invalid floating point operation occurred."},
    {3705, "42000", "Cannot use DROP %1 with '%2' because '%2' is a %3. Use DROP %3."},
    {3726, "42000",
     "Could not drop object '%1' because it is referenced by a FOREIGN KEY constraint."},
    {3728, "42000", "'%1' is not a constraint."},
    {3902, "25000", "The COMMIT TRANSACTION request has no corresponding BEGIN TRANSACTION."},
    {3903, "25000", "The ROLLBACK TRANSACTION request has no corresponding BEGIN TRANSACTION."},
    {3915, "42000", "Cannot use the ROLLBACK statement within an INSERT-EXEC statement."},
    {3916, "42000",
     "Cannot use the COMMIT statement within an INSERT-EXEC statement unless BEGIN TRANSACTION is "
     "used first."},
    {3998, "HY000",
     "Uncommittable transaction is detected at the end of the batch. The transaction is rolled "
     "back."},
    {3914, "42000", "The data type \"%1\" is invalid for transaction names or savepoint names."},
    {4060, "08004", "Cannot open database \"%1\" requested by the login. The login failed."},
    {4104, "42000", "The multi-part identifier \"%1\" could not be bound."},
    {4121, "42000",
     "Cannot find either column \"%1\" or the user-defined function or aggregate \"%2\", "
     "or the name is ambiguous."},
    {4145, "42000",
     "An expression of non-boolean type specified in a context where a condition is "
     "expected, near '%1'."},
    {4406, "42000",
     "Update or insert of view or function '%1' failed because it contains a derived or "
     "constant field."},
    {4701, "42S02",
     "Cannot find the object \"%1\" because it does not exist or you do not have "
     "permissions."},
    {4712, "42000",
     "Cannot truncate table '%1' because it is being referenced by a FOREIGN KEY "
     "constraint."},
    {4901, "42000",
     "ALTER TABLE only allows columns to be added that can contain nulls, or have a "
     "DEFAULT definition specified. Column '%1' cannot be added to non-empty table '%2' "
     "because it does not satisfy these conditions."},
    {4902, "42S02",
     "Cannot find the object \"%1\" because it does not exist or you do not have "
     "permissions."},
    {4922, "42000", "%1 failed because one or more objects access this column."},
    {4924, "42S22", "ALTER TABLE %1 failed because column '%2' does not exist in table '%3'."},
    {5074, "42000", "The %1 '%2' is dependent on column '%3'."},
    {6401, "42000", "Cannot roll back %1. No transaction or savepoint of that name was found."},
    {8101, "23000",
     "An explicit value for the identity column in table '%1' can only be specified when a "
     "column list is used and IDENTITY_INSERT is ON."},
    {8102, "42000", "Cannot update identity column '%1'."},
    {8106, "42000",
     "Table '%1' does not have the identity property. Cannot perform SET operation."},
    {8107, "42000",
     "IDENTITY_INSERT is already ON for table '%1'. Cannot perform SET operation for table "
     "'%2'."},
    {8110, "42000", "Cannot add multiple PRIMARY KEY constraints to table '%1'."},
    {8111, "42000", "Cannot define PRIMARY KEY constraint on nullable column in table '%1'."},
    {8114, "22018", "Error converting data type %1 to %2."},
    {8115, "22003", "Arithmetic overflow error converting %1 to data type %2."},
    {8116, "42000", "Argument data type %1 is invalid for argument %2 of %3 function."},
    {8117, "42000", "Operand data type %1 is invalid for %2 operator."},
    {8120, "42000",
     "Column '%1' is invalid in the %2 because it is not contained in either an aggregate "
     "function or the GROUP BY clause."},
    {8133, "42000", "None of the result expressions in a CASE specification can be NULL."},
    {8134, "22012", "Divide by zero error encountered."},
    {8143, "42000", "Parameter '%1' was supplied multiple times."},
    {8144, "42000", "Procedure or function %1 has too many arguments specified."},
    {8145, "42000", "%1 is not a parameter for procedure %2."},
    {8152, "22001", "String or binary data would be truncated."},
    {8155, "42000", "No column name was specified for column %1 of '%2'."},
    {8156, "42000", "The column '%1' was specified multiple times for '%2'."},
    {8158, "42000", "'%1' has more columns than were specified in the column list."},
    {8159, "42000", "'%1' has fewer columns than were specified in the column list."},
    {8162, "42000",
     "The formal parameter \"%1\" was not declared as an OUTPUT parameter, but the actual "
     "parameter passed in requested output."},
    {8169, "22018",
     "Conversion failed when converting from a character string to uniqueidentifier."},
    {8178, "07002", "The statement uses %1 parameter markers and %2 parameters were supplied."},
    {9002, "HY000",
     "The transaction log for database '%1' is full. To find out why space in the log "
     "cannot be reused, see the log_reuse_wait_desc column in sys.databases"},
    {50000, "42000", "%1"},
});

void Reemplazar(std::string& texto, const std::string& marca, const std::string& valor) {
    for (auto donde = texto.find(marca); donde != std::string::npos;
         donde = texto.find(marca, donde + valor.size())) {
        texto.replace(donde, marca.size(), valor);
    }
}

}  // namespace

bool ErrorSql::AbortaLote() const {
    // Failures of one statement: those of its rows and values that are not conversions.
    constexpr std::array kSoloSentencia = {201,  220,  232,  512,  515,  517,  544,   545,
                                           547,  2601, 2627, 2714, 2812, 3701, 3902,  3903,
                                           6401, 8115, 8134, 8144, 8145, 8152, 50000, 535,
                                           537,  536,  3726, 4712, 8106, 8107, 8101,  266};
    return severidad > 18 ||
           std::find(kSoloSentencia.begin(), kSoloSentencia.end(), nativo) == kSoloSentencia.end();
}

ErrorSql CrearError(int nativo, const std::string& uno, const std::string& dos,
                    const std::string& tres) {
    const auto* plantilla =
        std::find_if(kPlantillas.begin(), kPlantillas.end(),
                     [nativo](const Plantilla& p) { return p.nativo == nativo; });
    QUIMO_CHECK(plantilla != kPlantillas.end());
    ErrorSql error;
    error.nativo = nativo;
    error.sqlstate = plantilla->sqlstate;
    error.mensaje = plantilla->texto;
    Reemplazar(error.mensaje, "%1", uno);
    Reemplazar(error.mensaje, "%2", dos);
    Reemplazar(error.mensaje, "%3", tres);
    return error;
}

ErrorSql SintaxisIncorrecta(const std::string& palabra, const std::string& lugar) {
    return CrearError(102, palabra, lugar);
}
ErrorSql DemasiadoAnidado() { return CrearError(191); }
ErrorSql ObjetoDesconocido(const std::string& nombre) { return CrearError(208, nombre); }
ErrorSql VariableSinDeclarar(const std::string& nombre) { return CrearError(137, nombre); }
ErrorSql ParametrosDeMenos(const std::string& marcas, const std::string& dados) {
    return CrearError(8178, marcas, dados);
}
ErrorSql ParametrosDeMas(const std::string& funcion) { return CrearError(8144, funcion); }
ErrorSql ParametroInvalido(const std::string& cual, const std::string& funcion) {
    return CrearError(1023, cual, funcion);
}
ErrorSql ConversionImplicitaProhibida(const std::string& de, const std::string& a) {
    return CrearError(257, de, a);
}
ErrorSql ConversionImposible(const std::string& de, const std::string& a) {
    return CrearError(8114, de, a);
}
ErrorSql Desbordamiento(const std::string& de, const std::string& a) {
    return CrearError(8115, de, a);
}
ErrorSql TextoRecortado() { return CrearError(8152); }
ErrorSql ColumnaSinNulos(const std::string& columna, const std::string& tabla,
                         const std::string& verbo) {
    return CrearError(515, columna, tabla, verbo);
}

}  // namespace quimo::tsql
