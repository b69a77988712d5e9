#include "dayclose/cierre/colisiones.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "jet/base_datos.h"

using namespace Qt::StringLiterals;

namespace quimo::dayclose {
namespace {

using Claves = std::vector<jet::Valor>;
using Cambios = std::vector<std::pair<std::string, jet::Valor>>;

/// The recorded terminals' files in a folder, to be changed row by row.
class ColisionesTest : public ::testing::Test {
protected:
    ColisionesTest() {
        for (const QString& nombre : {u"CAJA1"_s, u"CAJA2"_s, u"BARRA"_s}) {
            Copiar(
                QStringLiteral(QUIMO_TEST_DATA "/terminals/") + nombre + u"/Quimo_Terminal.mdb"_s,
                nombre);
        }
    }

    QString Ruta(const QString& nombre) const { return carpeta_.filePath(nombre + u".mdb"_s); }

    void Copiar(const QString& origen, const QString& nombre) {
        QFile::remove(Ruta(nombre));
        ASSERT_TRUE(QFile::copy(origen, Ruta(nombre)));
        QFile(Ruta(nombre)).setPermissions(QFile::ReadOwner | QFile::WriteOwner);
    }

    /// Changes the row with this key, or adds one with the key and these values.
    void Poner(const QString& nombre, const std::string& tabla, const Claves& clave,
               const Cambios& cambios) {
        auto base = jet::BaseDatos::Abrir(Ruta(nombre).toStdString(), jet::Modo::Escritura);
        ASSERT_TRUE(base) << base.error().mensaje;
        auto abierta = base->AbrirTabla(tabla);
        ASSERT_TRUE(abierta);
        const auto id = abierta->BuscarClave(clave);
        ASSERT_TRUE(id);
        if (*id) {
            std::vector<jet::Cambio> lista;
            for (const auto& [columna, valor] : cambios)
                lista.push_back({abierta->Columna(columna).value(), valor});
            ASSERT_TRUE(abierta->Actualizar(**id, lista));
        } else {
            std::vector<jet::Valor> fila(abierta->Definicion().columnas.size());
            for (std::size_t i = 0; i < clave.size(); ++i)
                fila[i] = clave[i];
            for (const auto& [columna, valor] : cambios)
                fila[abierta->Columna(columna).value()] = valor;
            const auto insertada = abierta->Insertar(fila);
            ASSERT_TRUE(insertada) << insertada.error().mensaje;
        }
        ASSERT_TRUE(base->Guardar());
    }

    /// "terminal: text" of each finding.
    QStringList Hallazgos() {
        const auto hallados = BuscarColisiones({{u"BARRA"_s, 3, Ruta(u"BARRA"_s)},
                                                {u"CAJA1"_s, 1, Ruta(u"CAJA1"_s)},
                                                {u"CAJA2"_s, 2, Ruta(u"CAJA2"_s)}},
                                               u"14112026"_s);
        if (!hallados) return {hallados.error().descripcion};
        QStringList textos;
        for (const HallazgoPrevio& hallado : *hallados)
            textos << hallado.terminal + u": "_s + hallado.texto;
        return textos;
    }

