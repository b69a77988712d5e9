// Errors made by name say the server's number, state and words.

#include <array>

#include <gtest/gtest.h>

#include "tsql/valores/error_sql.h"

namespace quimo::tsql {

namespace {

struct Caso {
    ErrorSql error;
    int nativo;
    const char* sqlstate;
    const char* mensaje;
};
class ErroresTest : public testing::TestWithParam<Caso> {};

TEST_P(ErroresTest, DiceLoDelServidor) {
    const Caso& caso = GetParam();
    EXPECT_EQ(caso.error.nativo, caso.nativo);
    EXPECT_EQ(caso.error.sqlstate, caso.sqlstate);
    EXPECT_EQ(caso.error.mensaje, caso.mensaje);
    EXPECT_EQ(caso.error.severidad, 16);
}

INSTANTIATE_TEST_SUITE_P(
    Errores, ErroresTest,
    testing::ValuesIn(std::vector<Caso>{
        {SintaxisIncorrecta("x", " (line 1, column 2)"), 102, "42000",
         "Incorrect syntax near 'x'. (line 1, column 2)"},
        {SintaxisIncorrecta("*"), 102, "42000", "Incorrect syntax near '*'."},
        {ComentarioSinCerrar(), 113, "42000", "Missing end comment mark '*/'."},
        {AgregadoDentroDeAgregado(), 130, "42000",
         "Cannot perform an aggregate function on an expression containing an aggregate or a "
         "subquery."},
        {AgregadoEnGrupo(), 144, "42000",
         "Cannot use an aggregate or a subquery in an expression used for the group by list of a "
         "GROUP BY clause."},
        {GrupoSinColumna(), 164, "42000",
         "Each GROUP BY expression must contain at least one column that is not an outer "
         "reference."},
        {RealFueraDeRango("1e999"), 168, "22003",
         "The floating point value '1e999' is out of the range of computer representation (8 "
         "bytes)."},
        {FuncionDesconocida("NADA"), 195, "42000",
         "'NADA' is not a recognized built-in function name."},
        {ColumnaDesconocida("a"), 207, "42S22", "Invalid column name 'a'."},
        {ObjetoDesconocido("dbo.t"), 208, "42S02", "Invalid object name 'dbo.t'."},
        {SinTablaQueListar(), 263, "42000", "Must specify table to select from."},
        {ArgumentosInsuficientes("dbo.f"), 313, "42000",
         "An insufficient number of arguments were supplied for the procedure or function dbo.f."},
        {EscapeInvalido("!!"), 506, "42000",
         "The invalid escape character \"!!\" was specified in a LIKE predicate."},
        {ColumnaSinNulos("a", "dbo.t", "INSERT"), 515, "23000",
         "Cannot insert the value NULL into column 'a', table 'dbo.t'; column does not allow "
         "nulls. INSERT fails."},
        {NumeroFueraDeRango("1"), 1007, "42000",
         "The number '1' is out of the range for numeric representation (maximum precision 38)."},
        {CoalesceSinTipo(), 4127, "42000",
         "At least one of the arguments to COALESCE must be an expression that is not the NULL "
         "constant."},
        {DivisionEntreCero(), 8134, "22012", "Divide by zero error encountered."},
        {TextoRecortado(), 8152, "22001", "String or binary data would be truncated."},
        {ParametrosDeMenos("2", "1"), 8178, "07002",
         "The statement uses 2 parameter markers and 1 parameters were supplied."},
    }));

TEST(ErroresTest, UnArgumentoNoEsPlantilla) {
    EXPECT_EQ(ConversionFallida("varchar", "100%3 %1", "int").mensaje,
              "Conversion failed when converting the varchar value '100%3 %1' to data type int.");
    EXPECT_EQ(SintaxisIncorrecta("%2", " (line 1, column 1)").mensaje,
              "Incorrect syntax near '%2'. (line 1, column 1)");
}

TEST(ErroresTest, SoloAlgunosDejanSeguirElLote) {
    EXPECT_TRUE(ColumnaDesconocida("a").AbortaLote());
    EXPECT_TRUE(ConversionFallida("varchar", "x", "int").AbortaLote());
    EXPECT_FALSE(DivisionEntreCero().AbortaLote());
    EXPECT_FALSE(ColumnaSinNulos("a", "t", "INSERT").AbortaLote());
    ErrorSql grave = DivisionEntreCero();
    grave.severidad = 20;
    EXPECT_TRUE(grave.AbortaLote());
}

}  // namespace

}  // namespace quimo::tsql
