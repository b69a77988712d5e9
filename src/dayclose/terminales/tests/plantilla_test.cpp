#include "dayclose/terminales/plantilla.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "jet/base_datos.h"
#include "jet/verificador.h"

namespace quimo::dayclose {
namespace {

// One line per column and index, so that a difference shows which one it is.
std::vector<std::string> Lineas(const jet::DefTabla& tabla) {
    std::vector<std::string> lineas;
    for (const jet::DefColumna& c : tabla.columnas) {
        const bool texto = c.tipo == jet::TipoColumna::Texto;
        lineas.push_back(tabla.nombre + "." + std::to_string(lineas.size()) + " " + c.nombre + " " +
                         std::to_string(static_cast<int>(c.tipo)) +
                         (texto ? " " + std::to_string(c.largo) : "") +
                         (c.comprimido ? " comprimido" : ""));
    }
    for (const jet::DefIndice& indice : tabla.indices) {
        std::string linea = tabla.nombre + " indice " + indice.nombre;
        for (const jet::ColumnaDeIndice& columna : indice.columnas)
            linea += (columna.descendente ? " -" : " +") + columna.nombre;
        linea += std::string(indice.primaria ? " primaria" : "") + (indice.unico ? " unico" : "") +
                 (indice.requerido ? " requerido" : "") +
                 (indice.ignora_nulos ? " ignora nulos" : "");
        lineas.push_back(linea);
    }
    return lineas;
}

std::vector<std::string> Definiciones(const std::string& ruta) {
    std::vector<std::string> lineas;
    const auto base = jet::BaseDatos::Abrir(ruta);
    EXPECT_TRUE(base) << (base ? "" : base.error().mensaje);
    if (!base) return lineas;
    const auto tablas = base->Tablas();
    EXPECT_TRUE(tablas);
    if (!tablas) return lineas;
    for (const std::string& nombre : *tablas) {
        const auto tabla = base->AbrirTabla(nombre);
        EXPECT_TRUE(tabla) << nombre;
        if (tabla) std::ranges::copy(Lineas(tabla->Definicion()), std::back_inserter(lineas));
    }
    std::ranges::sort(lineas);
    return lineas;
}

TEST(Plantilla, EsLaBaseQueEsperanLasTerminales) {
    const QTemporaryDir carpeta;
    const std::string ruta = carpeta.filePath(QStringLiteral("Plantilla.mdb")).toStdString();
    ASSERT_TRUE(EscribirPlantilla(ruta));

    const auto esperadas = Definiciones(QUIMO_TEST_DATA "/terminals/Plantilla.mdb");
    const auto escritas = Definiciones(ruta);
    std::vector<std::string> diferencias;
    std::ranges::set_symmetric_difference(esperadas, escritas, std::back_inserter(diferencias));
    EXPECT_EQ(diferencias, std::vector<std::string>{});
    EXPECT_GT(esperadas.size(), 200U);

    const auto base = jet::BaseDatos::Abrir(ruta);
    ASSERT_TRUE(base);
    const auto hallazgos = jet::Verificador::Verificar(*base);
    ASSERT_TRUE(hallazgos);
    EXPECT_TRUE(hallazgos->empty()) << hallazgos->front().mensaje;
}

TEST(Plantilla, NoPisaUnArchivoNiDejaUnoAMedias) {
    const QTemporaryDir carpeta;
    const std::string ruta = carpeta.filePath(QStringLiteral("ventas del año.mdb")).toStdString();
    std::ofstream(ruta) << "ventas";

    const auto escrita = EscribirPlantilla(ruta);
    ASSERT_FALSE(escrita);
    EXPECT_EQ(escrita.error().codigo, base::Error::Codigo::Restriccion);
    std::string contenido;
    std::ifstream(ruta) >> contenido;
    EXPECT_EQ(contenido, "ventas");

    const std::filesystem::path perdida = std::filesystem::path(ruta) / "no hay" / "Plantilla.mdb";
    EXPECT_FALSE(EscribirPlantilla(perdida));
    EXPECT_FALSE(std::filesystem::exists(perdida));
}

}  // namespace
}  // namespace quimo::dayclose
