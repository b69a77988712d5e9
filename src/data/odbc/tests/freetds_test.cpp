// The way to SQL Server with a real driver, FreeTDS, and a server on loopback that speaks the
// protocol: values of every type, long texts, errors, messages, logins, lost connections.

#include <QDateTime>
#include <QElapsedTimer>
#include <QUuid>

#include "apoyo_odbc.h"

namespace quimo::data::odbc {

namespace {

QString U(const char* texto) { return QString::fromUtf8(texto); }

class FreeTdsTest : public testing::Test {
protected:
    static void SetUpTestSuite() { PrepararControladores(); }
};

RespuestaSql UnConjunto(const QVector<Columna>& columnas, const QVector<Fila>& filas) {
    RespuestaSql respuesta;
    respuesta.resultados.append({Conjunto{columnas, filas}, -1});
    return respuesta;
}

RespuestaSql ConFallo(const QVector<ErrorProveedor>& errores) {
    RespuestaSql respuesta;
    respuesta.fallo = FalloSql{FalloSql::kSentencia, errores};
    return respuesta;
}

TEST_F(FreeTdsTest, CadaTipoLlegaEnteroYExacto) {
    const QVector<Columna> columnas = {
        {U("bit"), TipoSql::Bit},
        {U("tiny"), TipoSql::TinyInt},
        {U("small"), TipoSql::SmallInt},
        {U("int"), TipoSql::Int},
        {U("big"), TipoSql::BigInt},
        {U("dinero"), TipoSql::Money},
        {U("poco"), TipoSql::SmallMoney},
        {U("decimal"), TipoSql::Numeric, 0, 38, 10},
        {U("corto"), TipoSql::Numeric, 0, 5, 4},
        {U("real"), TipoSql::Float},
        {U("fecha"), TipoSql::DateTime},
        {U("minuto"), TipoSql::SmallDateTime},
        {U("fijo"), TipoSql::Char, 5},
        {U("texto"), TipoSql::VarChar, 50},
        {U("ancho"), TipoSql::NVarChar, 50},
        {U("Contraseña"), TipoSql::NChar, 2},
        {U("guid"), TipoSql::UniqueIdentifier},
        {U("bytes"), TipoSql::VarBinary, 10},
        {{}, TipoSql::Int},
    };
    const auto dinero = [](qint64 d) {
        return QVariant::fromValue(base::Dinero::DeDiezmilesimas(d));
    };
    const auto decimal = [](const char* texto) {
        return QVariant::fromValue(*base::Decimal::DeTexto(texto));
    };
    const auto fecha = [](QDate dia, QTime hora) {
        return QVariant(QDateTime(dia, hora, Qt::UTC));
    };
    const QVector<Fila> filas = {
        {true, 255, -32768, -7, QVariant(qlonglong{9'000'000'000'000'001}), dinero(-1),
         dinero(-12345), decimal("1234567890123456789012345678.0123456789"), decimal("-0.0001"),
         1.5, fecha({2026, 11, 14}, {21, 36, 8, 3}), fecha({2026, 11, 14}, {21, 36}), U("ab   "),
         U("Ñandú 'y' ¿%? – €"), U("añejo 🍷 € 漢"), U("ñé"),
         QUuid(U("6F9619FF-8B86-D011-B42D-00C04FC964FF")), QByteArray("\x00\x01z", 3), 0},
        {false, 0, 0, 2147483647, QVariant(qlonglong{-1}),
         dinero(std::numeric_limits<qint64>::max()), dinero(5), decimal("0.0000000000"),
         decimal("9.9999"), -0.1, fecha({1900, 1, 1}, {0, 0}), fecha({1999, 12, 31}, {23, 59}),
         U("     "), U(""), U(""), U("  "), QUuid(), QByteArray(""), 1},
        Fila(19),
        {true, 1, 1, 1, QVariant(qlonglong{1}), dinero(-std::numeric_limits<qint64>::max()),
         dinero(99), decimal("-9999999999999999999999999999.9999999999"), decimal("0.5000"), 1e300,
         fecha({9999, 12, 31}, {23, 59, 59, 997}), fecha({2079, 6, 6}, {0, 0}), U("x    "),
         QString(50, u'ñ'), QString(50, u'漢'), U("ab"), QUuid(), QByteArray(10, 'z'), 2},
    };
    const RespuestaSql dicha = UnConjunto(columnas, filas);
    const ServidorTds servidor(Siempre(dicha));
    const auto conexion = AbrirEn(servidor);
    ASSERT_NE(conexion, nullptr);
    const RespuestaSql leida = conexion->Ejecutar(U("SELECT * FROM T"));
    EXPECT_EQ(Escrito(leida), Escrito(dicha));
    ASSERT_EQ(leida.resultados.size(), 1);
    for (qsizetype i = 0; i < columnas.size(); ++i) {
        const Columna& columna = leida.resultados[0].conjunto->columnas[i];
        // This driver does not tell the small kinds of money and date from the others.
        const TipoSql dicho = columnas[i].tipo == TipoSql::SmallMoney      ? TipoSql::Money
                              : columnas[i].tipo == TipoSql::SmallDateTime ? TipoSql::DateTime
                                                                           : columnas[i].tipo;
        EXPECT_EQ(static_cast<int>(columna.tipo), static_cast<int>(dicho))
            << columnas[i].nombre.toStdString();
        EXPECT_EQ(columna.escala,
                  columnas[i].tipo == TipoSql::Numeric ? columnas[i].escala : columna.escala);
    }
}

TEST_F(FreeTdsTest, TextosLargosLleganEnteros) {
    // Odd places of surrogate pairs against the sizes in which a text is read.
    QString largo = U("a");
    while (largo.size() < 100'000)
        largo += U("ñandú 🍷 café €; ");
    QByteArray bytes;
    for (int i = 0; i < 100'000; ++i)
        bytes.append(static_cast<char>(i * 7));
    const QString latino = QString(100'001, u'é');
    const RespuestaSql dicha =
        UnConjunto({{U("n"), TipoSql::NVarChar, -1},
                    {U("nt"), TipoSql::NText, -1},
                    {U("v"), TipoSql::VarChar, -1},
                    {U("t"), TipoSql::Text, -1},
                    {U("b"), TipoSql::VarBinary, -1},
                    {U("i"), TipoSql::Image, -1},
                    {U("fin"), TipoSql::Int}},
                   {{largo, largo.mid(1), latino, latino, bytes, bytes, 1},
                    Fila(7),
                    {U(""), U("x"), U(""), U("y"), QByteArray(""), QByteArray("z"), 2}});
    const ServidorTds servidor(Siempre(dicha));
    const auto conexion = AbrirEn(servidor);
    ASSERT_NE(conexion, nullptr);
    const RespuestaSql leida = conexion->Ejecutar(U("SELECT * FROM T"));
    ASSERT_EQ(leida.resultados.size(), 1) << Escrito(leida).left(500).toStdString();
    for (int f = 0; f < 3; ++f) {
        for (int c = 0; c < 7; ++c) {
            const QVariant& leido = leida.resultados[0].conjunto->filas[f][c];
            const QVariant& dicho = dicha.resultados[0].conjunto->filas[f][c];
            EXPECT_TRUE(Escrito(leido) == Escrito(dicho))
                << f << ' ' << c << ' ' << Escrito(leido).size() << ' ' << Escrito(dicho).size();
        }
    }
}

TEST_F(FreeTdsTest, VariosConjuntosMensajesYCuentas) {
    RespuestaSql dicha = UnConjunto({{U("a"), TipoSql::Int}}, {{1}, {2}});
    dicha.resultados.append({std::nullopt, 3});
    dicha.resultados.append({std::nullopt, 0});
    dicha.resultados.append({Conjunto{{{U("vacio"), TipoSql::Int}}, {}}, -1});
    dicha.resultados.append({Conjunto{{{U("b"), TipoSql::NVarChar, 10}}, {{U("x")}}}, -1});
    dicha.resultados.append({std::nullopt, 1});
    dicha.mensajes = {{U("01000"), 0, {}, U("Aviso con eñe y 🍷")}, {U("01000"), 0, {}, U("Dos")}};
    RespuestaSql esperada = dicha;
    for (ErrorProveedor& mensaje : esperada.mensajes)
        mensaje.descripcion.prepend(U("[Microsoft][ODBC SQL Server Driver][SQL Server]"));
    const ServidorTds servidor(Siempre(dicha));
    const auto conexion = AbrirEn(servidor);
    ASSERT_NE(conexion, nullptr);
    EXPECT_EQ(Escrito(conexion->Ejecutar(U("EXEC Todo"))), Escrito(esperada));
}

TEST_F(FreeTdsTest, SoloUnMensajeYNada) {
    RespuestaSql dicha;
    dicha.mensajes = {{U("01000"), 0, {}, U("Listo")}};
    const ServidorTds servidor(Siempre(dicha));
    const auto conexion = AbrirEn(servidor);
    ASSERT_NE(conexion, nullptr);
    const RespuestaSql leida = conexion->Ejecutar(U("PRINT 'Listo'"));
    ASSERT_EQ(leida.mensajes.size(), 1);
    EXPECT_EQ(leida.mensajes[0].descripcion.mid(47), U("Listo"));
    EXPECT_TRUE(leida.resultados.isEmpty());
    EXPECT_FALSE(leida.fallo.has_value());
    EXPECT_TRUE(conexion->Ejecutar(U("   ")).resultados.isEmpty());
}

struct CasoFallo {
    int nativo = 0;
    const char* dicho = nullptr;
    qint64 numero = 0;
    const char* leido = nullptr;
};
class FreeTdsFalloTest : public testing::TestWithParam<CasoFallo> {
protected:
    static void SetUpTestSuite() { PrepararControladores(); }
};

TEST_P(FreeTdsFalloTest, ElErrorDelServidorConservaNumeroYTexto) {
    const CasoFallo& caso = GetParam();
    RespuestaSql dicha = ConFallo({{{}, caso.nativo, {}, U(caso.dicho)},
                                   {{}, 3621, {}, U("The statement has been terminated.")}});
    dicha.resultados.append({std::nullopt, 2});
    dicha.mensajes = {{{}, 0, {}, U("antes")}};
    const ServidorTds servidor(Siempre(dicha));
    const auto conexion = AbrirEn(servidor);
    ASSERT_NE(conexion, nullptr);
    const RespuestaSql leida = conexion->Ejecutar(U("EXEC Falla"));
    ASSERT_TRUE(leida.fallo.has_value());
    EXPECT_EQ(leida.fallo->numero, caso.numero) << leida.fallo->errores[0].sqlstate.toStdString();
    EXPECT_EQ(leida.fallo->Nativo(), caso.nativo);
    EXPECT_EQ(leida.fallo->Descripcion().left(47),
              U("[Microsoft][ODBC SQL Server Driver][SQL Server]"));
    EXPECT_EQ(leida.fallo->Descripcion().mid(47), U(caso.leido));
    EXPECT_EQ(leida.resultados.size(), 1);
    EXPECT_FALSE(leida.mensajes.isEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    FreeTds, FreeTdsFalloTest,
    testing::Values(
        CasoFallo{547,
                  "The DELETE statement conflicted with the REFERENCE constraint \"FK_P\". The "
                  "conflict occurred in database \"central\", table \"dbo.Productos\", column "
                  "'ID'.",
                  FalloSql::kIntegridad,
                  "The DELETE statement conflicted with the REFERENCE constraint \"FK_P\". The "
                  "conflict occurred in database 'central', table 'Productos', column 'ID'."},
        CasoFallo{2627, "Violation of PRIMARY KEY constraint 'PK'.", FalloSql::kIntegridad,
                  "Violation of PRIMARY KEY constraint 'PK'."},
        CasoFallo{2601, "Cannot insert duplicate key row.", FalloSql::kIntegridad,
                  "Cannot insert duplicate key row."},
        CasoFallo{515, "Cannot insert the value NULL.", FalloSql::kIntegridad,
                  "Cannot insert the value NULL."},
        CasoFallo{208, "Invalid object name 'Nada'.", FalloSql::kSentencia,
                  "Invalid object name 'Nada'."},
        CasoFallo{102, "Incorrect syntax near '['.", FalloSql::kSentencia,
                  "Incorrect syntax near '['."},
        CasoFallo{50000, "[Caja] El día ya está cerrado.", FalloSql::kSentencia,
                  "[Caja] El día ya está cerrado."}));

TEST_F(FreeTdsTest, LosParametrosLleganConSuTipo) {
    QVector<QVariant> llegados;
    QString texto;
    const ServidorTds servidor([&]() -> ServidorTds::Contestar {
        return [&](const QString& dicho, const QVector<QVariant>& parametros) {
            if (parametros.isEmpty()) return RespuestaSql();
            texto = dicho;
            llegados = parametros;
            RespuestaSql respuesta;
            respuesta.resultados.append({std::nullopt, 1});
            return respuesta;
        };
    });
    const auto conexion = AbrirEn(servidor);
    ASSERT_NE(conexion, nullptr);
    QString largo = U("🍷");
    while (largo.size() < 9'000)
        largo += U("ñandú;");
    const QVector<QVariant> valores = {
        true,
        -7,
        QVariant(qlonglong{9'000'000'000}),
        QVariant::fromValue(base::Dinero::DeDiezmilesimas(-12345)),
        QVariant::fromValue(base::Dinero::DeDiezmilesimas(std::numeric_limits<qint64>::max())),
        QVariant::fromValue(base::Decimal{12345, 3}),
        QVariant::fromValue(*base::Decimal::DeTexto("-1234567890123456789012345.67")),
        QVariant::fromValue(*base::Decimal::DeTexto("0.0001")),
        1.5,
        QDateTime(QDate(2026, 11, 14), QTime(21, 36, 8, 3), Qt::UTC),
        U("Ñandú 'y' 🍷 ?"),
        U(""),
        largo,
        QByteArray("\x00\x01z", 3),
        QVariant(),
    };
    const QString pregunta = U("UPDATE T SET [a?]=?,b='?¿'") + U(",c=?").repeated(14);
    const RespuestaSql leida = conexion->Ejecutar(pregunta, valores);
    EXPECT_FALSE(leida.fallo.has_value()) << Escrito(leida).toStdString();
    EXPECT_EQ(texto, pregunta);
    ASSERT_EQ(llegados.size(), valores.size());
    for (qsizetype i = 0; i < valores.size(); ++i) {
        const auto como_texto = [](const QVariant& v) {
            return v.typeId() == QMetaType::QString ? v.toString() : Escrito(v).section(u':', -1);
        };
        EXPECT_EQ(como_texto(llegados[i]).left(200), como_texto(valores[i]).left(200)) << i;
    }
    EXPECT_EQ(conexion->Ejecutar(U("SELECT ?"), {QVariant(QStringList())}).fallo->Nativo(), 257);
}

TEST_F(FreeTdsTest, LoQueHaceUnaTemporalVaEnLaSesion) {
    const ServidorTds servidor(Siempre({}));
    const auto conexion = AbrirEn(servidor);
    ASSERT_NE(conexion, nullptr);
    const QString texto =
        U("SELECT a,'?' AS [?] /* ? /* ? */ */ INTO #T FROM C WHERE b=? AND c=? -- ?");
    EXPECT_FALSE(conexion->Ejecutar(texto, {U("d'o 🍷"), -5}).fallo.has_value());
    EXPECT_EQ(servidor.Textos().last(),
              U("SELECT a,'?' AS [?] /* ? /* ? */ */ INTO #T FROM C WHERE b=N'd''o 🍷' AND c=(-5) "
                "-- ?"));
}

struct CasoClave {
    const char* clave = nullptr;
    bool se_puede = false;
};
TEST_F(FreeTdsTest, UsuarioYClaveLleganTalCualONoLlegan) {
    const ServidorTds servidor(Siempre({}));
    for (const CasoClave& caso : {CasoClave{"sencilla", true}, CasoClave{"con;punto=y coma", true},
                                  CasoClave{"{llave", true}, CasoClave{"a}b}", true},
                                  CasoClave{"}", true}, CasoClave{" blanco ", true},
                                  CasoClave{"ñ€🍷\"'", true}, CasoClave{"x};Server=otro", false}}) {
        // FreeTDS writes values in a way of its own, whatever name it was installed under.
        const auto abierta =
            AbrirOdbc({servidor.Palabra(), U("ba;se}"), U("us;ua}rio"), U(caso.clave)},
                      Con(U("Con otro nombre")));
        EXPECT_EQ(abierta.has_value(), caso.se_puede) << caso.clave;
        if (!abierta) {
            EXPECT_FALSE(abierta.error().Descripcion().contains(U(caso.clave)));
            continue;
        }
        const ServidorTds::Acceso acceso = servidor.Accesos().last();
        EXPECT_EQ(acceso.clave, U(caso.clave));
        EXPECT_EQ(acceso.usuario, U("us;ua}rio"));
        EXPECT_EQ(acceso.base, U("ba;se}"));
        EXPECT_EQ(acceso.aplicacion, U("QUIMO"));
    }
}

struct CasoAbrir {
    const char* nombre = nullptr;
    ServidorTds::Falla falla;
    const char16_t* usuario = nullptr;
    qint64 numero = 0;
    int nativo = 0;
};
class FreeTdsAbrirTest : public testing::TestWithParam<CasoAbrir> {
protected:
    static void SetUpTestSuite() { PrepararControladores(); }
};

TEST_P(FreeTdsAbrirTest, LoQueNoAbreSeDistingue) {
    const CasoAbrir& caso = GetParam();
    const ServidorTds servidor(Siempre({}), caso.falla);
    QElapsedTimer reloj;
    reloj.start();
    const auto abierta = AbrirOdbc(
        {servidor.Palabra(), U("central"), QString::fromUtf16(caso.usuario), U("secreto9")},
        Con(U("FreeTDS")));
    ASSERT_FALSE(abierta.has_value());
    RespuestaSql fallida;
    fallida.fallo = abierta.error();
    const QString dicho = Escrito(fallida);
    EXPECT_EQ(abierta.error().numero, caso.numero) << dicho.toStdString();
    EXPECT_EQ(abierta.error().Nativo(), caso.nativo) << dicho.toStdString();
    EXPECT_FALSE(dicho.contains(U("secreto9")));
    // Not a question of speed: without the limit it would wait for ever.
    EXPECT_LT(reloj.elapsed(), 30'000);
}

INSTANTIATE_TEST_SUITE_P(
    FreeTds, FreeTdsAbrirTest,
    testing::Values(CasoAbrir{"clave", ServidorTds::Falla::Ninguna, ServidorTds::kUsuarioMalo,
                              FalloSql::kAccesoNegado, 18456},
                    CasoAbrir{"base", ServidorTds::Falla::Ninguna, ServidorTds::kUsuarioSinBase,
                              FalloSql::kServidorAusente, 4060},
                    CasoAbrir{"cierra", ServidorTds::Falla::CierraAlLlegar, u"u",
                              FalloSql::kServidorAusente, 6},
                    CasoAbrir{"cuelga", ServidorTds::Falla::CierraTrasElAcceso, u"u",
                              FalloSql::kServidorAusente, 6},
                    CasoAbrir{"calla", ServidorTds::Falla::Calla, u"u", FalloSql::kServidorAusente,
                              6}),
    [](const auto& caso) { return std::string(caso.param.nombre); });

TEST_F(FreeTdsTest, SinServidorNiNombreNiControlador) {
    int libre = 0;
    {
        const ServidorTds servidor(Siempre({}));
        libre = servidor.Puerto();
    }
    const DatosConexion nadie = {U("127.0.0.1,%1").arg(libre), U("b"), U("u"), U("c")};
    const auto sin_servidor = AbrirOdbc(nadie, Con(U("FreeTDS")));
    EXPECT_EQ(sin_servidor.error().numero, FalloSql::kServidorAusente);
    EXPECT_EQ(sin_servidor.error().Nativo(), 6);
    const auto sin_nombre =
        AbrirOdbc({U("no-existe.invalid"), U("b"), U("u"), U("c")}, Con(U("FreeTDS")));
    EXPECT_EQ(sin_nombre.error().numero, FalloSql::kServidorAusente);
    EXPECT_EQ(sin_nombre.error().Nativo(), 6);
    for (const DatosConexion& incompletos : {DatosConexion{{}, U("b"), U("u"), U("c")},
                                             DatosConexion{U("h"), U(" "), U("u"), U("c")}}) {
        EXPECT_EQ(AbrirOdbc(incompletos, Con(U("FreeTDS"))).error().numero,
                  FalloSql::kServidorAusente);
    }
    // A driver without its library lets the next one try.
    const auto sin_biblioteca = AbrirOdbc(nadie, Con(U("Sin biblioteca")));
    EXPECT_EQ(sin_biblioteca.error().Nativo(), 6);
}

TEST_F(FreeTdsTest, LaConexionPerdidaSeDiceYSeRepone) {
    const RespuestaSql uno = UnConjunto({{{}, TipoSql::Int}}, QVector<Fila>(5000, {0}));
    const ServidorTds servidor(Siempre(uno));
    const auto conexion = AbrirEn(servidor);
    ASSERT_NE(conexion, nullptr);
    const auto numero = [&](const QString& texto) {
        const RespuestaSql respuesta = conexion->Ejecutar(texto);
        return respuesta.fallo ? respuesta.fallo->numero : 0;
    };
    int accesos = 1;
    for (const char16_t* corte : {ServidorTds::kCorta, ServidorTds::kCortaEnMedio}) {
        const RespuestaSql cortada = conexion->Ejecutar(U("SELECT 1 ") + QString::fromUtf16(corte));
        ASSERT_TRUE(cortada.fallo.has_value());
        EXPECT_EQ(cortada.fallo->numero, FalloSql::kConexionPerdida);
        EXPECT_TRUE(cortada.resultados.isEmpty());
        EXPECT_TRUE(conexion->Abierta());
        EXPECT_FALSE(conexion->EnTransaccion());
        EXPECT_EQ(numero(U("SELECT 1")), 0);
        EXPECT_EQ(servidor.Accesos().size(), ++accesos);
    }
    conexion->Cerrar();
    EXPECT_EQ(numero(U("SELECT 1")), FalloSql::kConexionCerrada);
}

// Rows before a failure are no answer to what was asked.
TEST_F(FreeTdsTest, ElConjuntoQueFallaEnMedioNoSeEntrega) {
    const RespuestaSql filas = UnConjunto({{U("a"), TipoSql::Int}}, {{1}, {2}, {3}});
    const ServidorTds servidor(Siempre(filas));
    const auto conexion = AbrirEn(servidor);
    ASSERT_NE(conexion, nullptr);
    const RespuestaSql rota =
        conexion->Ejecutar(U("SELECT ") + QString::fromUtf16(ServidorTds::kFallaEnMedio));
    ASSERT_TRUE(rota.fallo.has_value()) << Escrito(rota).toStdString();
    EXPECT_EQ(rota.fallo->Nativo(), 8134);
    for (const ResultadoSql& resultado : rota.resultados)
        EXPECT_FALSE(resultado.conjunto.has_value());
    EXPECT_EQ(Escrito(conexion->Ejecutar(U("SELECT 1"))), Escrito(filas));
    EXPECT_EQ(servidor.Accesos().size(), 1);
}

// Nothing of a transaction may be written on a connection that did not see its beginning.
TEST_F(FreeTdsTest, LaTransaccionPerdidaNoSigueSola) {
    const RespuestaSql uno = UnConjunto({{{}, TipoSql::Int}}, {{1}});
    const auto perder = [&](SqlConnection& conexion) {
        ASSERT_TRUE(conexion.Iniciar().has_value());
        EXPECT_TRUE(conexion.EnTransaccion());
        EXPECT_EQ(conexion.Ejecutar(U("UPDATE T /*corta*/")).fallo->numero,
                  FalloSql::kConexionPerdida);
        EXPECT_EQ(conexion.Ejecutar(U("UPDATE T SET a=1")).fallo->numero,
                  FalloSql::kConexionPerdida);
        EXPECT_EQ(conexion.Iniciar().error().numero, FalloSql::kConexionPerdida);
        EXPECT_TRUE(conexion.EnTransaccion());
    };
    const ServidorTds servidor(Siempre(uno));
    const auto conexion = AbrirEn(servidor);
    ASSERT_NE(conexion, nullptr);
    perder(*conexion);
    EXPECT_EQ(conexion->Confirmar().error().numero, FalloSql::kConexionPerdida);
    EXPECT_FALSE(conexion->EnTransaccion());
    EXPECT_FALSE(conexion->Ejecutar(U("SELECT 1")).fallo.has_value());
    perder(*conexion);
    EXPECT_EQ(conexion->Revertir().error().numero, FalloSql::kConexionPerdida);
    EXPECT_FALSE(conexion->Ejecutar(U("SELECT 1")).fallo.has_value());
    perder(*conexion);
    EXPECT_EQ(conexion->Ejecutar(U(" rollback Transaction ; ")).fallo->numero,
              FalloSql::kConexionPerdida);
    EXPECT_FALSE(conexion->Ejecutar(U("SELECT 1")).fallo.has_value());
    EXPECT_EQ(servidor.Textos().filter(U("UPDATE T SET a=1")).size(), 0);
}

}  // namespace

}  // namespace quimo::data::odbc
