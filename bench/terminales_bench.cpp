// bench_terminales TEMPLATE FOLDER TERMINALS ITEMS: a busy day for bench/cierre.py. Writes
// FOLDER/red/CAJA<n>/quimo/Quimo_Terminal.mdb for each terminal, and the same rows, table by table,
// as FOLDER/csv/<table>.csv for the sqlite3 shell.

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <string>
#include <vector>

#include "exigir.h"
#include "jet/base_datos.h"

namespace quimo::jet {
namespace {

constexpr int kArticulosPorOrden = 3;
constexpr int kOrdenesPorTerminal = 100'000;
constexpr int kPrimeraOrden = 2'000'000;

Valor Pesos(int pesos, int centavos) {
    return base::Dinero::DeDiezmilesimas(10'000L * pesos + 100L * centavos);
}
Valor Momento(int minuto, int segundo) {
    return *Fecha::DeCivil({2026, 11, 14, 8 + minuto / 60 % 14, minuto % 60, segundo, 0});
}

std::string Celda(const Valor& valor) {
    if (const auto* entero = std::get_if<std::int32_t>(&valor)) return std::to_string(*entero);
    if (const auto* logico = std::get_if<bool>(&valor)) return *logico ? "1" : "0";
    if (const auto* monto = std::get_if<base::Dinero>(&valor))
        return std::to_string(monto->Diezmilesimas());
    if (const auto* texto = std::get_if<std::u16string>(&valor))
        return {texto->begin(), texto->end()};
    if (const auto* fecha = std::get_if<Fecha>(&valor))
        return std::to_string(static_cast<std::int64_t>(fecha->dias * 86'400'000));
    return "";
}

/// One terminal's open file and the texts of all.
class Ventas {
public:
    Ventas(const std::string& plantilla, const std::filesystem::path& carpeta)
        : plantilla_(plantilla), carpeta_(carpeta) {
        std::filesystem::create_directories(carpeta / "csv");
    }

    void Escribir(int terminal, int articulos) {
        BaseDatos base = Exigir(BaseDatos::Abrir(plantilla_, Modo::Escritura));
        base_ = &base;
        tablas_.clear();
        for (int n = 0; n < articulos; ++n)
            Articulo(terminal, n);
        const auto destino =
            carpeta_ / "red" / ("CAJA" + std::to_string(terminal)) / "quimo" / "Quimo_Terminal.mdb";
        std::filesystem::create_directories(destino.parent_path());
        Exigir(base.GuardarComo(destino.string()));
    }

private:
    void Poner(const std::string& nombre, const std::vector<Valor>& valores) {
        auto tabla = tablas_.find(nombre);
        if (tabla == tablas_.end())
            tabla = tablas_.emplace(nombre, Exigir(base_->AbrirTabla(nombre))).first;
        Exigir(tabla->second.Insertar(valores));
        auto& texto = textos_[nombre];
        if (!texto.is_open()) texto.open(carpeta_ / "csv" / (nombre + ".csv"));
        for (std::size_t i = 0; i < valores.size(); ++i)
            texto << (i == 0 ? "" : ",") << Celda(valores[i]);
        texto << '\n';
    }

    void Articulo(int terminal, int n) {
        const Valor nulo;
        const int orden = kPrimeraOrden + terminal * kOrdenesPorTerminal + n / kArticulosPorOrden;
        const int articulo = terminal * kOrdenesPorTerminal + n + 1;
        if (n % kArticulosPorOrden == 0) {
            Poner("Comanda", {orden, 1 + n % 8, 1 + n % 40, false, Momento(n % 800, n % 60),
                              Momento(n % 800 + 40, n % 59), std::u16string(u"M"),
                              std::u16string(u"14112026"), 0, 1 + n % 6});
            Poner("Cuenta", {orden, 1, true, 1, Pesos(300 + n % 200, 50), 0});
            Poner("Pago", {orden, orden, 1, 1 + n % 4, Pesos(300 + n % 200, 50), Pesos(n % 30, 0),
                           nulo, 0});
        }
        const bool anulado = n % 53 == 0;
        Poner("ProductosXCuenta",
              {articulo, orden, 1, 1 + n % 400,
               n % 17 == 0 ? Valor(std::u16string(u"sin cebolla")) : nulo, true,
               Pesos(20 + n % 90, 50), Pesos(22 + n % 90, 50), anulado ? Valor(1) : nulo, nulo,
               n % 71 == 0 ? Valor(1) : nulo, nulo, anulado ? Valor(2) : nulo,
               anulado ? Momento(n % 800, n % 60) : nulo, 0});
        Poner("ImpuestosXCuenta", {articulo, 1, Pesos(3 + n % 14, n % 100)});
        if (n % 4 == 0) Poner("Modificador", {articulo, 1 + n % 5, Pesos(4, 50)});
        if (n % 97 == 0) Poner("Cortesia", {articulo, 1 + n % 3, Pesos(10, 25)});
    }

    std::string plantilla_;
    std::filesystem::path carpeta_;
    BaseDatos* base_ = nullptr;
    std::map<std::string, Tabla> tablas_;
    std::map<std::string, std::ofstream> textos_;
};

}  // namespace
}  // namespace quimo::jet

int main(int argc, char** argv) {
    if (argc != 5) return 2;
    quimo::jet::Ventas ventas(argv[1], argv[2]);
    for (int terminal = 1; terminal <= std::atoi(argv[3]); ++terminal)
        ventas.Escribir(terminal, std::atoi(argv[4]));
    return 0;
}