    QTemporaryDir carpeta_;
};

jet::Valor Dinero(std::int64_t diezmilesimas) {
    return base::Dinero::DeDiezmilesimas(diezmilesimas);
}

void EsperarTextos(const QStringList& hay, const QStringList& esperados) {
    EXPECT_EQ(hay.join(u"\n--\n"_s).toStdString(), esperados.join(u"\n--\n"_s).toStdString());
}

TEST_F(ColisionesTest, ElDiaBuenoNoTieneHallazgos) { EsperarTextos(Hallazgos(), {}); }

TEST_F(ColisionesTest, LaMismaClaveConOtroContenidoNombraLasDosTerminales) {
    const Cambios cuenta = {{"ID_comanda", 50901}, {"Num_Cuenta", 1}, {"ID_Tipo_Pago", 1}};
    for (int pago = 2001; pago <= 2005; ++pago) {
        Cambios uno = cuenta;
        Cambios otro = cuenta;
        // One ten-thousandth apart, and one of them without a tip.
        uno.insert(uno.end(), {{"Monto_Pago", Dinero(1000000)}, {"Propina", Dinero(0)}});
        otro.emplace_back("Monto_Pago", Dinero(pago == 2001 ? 1000001 : 2500000));
        Poner(u"CAJA1"_s, "Pago", {pago}, uno);
        Poner(u"BARRA"_s, "Pago", {pago}, otro);
    }
    EsperarTextos(
        Hallazgos(),
        {u"BARRA: CAJA1 y BARRA tienen 5 pagos (tabla Pago) con la misma clave y distinto "
         u"contenido:\n"
         u"  ID_Pago=2001: Monto_Pago $100.00 en CAJA1 y $100.0001 en BARRA, Propina $0.00 en "
         u"CAJA1 y sin valor en BARRA\n"
         u"  ID_Pago=2002: Monto_Pago $100.00 en CAJA1 y $250.00 en BARRA, Propina $0.00 en CAJA1 "
         u"y sin valor en BARRA\n"
         u"  ID_Pago=2003: Monto_Pago $100.00 en CAJA1 y $250.00 en BARRA, Propina $0.00 en CAJA1 "
         u"y sin valor en BARRA\n"
         u"  y 2 más\n"
         u"Al copiar queda lo de BARRA."_s});
}

// Every kind of value, apart in as little as it can be.
TEST_F(ColisionesTest, UnaSolaDiferenciaBasta) {
    const auto momento = [](int segundo) {
        return *jet::Fecha::DeCivil({2026, 11, 14, 9, 0, segundo, 0});
    };
    const struct {
        const char* columna;
        jet::Valor uno;
        jet::Valor otro;
    } casos[] = {
        {"ID_Producto", 101, 102},
        {"Comentario", std::u16string(u"sin sal"), std::u16string(u"con sal")},
        {"Preparado", true, false},
        {"Precio_Venta", Dinero(10000), Dinero(10001)},
        {"ID_Promocion", 0, std::monostate()},
        {"Hora_Anulacion", momento(1), momento(2)},
    };
    int item = 19500;
    for (const auto& caso : casos) {
        ++item;
        const Cambios cuenta = {{"ID_Comanda", 50901}, {"Num_Cuenta", 1}};
        for (const bool primera : {true, false}) {
            Cambios cambios = cuenta;
            cambios.emplace_back(caso.columna, primera ? caso.uno : caso.otro);
            Poner(primera ? u"CAJA1"_s : u"CAJA2"_s, "ProductosXCuenta", {item}, cambios);
        }
        const QString textos = Hallazgos().join(u'\n');
        EXPECT_TRUE(textos.contains(u"CAJA1 y CAJA2 tienen"_s) &&
                    textos.contains(QLatin1StringView(caso.columna)))
            << caso.columna << ": " << textos.toStdString();
        for (const QString& nombre : {u"CAJA1"_s, u"CAJA2"_s}) {
            Copiar(
                QStringLiteral(QUIMO_TEST_DATA "/terminals/") + nombre + u"/Quimo_Terminal.mdb"_s,
                nombre);
        }
    }
}

TEST_F(ColisionesTest, LosMismosRenglonesSeCuentan) {
    for (const QString& nombre : {u"CAJA1"_s, u"CAJA2"_s}) {
        const auto abierta = jet::Fecha::DeCivil({2026, 11, 14, 9, 0, 0, 0});
        Poner(nombre, "Comanda", {60000},
              {{"Fecha_Trabajo", std::u16string(u"14112026")}, {"Fecha_Apertura", *abierta}});
        Poner(nombre, "Cuenta", {60000, 1}, {{"Total", Dinero(1)}});
        Poner(nombre, "Cuenta", {60000, 2}, {{"Total", Dinero(1)}});
    }
    EsperarTextos(Hallazgos(),
                  {u"CAJA2: CAJA1 y CAJA2 tienen los mismos renglones: 1 orden, 2 cuentas."_s});
    // A second more or less is another content.
    const auto despues = jet::Fecha::DeCivil({2026, 11, 14, 9, 0, 1, 0});
    Poner(u"CAJA1"_s, "Comanda", {60000}, {{"Fecha_Apertura", *despues}});
    EsperarTextos(
        Hallazgos(),
        {u"CAJA2: CAJA1 y CAJA2 tienen los mismos renglones: 2 cuentas."_s,
         u"CAJA2: CAJA1 y CAJA2 tienen 1 orden (tabla Comanda) con la misma clave y distinto "
         u"contenido:\n"
         u"  ID_Comanda=60000: Fecha_Apertura 14/11/2026 09:00:01 en CAJA1 y 14/11/2026 09:00:00 "
         u"en CAJA2\n"
         u"Al copiar queda lo de CAJA2."_s});
}

TEST_F(ColisionesTest, ElMismoArchivoConDosNombres) {
    Copiar(Ruta(u"CAJA1"_s), u"BARRA"_s);
    EsperarTextos(Hallazgos(), {u"BARRA: CAJA1 y BARRA tienen el mismo archivo, byte por byte: "
                                u"las ventas de una de las dos faltan."_s});
}

TEST_F(ColisionesTest, ElArchivoDeOtraTerminalSeNota) {
    Copiar(Ruta(u"CAJA1"_s), u"BARRA"_s);
    Poner(u"BARRA"_s, "Pago", {94301}, {{"Control", 9}});  // another file, the same sales
    EsperarTextos(
        Hallazgos(),
        {u"BARRA: BARRA es la terminal 3, y su archivo tiene 583 artículos cuyo número no empieza "
         u"con 3: ID_ProductosXCuenta=10001, ID_ProductosXCuenta=10002, ID_ProductosXCuenta=10003 "
         u"y 580 más\nPuede ser el archivo de otra terminal."_s,
         u"BARRA: CAJA1 y BARRA tienen los mismos renglones: 120 órdenes, 135 cuentas, 583 "
         u"artículos, 12 cortesías, 541 impuestos, 192 modificadores, 129 pagos."_s});
}

TEST_F(ColisionesTest, OtrasFechasYRenglonesSinMadre) {
    Poner(u"CAJA2"_s, "Comanda", {50902}, {{"Fecha_Trabajo", std::u16string(u"13112026")}});
    Poner(u"CAJA2"_s, "Comanda", {50903}, {{"Fecha_Trabajo", std::u16string(u"3113")}});
    Poner(u"CAJA2"_s, "Comanda", {50907}, {{"Fecha_Trabajo", std::monostate()}});
    Poner(u"CAJA2"_s, "ProductosXCuenta", {20001}, {{"ID_Comanda", 7}});
    Poner(u"CAJA2"_s, "Cortesia", {20999, 1}, {{"Monto", Dinero(1)}});
    // Paid at another terminal: its check is there, and nothing is wrong.
    Poner(u"CAJA2"_s, "Pago", {94303}, {{"ID_comanda", 50901}});
    EsperarTextos(
        Hallazgos(),
        {u"CAJA2: CAJA2 tiene 3 órdenes con fecha de trabajo distinta de 14/11/2026: sin fecha "
         u"(1), 13/11/2026 (1), «3113» (1)"_s,
         u"CAJA2: CAJA2 tiene 1 artículo (tabla ProductosXCuenta) sin su cuenta, que no está en "
         u"ninguna terminal: ID_ProductosXCuenta=20001"_s,
         u"CAJA2: CAJA2 tiene 1 cortesía (tabla Cortesia) sin su artículo, que no está en ninguna "
         u"terminal: ID_ProductosXCuenta=20999, ID_Tipo_Cortesia=1"_s});
}

TEST_F(ColisionesTest, UnArchivoIlegibleEsUnError) {
    QFile::resize(Ruta(u"CAJA2"_s), 5000);
    const QStringList textos = Hallazgos();
    ASSERT_EQ(textos.size(), 1);
    EXPECT_TRUE(textos.first().contains(u"CAJA2"_s)) << textos.first().toStdString();
}

}  // namespace
}  // namespace quimo::dayclose
