#include "jet/tabla.h"

#include <algorithm>
#include <utility>

#include "jet/catalogo.h"
#include "jet/clave.h"
#include "jet/escritor.h"
#include "jet/esquema.h"
#include "jet/indice.h"
#include "jet/nucleo.h"
#include "jet/recorrido.h"
#include "jet/texto.h"

namespace quimo::jet {

namespace {

Result<std::size_t> RealDe(const Esquema& esquema, std::string_view indice) {
    const auto logico = esquema.BuscarIndice(indice);
    if (!logico) {
        return Error{Error::Codigo::NoEncontrado, "La tabla " + esquema.tabla.nombre +
                                                      " no tiene un índice llamado " +
                                                      std::string(indice) + "."};
    }
    return esquema.real_de[*logico];
}

/// The key of values given for the leading columns of an index, in the form the file keeps them.
Result<std::vector<std::uint8_t>> ClaveBuscada(const Esquema& esquema, std::size_t real,
                                               std::span<const Valor> valores) {
    const IndiceReal& indice = esquema.reales[real];
    std::vector<Valor> canonicos(valores.begin(), valores.end());
    for (std::size_t i = 0; i < canonicos.size() && i < indice.columnas.size(); ++i) {
        const std::size_t columna = indice.columnas[i].posicion;
        if (TamanoFijo(esquema.tabla.columnas[columna].tipo) == 0) continue;
        QUIMO_TRY(const Celda celda, CifrarValor(esquema, columna, canonicos[i]));
        Canonizar(esquema, columna, celda, canonicos[i]);
    }
    return ClaveDeValores(esquema, indice, canonicos);
}

/// A refusal for its relationships names them, not the hidden indexes that keep them.
Result<void> SinImpedimentos(const Nucleo& nucleo, const Esquema& esquema) {
    auto puede = Escritor(*nucleo.almacen, esquema).PuedeEscribir();
    const auto& indices = esquema.tabla.indices;
    if (puede || std::none_of(indices.begin(), indices.end(),
                              [](const DefIndice& indice) { return indice.foranea; })) {
        return puede;
    }
    const auto relaciones = LeerRelaciones(*nucleo.almacen);
    std::string nombres;
    for (const Relacion& r : relaciones ? *relaciones : std::vector<Relacion>()) {
        if (!MismoNombre(r.tabla, esquema.tabla.nombre) &&
            !MismoNombre(r.referida, esquema.tabla.nombre)) {
            continue;
        }
        nombres +=
            (nombres.empty() ? "" : ", ") + r.nombre + " (de " + r.tabla + " a " + r.referida + ")";
    }
    if (nombres.empty()) return puede;
    return Error{Error::Codigo::NoSoportado,
                 "La tabla " + esquema.tabla.nombre +
                     " no se puede cambiar: sus relaciones no se sabrían cuidar: " + nombres + "."};
}

Result<void> PermiteCambios(const Nucleo& nucleo, const Esquema& esquema) {
    if (nucleo.modo != Modo::Escritura) {
        return Error{Error::Codigo::NoSoportado,
                     "El archivo " + nucleo.almacen->Ruta() + " se abrió solo para lectura."};
    }
    if (esquema.EsDeSistema()) {
        return Error{Error::Codigo::NoSoportado,
                     "La tabla de sistema " + esquema.tabla.nombre + " no se puede cambiar."};
    }
    return SinImpedimentos(nucleo, esquema);
}

}  // namespace

Cursor::Cursor(std::unique_ptr<RecorridoPaginas> recorrido) : recorrido_(std::move(recorrido)) {}
Cursor::Cursor(Cursor&&) noexcept = default;
Cursor& Cursor::operator=(Cursor&&) noexcept = default;
Cursor::~Cursor() = default;

Result<bool> Cursor::Siguiente() {
    QUIMO_TRY(const bool hay, recorrido_->Avanzar());
    if (hay) QUIMO_TRY_VOID(recorrido_->Leer(recorrido_->valores));
    return hay;
}

const Fila& Cursor::Valores() const { return recorrido_->valores; }
IdFila Cursor::Id() const { return recorrido_->Id(); }

CursorIndice::CursorIndice(std::unique_ptr<LectorIndice> lector) : lector_(std::move(lector)) {}
CursorIndice::CursorIndice(CursorIndice&&) noexcept = default;
CursorIndice& CursorIndice::operator=(CursorIndice&&) noexcept = default;
CursorIndice::~CursorIndice() = default;

Result<bool> CursorIndice::Siguiente() { return lector_->Siguiente(); }
IdFila CursorIndice::Id() const { return lector_->Id(); }

const DefTabla& Tabla::Definicion() const { return esquema_->tabla; }
bool Tabla::EsDeSistema() const { return esquema_->EsDeSistema(); }

Result<std::size_t> Tabla::Columna(std::string_view nombre) const {
    const auto columna = esquema_->BuscarColumna(nombre);
    if (columna) return *columna;
    return Error{
        Error::Codigo::NoEncontrado,
        "La tabla " + Nombre() + " no tiene una columna llamada " + std::string(nombre) + "."};
}

Result<std::uint32_t> Tabla::Cuantas() const {
    QUIMO_TRY(const PaginaLeida pagina, nucleo_->almacen->Leer(esquema_->pagina));
    return U32(pagina->data() + kPosFilas);
}

Result<std::int32_t> Tabla::UltimoAutonumerico() const {
    QUIMO_TRY(const PaginaLeida pagina, nucleo_->almacen->Leer(esquema_->pagina));
    return static_cast<std::int32_t>(U32(pagina->data() + kPosAutonumerico));
}

Result<void> Tabla::SeEscribe() const { return SinImpedimentos(*nucleo_, *esquema_); }

Result<Cursor> Tabla::Recorrer() const {
    QUIMO_TRY(auto recorrido, RecorridoPaginas::Empezar(*nucleo_->almacen, esquema_));
    recorrido->Retener(nucleo_);
    return Cursor(std::move(recorrido));
}

Result<Fila> Tabla::Leer(IdFila id) const {
    QUIMO_TRY(const FilaCruda cruda, AbrirFila(*nucleo_->almacen, *esquema_, id));
    Lectura lectura(*nucleo_->almacen);
    Fila fila;
    QUIMO_TRY_VOID(LeerValores(lectura, *esquema_, cruda.Bytes(), fila));
    return fila;
}

Result<IdFila> Tabla::Insertar(std::span<const Valor> valores) {
    QUIMO_TRY_VOID(PermiteCambios(*nucleo_, *esquema_));
    return Escritor(*nucleo_->almacen, *esquema_).Insertar(valores);
}

Result<void> Tabla::Actualizar(IdFila id, std::span<const Cambio> cambios) {
    QUIMO_TRY_VOID(PermiteCambios(*nucleo_, *esquema_));
    return Escritor(*nucleo_->almacen, *esquema_).Actualizar(id, cambios);
}

Result<void> Tabla::Borrar(IdFila id) {
    QUIMO_TRY_VOID(PermiteCambios(*nucleo_, *esquema_));
    return Escritor(*nucleo_->almacen, *esquema_).Borrar(id);
}

Result<void> Tabla::Vaciar() {
    QUIMO_TRY_VOID(PermiteCambios(*nucleo_, *esquema_));
    return Escritor(*nucleo_->almacen, *esquema_).Vaciar();
}

Result<std::vector<IdFila>> Tabla::Buscar(std::string_view indice,
                                          std::span<const Valor> clave) const {
    QUIMO_TRY(const std::size_t real, RealDe(*esquema_, indice));
    QUIMO_TRY(const std::vector<std::uint8_t> bytes, ClaveBuscada(*esquema_, real, clave));
    const bool completa = clave.size() == esquema_->reales[real].columnas.size();
    LectorIndice lector(*nucleo_->almacen, *esquema_, real);
    QUIMO_TRY_VOID(lector.Situar(bytes, bytes));
    std::vector<IdFila> filas;
    while (true) {
        QUIMO_TRY(const bool hay, lector.Siguiente());
        if (!hay) return filas;
        // A whole key may begin another one: an empty Binary begins them all.
        const auto entrada = lector.Entrada();
        if (completa && entrada.size() != bytes.size() + kLargoFilaEnIndice) continue;
        filas.push_back(lector.Id());
    }
}

Result<std::optional<IdFila>> Tabla::BuscarClave(std::span<const Valor> clave) const {
    for (const DefIndice& indice : esquema_->tabla.indices) {
        if (!indice.primaria) continue;
        if (clave.size() != indice.columnas.size()) {
            return Error{Error::Codigo::Datos, "La clave de la tabla " + Nombre() + " tiene " +
                                                   std::to_string(indice.columnas.size()) +
                                                   " columnas."};
        }
        QUIMO_TRY(const std::vector<IdFila> filas, Buscar(indice.nombre, clave));
        if (filas.empty()) return std::optional<IdFila>();
        return std::optional<IdFila>(filas.front());
    }
    return Error{Error::Codigo::NoEncontrado, "La tabla " + Nombre() + " no tiene clave primaria."};
}

Result<CursorIndice> Tabla::RecorrerIndice(std::string_view indice, const Rango& rango) const {
    QUIMO_TRY(const std::size_t real, RealDe(*esquema_, indice));
    std::vector<std::uint8_t> desde;
    std::vector<std::uint8_t> hasta;
    if (rango.desde) {
        QUIMO_TRY(desde, ClaveBuscada(*esquema_, real, *rango.desde));
    }
    if (rango.hasta) {
        QUIMO_TRY(hasta, ClaveBuscada(*esquema_, real, *rango.hasta));
    }
    auto lector = std::make_unique<LectorIndice>(*nucleo_->almacen, *esquema_, real);
    lector->Retener(nucleo_, esquema_);
    QUIMO_TRY_VOID(lector->Situar(desde, std::move(hasta)));
    return CursorIndice(std::move(lector));
}

}  // namespace quimo::jet
