#include "data/embebido/escritura_por_partes.h"

#include <algorithm>

#include <sqlite3.h>

#include "tsql/valores/texto.h"

namespace quimo::data::embebido {

namespace {

using tsql::EntreComillas;
using tsql::Tabla;

/// Values that no row of a restaurant holds, for the keys that are on their way.
constexpr std::int64_t kDePaso = -4'000'000'000'000'000'000;

bool EsClave(const Tabla& tabla, int columna) {
    return std::any_of(
        tabla.indices.begin(), tabla.indices.end(), [columna](const tsql::Indice& i) {
            return i.clase != tsql::Indice::Clase::Indice &&
                   std::find(i.columnas.begin(), i.columnas.end(), columna) != i.columnas.end();
        });
}

const tsql::Tipo& TipoDe(const Tabla& tabla, int columna) {
    return tabla.columnas[static_cast<std::size_t>(columna)].tipo;
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

EscrituraPorPartes::EscrituraPorPartes(Sesion& sesion, const tsql::Plan& plan)
    : sesion_(sesion), plan_(plan) {
    for (const int c : plan.columnas_escritas) {
        if (EsClave(*plan.tabla, c)) claves_.push_back(c);
    }
}

bool EscrituraPorPartes::Sirve() const {
    const Tabla& tabla = *plan_.tabla;
    const bool con_referencias =
        !tabla.foraneas.empty() || sesion_.Catalogo().Referente(tabla) != nullptr;
    const bool ancha = std::any_of(claves_.begin(), claves_.end(), [&](int c) {
        const tsql::Tipo& tipo = TipoDe(tabla, c);
        return !tipo.EsTexto() && (tipo.EsAncho() || !(tipo.EsExacto() || tipo.EsFecha()));
    });
    return !claves_.empty() && !ancha && !con_referencias;
}

Resultado<std::optional<std::int64_t>> EscrituraPorPartes::Escribir(Preparada lectura) {
    const auto repetida = std::optional<std::int64_t>();
    QUIMO_TRY(std::vector<FilaNueva> filas, LeerFilas(lectura));
    lectura = Preparada();
    if (filas.size() < 2) return repetida;
    QUIMO_TRY(PuntoDeSentencia punto, PuntoDeSentencia::Abrir(sesion_));
    QUIMO_TRY(const bool apartadas, Apartar(filas));
    if (!apartadas) return repetida;
    QUIMO_TRY(const bool escritas, EscribirFilas(filas));
    if (!escritas) return repetida;
    QUIMO_TRY_VOID(punto.Confirmar());
    return std::optional<std::int64_t>(filas.size());
}

Resultado<std::vector<EscrituraPorPartes::FilaNueva>> EscrituraPorPartes::LeerFilas(
    Preparada& lectura) {
    std::vector<FilaNueva> filas;
    QUIMO_TRY_VOID(sesion_.Base().CadaFila(lectura, [&]() -> Hecho {
        FilaNueva fila{lectura.Entero(0), {}};
        for (std::size_t i = 0; i < plan_.columnas_escritas.size(); ++i) {
            fila.valores.push_back(lectura.Leer(static_cast<int>(i) + 1));
        }
        filas.push_back(std::move(fila));
        return {};
    }));
    return filas;
}

/// Gives every row keys that none has, and notes the row's own number when that is one of them.
Resultado<bool> EscrituraPorPartes::Apartar(std::vector<FilaNueva>& filas) {
    const Tabla& tabla = *plan_.tabla;
    const bool mueve_fila =
        std::find(claves_.begin(), claves_.end(), tabla.ColumnaFila()) != claves_.end();
    QUIMO_TRY(Preparada apartar, sesion_.Base().Preparar(SqlDeFila(tabla, claves_)));
    std::int64_t numero = 0;
    for (FilaNueva& fila : filas) {
        int lugar = 0;
        ++numero;
        for (const int c : claves_)
            apartar.Ligar(++lugar, DePaso(TipoDe(tabla, c), numero));
        apartar.Ligar(++lugar, fila.fila);
        QUIMO_TRY(const bool hecha, Paso(apartar));
        if (!hecha) return false;
        if (mueve_fila) fila.fila = kDePaso + numero;
    }
    return true;
}

Resultado<bool> EscrituraPorPartes::EscribirFilas(const std::vector<FilaNueva>& filas) {
    QUIMO_TRY(Preparada escribir,
              sesion_.Base().Preparar(SqlDeFila(*plan_.tabla, plan_.columnas_escritas)));
    for (const FilaNueva& fila : filas) {
        int lugar = 0;
        for (const Valor& valor : fila.valores)
            escribir.Ligar(++lugar, valor);
        escribir.Ligar(++lugar, fila.fila);
        QUIMO_TRY(const bool hecha, Paso(escribir));
        if (!hecha) return false;
    }
    return true;
}

/// False when a constraint refuses it.
Resultado<bool> EscrituraPorPartes::Paso(Preparada& sentencia) {
    const int codigo = sentencia.Paso();
    if (codigo == SQLITE_DONE) {
        sentencia.Reiniciar();
        return true;
    }
    if ((codigo & 0xFF) == SQLITE_CONSTRAINT) return false;
    return sesion_.Base().Fallo(codigo);
}

}  // namespace quimo::data::embebido
