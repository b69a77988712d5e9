// What a statement of the program costs before the engine runs it: read and translated the first
// time, found again the next. One line of sentencias.sql after the other.

#include <benchmark/benchmark.h>

#include <QFile>
#include <QTemporaryDir>

#include "data/embebido/conexion_embebida.h"
#include "data/embebido/sesion.h"
#include "data/reloj.h"
#include "tsql/lectura/lotes.h"
#include "tsql/lectura/parser.h"

namespace quimo::data {

namespace {

using embebido::Sesion;

QString Leer(const QString& archivo) {
    QFile f(archivo);
    if (!f.open(QIODevice::ReadOnly)) qFatal("%s", qPrintable(archivo));
    return QString::fromUtf8(f.readAll());
}

class RelojBanco final : public Reloj {
public:
    QDateTime Ahora() const override { return {QDate(2026, 11, 14), QTime(21, 36), Qt::UTC}; }
};

/// A session on the program's own schema, open for the whole run.
struct Banco {
    QTemporaryDir carpeta;
    RelojBanco reloj;
    std::unique_ptr<Sesion> sesion;
    std::vector<std::string> sentencias;

    Banco() {
        const QString archivo = carpeta.filePath(QStringLiteral("central.db"));
        auto conexion = AbrirEmbebida(archivo, reloj, true);
        if (!conexion) qFatal("no database");
        for (const std::string& lote :
             tsql::PartirLotes(Leer(QStringLiteral(QUIMO_RAIZ "/db/schema.sql")).toStdString()))
            (*conexion)->Ejecutar(QString::fromStdString(lote));
        conexion->reset();
        sesion = std::make_unique<Sesion>(reloj);
        if (!sesion->Abrir(archivo.toStdString(), false)) qFatal("no session");
        for (const QString& linea :
             Leer(QStringLiteral(QUIMO_RAIZ "/bench/sentencias.sql")).split(QLatin1Char('\n')))
            if (!linea.isEmpty()) sentencias.push_back(linea.toStdString());
    }
};

Banco& Unico() {
    static Banco banco;
    return banco;
}

void Traducir(const tsql::Sentencia& sentencia, const tsql::Entorno& entorno) {
    const auto exigir = [](const auto& plan) {
        if (!plan) qFatal("%s", plan.error().mensaje.c_str());
        benchmark::DoNotOptimize(plan->sql.data());
    };
    if (const auto* consulta = std::get_if<tsql::Seleccionar>(&sentencia.que))
        exigir(tsql::TraducirConsulta(*consulta->consulta, entorno));
    if (const auto* insertar = std::get_if<tsql::Insertar>(&sentencia.que))
        exigir(tsql::TraducirInsertar(*insertar, entorno));
    if (const auto* actualizar = std::get_if<tsql::Actualizar>(&sentencia.que))
        exigir(tsql::TraducirActualizar(*actualizar, entorno));
    if (const auto* borrar = std::get_if<tsql::Borrar>(&sentencia.que))
        exigir(tsql::TraducirBorrar(*borrar, entorno));
}

void PrimeraVez(benchmark::State& estado) {
    Banco& banco = Unico();
    const std::string& texto = banco.sentencias[static_cast<std::size_t>(estado.range(0))];
    for ([[maybe_unused]] const auto vuelta : estado) {
        auto lote = tsql::LeerLote(texto, tsql::Constantes::PorPosicion);
        if (!lote) qFatal("%s", lote.error().mensaje.c_str());
        tsql::Entorno entorno;
        entorno.catalogo = &banco.sesion->Catalogo();
        entorno.lote = &*lote;
        Traducir(*lote->sentencias[0], entorno);
    }
    estado.SetLabel(texto.substr(0, 48));
}

void LaSiguiente(benchmark::State& estado) {
    Banco& banco = Unico();
    const std::string& texto = banco.sentencias[static_cast<std::size_t>(estado.range(0))];
    for ([[maybe_unused]] const auto vuelta : estado) {
        const auto listo = banco.sesion->Textos().Leer(texto, {});
        if (!listo) qFatal("%s", listo.error().mensaje.c_str());
    }
    estado.SetLabel(texto.substr(0, 48));
}

}  // namespace

BENCHMARK(PrimeraVez)->DenseRange(0, 12)->Unit(benchmark::kMicrosecond);
BENCHMARK(LaSiguiente)->DenseRange(0, 12)->Unit(benchmark::kMicrosecond);

}  // namespace quimo::data

BENCHMARK_MAIN();
