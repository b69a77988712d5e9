#include <algorithm>

#include <sqlite3.h>

#include "data/embebido/interprete.h"
#include "tsql/valores/texto.h"

namespace quimo::data::embebido {

namespace {

using tsql::EntreComillas;
using tsql::Tabla;

/// Values that no row of a restaurant holds, for the keys that are on their way.
constexpr std::int64_t kDePaso = -4'000'000'000'000'000'000;

struct FilaNueva {
    std::int64_t fila = 0;
    std::vector<Valor> valores;
};

bool EsClave(const Tabla& tabla, int columna) {
    return std::any_of(
        tabla.indices.begin(), tabla.indices.end(), [columna](const tsql::Indice& i) {
            return i.clase != tsql::Indice::Clase::Indice &&
                   std::find(i.columnas.begin(), i.columnas.end(), columna) != i.columnas.end();
        });
}

Valor DePaso(const tsql::Tipo& tipo, std::int64_t numero) {
    if (tipo.EsTexto()) return Valor::DeTexto("\x01" + std::to_string(numero));
    return Valor::De(kDePaso + numero);
}

std::string SqlDeFila(const Tabla& tabla, const std::vector<int>& columnas) {
    std::string sql;
    for (const int c : columnas) {
        sql += (sql.empty() ? "UPDATE " + tabla.sql + " SET " : ",") +
               EntreComillas(tabla.columnas[static_cast<std::size_t>(c)].nombre) + "=?";
    }
    return sql + " WHERE rowid=?";
}

}  // namespace

Resultado<bool> Interprete::SinPartes(int codigo) {
    if ((codigo & 0xFF) == SQLITE_CONSTRAINT) return false;
    return sesion_.Base().Fallo(codigo);
}

/// An UPDATE whose keys pass through values that other rows of it still hold (ID=ID+1): every key
/// is first moved out of the way. False when keys repeat even so.
Resultado<bool> Interprete::EscribirPorPartes(const PlanListo& listo, const Marco& marco) {
    const Tabla& tabla = *listo.plan.tabla;
    std::vector<int> claves;
    for (const int c : listo.plan.columnas_escritas) {
        if (EsClave(tabla, c)) claves.push_back(c);
    }
    const bool con_referencias =
        !tabla.foraneas.empty() || sesion_.Catalogo().Referente(tabla) != nullptr;
    const bool ancha = std::any_of(claves.begin(), claves.end(), [&](int c) {
        const tsql::Tipo& tipo = tabla.columnas[static_cast<std::size_t>(c)].tipo;
        return !tipo.EsTexto() && (tipo.EsAncho() || !(tipo.EsExacto() || tipo.EsFecha()));
    });
    if (claves.empty() || ancha || con_referencias) return false;

    std::vector<FilaNueva> filas;
    {
        PlanListo lectura;
        lectura.plan.ranuras = listo.plan.ranuras;
        QUIMO_TRY(lectura.sentencia, sesion_.Base().Preparar(listo.plan.sql_filas));
        QUIMO_TRY_VOID(Ligar(lectura, marco));
        QUIMO_TRY_VOID(sesion_.Base().CadaFila(lectura.sentencia, [&]() -> Hecho {
            FilaNueva fila{lectura.sentencia.Entero(0), {}};
            for (std::size_t i = 0; i < listo.plan.columnas_escritas.size(); ++i) {
                fila.valores.push_back(lectura.sentencia.Leer(static_cast<int>(i) + 1));
            }
            filas.push_back(std::move(fila));
            return {};
        }));
    }
    if (filas.size() < 2) return false;
    QUIMO_TRY(PuntoDeSentencia punto, PuntoDeSentencia::Abrir(sesion_));
    const int columna_fila = tabla.ColumnaFila();
    const bool mueve_fila = std::find(claves.begin(), claves.end(), columna_fila) != claves.end();
    QUIMO_TRY(Preparada apartar, sesion_.Base().Preparar(SqlDeFila(tabla, claves)));
    QUIMO_TRY(Preparada escribir,
              sesion_.Base().Preparar(SqlDeFila(tabla, listo.plan.columnas_escritas)));
    std::int64_t numero = 0;
    for (FilaNueva& fila : filas) {
        int lugar = 0;
        ++numero;
        for (const int c : claves) {
            apartar.Ligar(++lugar,
                          DePaso(tabla.columnas[static_cast<std::size_t>(c)].tipo, numero));
        }
        apartar.Ligar(++lugar, fila.fila);
        if (const int codigo = apartar.Paso(); codigo != SQLITE_DONE) return SinPartes(codigo);
        apartar.Reiniciar();
        if (mueve_fila) fila.fila = kDePaso + numero;
    }
    for (const FilaNueva& fila : filas) {
        int lugar = 0;
        for (const Valor& valor : fila.valores)
            escribir.Ligar(++lugar, valor);
        escribir.Ligar(++lugar, fila.fila);
        if (const int codigo = escribir.Paso(); codigo != SQLITE_DONE) return SinPartes(codigo);
        escribir.Reiniciar();
    }
    apartar = Preparada();
    escribir = Preparada();
    QUIMO_TRY_VOID(punto.Confirmar());
    filas_por_partes_ = static_cast<std::int64_t>(filas.size());
    return true;
}

}  // namespace quimo::data::embebido
