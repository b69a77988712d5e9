#include "jet/escritor.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <string>

#include "base/check.h"
#include "jet/clave.h"
#include "jet/indice.h"
#include "jet/mapa.h"
#include "jet/pagina_datos.h"

namespace quimo::jet {

Result<void> Escritor::PuedeEscribir() const {
    const std::string tabla = "La tabla " + esquema_.tabla.nombre;
    for (const DefColumna& columna : esquema_.tabla.columnas) {
        if (!SeEscribe(columna.tipo)) {
            return Error{Error::Codigo::NoSoportado,
                         tabla + " no se puede cambiar: la columna " + columna.nombre +
                             " es de un tipo que no se escribe.",
                         "type " + std::to_string(static_cast<int>(columna.tipo))};
        }
    }
    for (const DefIndice& indice : esquema_.tabla.indices) {
        if (indice.foranea) {
            return Error{Error::Codigo::NoSoportado,
                         tabla + " no se puede cambiar: tiene relaciones con otras tablas (" +
                             indice.nombre + ")."};
        }
    }
    for (const IndiceReal& indice : esquema_.reales) {
        QUIMO_TRY_VOID(ComprobarOrden(esquema_, indice));
    }
    return {};
}

std::optional<MapasDeLargos> Escritor::MapasDe(std::size_t columna) const {
    const ColumnaFisica& fisica = esquema_.fisicas[columna];
    if (!fisica.mapa_largos || fisica.mapa_largos->pagina == 0 ||
        fisica.mapa_largos_libres->pagina == 0) {
        return std::nullopt;
    }
    return MapasDeLargos{*fisica.mapa_largos, *fisica.mapa_largos_libres};
}

Result<std::optional<Escritor::Bytes>> Escritor::ClaveDe(std::size_t real, const Fila& fila) const {
    const IndiceReal& indice = esquema_.reales[real];
    if (indice.IgnoraNulos() && NulosDeClave(esquema_, indice, fila) == indice.columnas.size()) {
        return std::optional<Bytes>();
    }
    QUIMO_TRY(Bytes clave, ClaveDeFila(esquema_, indice, fila));
    if (clave.size() > kClaveMax) {
        return Error{Error::Codigo::Datos, "La clave del índice " + indice.nombre +
                                               " de la tabla " + esquema_.tabla.nombre +
                                               " sería demasiado larga."};
    }
    return std::optional<Bytes>(std::move(clave));
}

Result<void> Escritor::ComprobarRequerido(std::size_t real, const Fila& fila) const {
    const IndiceReal& indice = esquema_.reales[real];
    if (!indice.Requerido() || NulosDeClave(esquema_, indice, fila) == 0) return {};
    for (const IndiceReal::Columna& c : indice.columnas) {
        if (!EsNulo(fila[c.posicion])) continue;
        return Error{Error::Codigo::Restriccion, NombrarColumna(esquema_, c.posicion) +
                                                     " no puede quedar vacía: el índice " +
                                                     indice.nombre + " la requiere."};
    }
    return {};
}

Result<void> Escritor::ComprobarUnico(std::size_t real, const Fila& fila,
                                      const Bytes& clave) const {
    const IndiceReal& indice = esquema_.reales[real];
    if (!indice.Unico() || NulosDeClave(esquema_, indice, fila) == indice.columnas.size())
        return {};
    Indice arbol(almacen_, esquema_, real);
    QUIMO_TRY(const bool existe, arbol.ExisteClave(clave));
    if (!existe) return {};
    std::string valores;
    for (const IndiceReal::Columna& c : indice.columnas) {
        if (!valores.empty()) valores += ", ";
        valores += esquema_.tabla.columnas[c.posicion].nombre + " = " + Mostrar(fila[c.posicion]);
    }
    return Error{Error::Codigo::Restriccion, "La tabla " + esquema_.tabla.nombre +
                                                 " ya tiene una fila con " + valores + " (índice " +
                                                 indice.nombre + ")."};
}

bool Escritor::UsaAlguna(std::size_t real, const std::vector<bool>& columnas) const {
    const auto& claves = esquema_.reales[real].columnas;
    return std::any_of(claves.begin(), claves.end(),
                       [&](const IndiceReal::Columna& c) { return columnas[c.posicion]; });
}

Result<void> Escritor::PonerAutonumerico(Fila& fila) const {
    if (!esquema_.autonumerica || !EsNulo(fila[*esquema_.autonumerica])) return {};
    QUIMO_TRY(const PaginaLeida pagina, almacen_.Leer(esquema_.pagina));
    const auto ultimo = static_cast<std::int32_t>(U32(pagina->data() + kPosAutonumerico));
    if (ultimo == std::numeric_limits<std::int32_t>::max()) {
        return Error{
            Error::Codigo::Datos,
            "Se acabaron los números de " + NombrarColumna(esquema_, *esquema_.autonumerica) + "."};
    }
    fila[*esquema_.autonumerica] = ultimo + 1;
    return {};
}

/// Stores long values that do not stay in the row and returns the row's bytes.
Result<Escritor::Bytes> Escritor::AlojarFila(std::vector<Celda>& celdas) {
    const auto largo = [&](std::size_t en_fila_max) {
        std::size_t total = LargoDeFila(esquema_, celdas);
        for (const Celda& celda : celdas) {
            if (!celda.por_guardar) continue;
            total += kLargoDescriptor;
            if (celda.bytes.size() > en_fila_max) total -= celda.bytes.size();
        }
        return total;
    };
    const std::size_t en_fila_max = largo(kLargoEnFilaMax) <= kFilaMax ? kLargoEnFilaMax : 0;
    if (const std::size_t total = largo(en_fila_max); total > kFilaMax) {
        return Error{Error::Codigo::Datos, "Una fila de la tabla " + esquema_.tabla.nombre +
                                               " mide " + std::to_string(total) +
                                               " bytes y el máximo es " + std::to_string(kFilaMax) +
                                               "."};
    }
    for (std::size_t i = 0; i < celdas.size(); ++i) {
        Celda& celda = celdas[i];
        if (!celda.por_guardar) continue;
        celda.por_guardar = false;
        if (celda.bytes.size() <= en_fila_max) {
            celda.bytes = LargoEnFila(celda.bytes);
            continue;
        }
        const auto mapas = MapasDe(i);
        if (!mapas) {
            return Error{Error::Codigo::NoSoportado,
                         NombrarColumna(esquema_, i) + " no tiene dónde guardar valores largos."};
        }
        QUIMO_TRY(celda.bytes, GuardarLargo(almacen_, *mapas, celda.bytes));
    }
    return ArmarFila(esquema_, celdas);
}

/// Changes the row count and takes note of an autonumber that was used.
Result<void> Escritor::Contar(std::int32_t filas, const Fila* fila) {
    QUIMO_TRY(Pagina * pagina, almacen_.Escribir(esquema_.pagina));
    std::uint8_t* p = pagina->data();
    const std::int64_t total = std::int64_t{U32(p + kPosFilas)} + filas;
    PonerU32(p + kPosFilas, total < 0 ? 0 : static_cast<std::uint32_t>(total));
    if (fila == nullptr || !esquema_.autonumerica) return {};
    const auto* numero = std::get_if<std::int32_t>(&(*fila)[*esquema_.autonumerica]);
    if (numero != nullptr && *numero > static_cast<std::int32_t>(U32(p + kPosAutonumerico))) {
        PonerU32(p + kPosAutonumerico, static_cast<std::uint32_t>(*numero));
    }
    return {};
}

Result<IdFila> Escritor::Insertar(std::span<const Valor> valores) {
    if (valores.size() != esquema_.fisicas.size()) {
        return Error{Error::Codigo::Datos, "La tabla " + esquema_.tabla.nombre + " tiene " +
                                               std::to_string(esquema_.fisicas.size()) +
                                               " columnas y se dieron " +
                                               std::to_string(valores.size()) + " valores."};
    }
    Fila fila(valores.begin(), valores.end());
    QUIMO_TRY_VOID(PonerAutonumerico(fila));
    std::vector<Celda> celdas;
    celdas.reserve(fila.size());
    for (std::size_t i = 0; i < fila.size(); ++i) {
        QUIMO_TRY(Celda celda, CifrarValor(esquema_, i, fila[i]));
        Canonizar(esquema_, i, celda, fila[i]);
        celdas.push_back(std::move(celda));
    }
    Claves claves;
    for (std::size_t i = 0; i < esquema_.reales.size(); ++i) {
        QUIMO_TRY_VOID(ComprobarRequerido(i, fila));
        QUIMO_TRY(auto clave, ClaveDe(i, fila));
        if (clave) QUIMO_TRY_VOID(ComprobarUnico(i, fila, *clave));
        claves.push_back(std::move(clave));
    }
    Transaccion transaccion(almacen_);
    QUIMO_TRY(const Bytes bytes, AlojarFila(celdas));
    QUIMO_TRY(const Puntero lugar,
              ColocarFila(almacen_, MapasDeFilas(), esquema_.pagina, bytes, 0));
    const IdFila id{lugar.pagina, lugar.fila};
    for (std::size_t i = 0; i < claves.size(); ++i) {
        if (claves[i]) QUIMO_TRY_VOID(Indice(almacen_, esquema_, i).Agregar(*claves[i], id));
    }
    QUIMO_TRY_VOID(Contar(1, &fila));
    transaccion.Confirmar();
    return id;
}

Result<void> Escritor::Actualizar(IdFila id, std::span<const Cambio> cambios) {
    std::vector<Puntero> paso;
    QUIMO_TRY(const FilaCruda contenido, AbrirFila(almacen_, esquema_, id, &paso));
    const Bytes viejos(contenido.Bytes().begin(), contenido.Bytes().end());
    Lectura lectura(almacen_);
    Fila vieja;
    QUIMO_TRY_VOID(LeerValores(lectura, esquema_, viejos, vieja));
    const auto vista = VistaFila::De(esquema_, viejos);
    QUIMO_CHECK(vista.has_value());
    std::vector<Celda> celdas;
    for (std::size_t i = 0; i < vieja.size(); ++i) {
        auto celda = CeldaDeFila(esquema_, *vista, i);
        QUIMO_CHECK(celda.has_value());  // its value was read
        celdas.push_back(std::move(*celda));
    }
    const std::vector<Celda> anteriores = celdas;
    Fila nueva = vieja;
    std::vector<bool> cambiadas(vieja.size(), false);
    for (const Cambio& cambio : cambios) {
        const std::size_t i = cambio.columna;
        if (i >= vieja.size() || (EsNulo(cambio.valor) && esquema_.autonumerica == i)) {
            return Error{Error::Codigo::Datos, "Un cambio no es posible en la tabla " +
                                                   esquema_.tabla.nombre + ", columna " +
                                                   std::to_string(i) + "."};
        }
        nueva[i] = cambio.valor;
        QUIMO_TRY(celdas[i], CifrarValor(esquema_, i, cambio.valor));
        Canonizar(esquema_, i, celdas[i], nueva[i]);
        cambiadas[i] = true;
    }
    Claves antes(esquema_.reales.size());
    Claves despues(esquema_.reales.size());
    for (std::size_t i = 0; i < esquema_.reales.size(); ++i) {
        if (!UsaAlguna(i, cambiadas)) continue;
        QUIMO_TRY_VOID(ComprobarRequerido(i, nueva));
        QUIMO_TRY(antes[i], ClaveDe(i, vieja));
        QUIMO_TRY(despues[i], ClaveDe(i, nueva));
        if (despues[i] && antes[i] != despues[i]) {
            QUIMO_TRY_VOID(ComprobarUnico(i, nueva, *despues[i]));
        }
    }
    Transaccion transaccion(almacen_);
    QUIMO_TRY(const Bytes bytes, AlojarFila(celdas));
    QUIMO_TRY_VOID(Reescribir(id, contenido, paso, bytes));
    for (std::size_t i = 0; i < antes.size(); ++i) {
        if (antes[i] == despues[i]) continue;
        Indice indice(almacen_, esquema_, i);
        if (antes[i]) QUIMO_TRY_VOID(indice.Quitar(*antes[i], id));
        if (despues[i]) QUIMO_TRY_VOID(indice.Agregar(*despues[i], id));
    }
    for (std::size_t i = 0; i < anteriores.size(); ++i) {
        if (cambiadas[i]) QUIMO_TRY_VOID(BorrarLargoDe(i, anteriores[i]));
    }
    const bool numerada = esquema_.autonumerica && cambiadas[*esquema_.autonumerica];
    if (numerada) QUIMO_TRY_VOID(Contar(0, &nueva));
    transaccion.Confirmar();
    return {};
}

/// Puts new content in place of a row's old one, on the same page if it has room.
Result<void> Escritor::Reescribir(IdFila id, const FilaCruda& contenido,
                                  std::span<const Puntero> paso, const Bytes& bytes) {
    const Puntero lugar = contenido.lugar;
    QUIMO_TRY(Pagina * pagina, EscribirPaginaDatos(almacen_, lugar.pagina, esquema_.pagina));
    if (CambiarLargo(*pagina, lugar.fila, bytes.size())) {
        const auto ranura = LeerRanura(*pagina, lugar.fila);
        QUIMO_CHECK(ranura.has_value());
        std::memcpy(pagina->data() + ranura->inicio, bytes.data(), bytes.size());
        return {};
    }
    QUIMO_TRY(const Puntero nuevo,
              ColocarFila(almacen_, MapasDeFilas(), esquema_.pagina, bytes, kRanuraOculta));
    QUIMO_TRY_VOID(BorrarRanuras(paso));
    QUIMO_TRY(Pagina * propia, EscribirPaginaDatos(almacen_, id.pagina, esquema_.pagina));
    const auto ranura = LeerRanura(*propia, id.fila);
    QUIMO_CHECK(ranura.has_value());
    if (ranura->Largo() < 4 && !CambiarLargo(*propia, id.fila, 4)) {
        return Error{Error::Codigo::Interno, "Una fila de la tabla " + esquema_.tabla.nombre +
                                                 " no puede crecer: su página está llena."};
    }
    PonerU32(propia->data() + LeerRanura(*propia, id.fila)->inicio, nuevo.Crudo());
    PonerBanderas(*propia, id.fila, kRanuraMovida);
    return {};
}

Result<void> Escritor::BorrarRanuras(std::span<const Puntero> lugares) {
    for (const Puntero lugar : lugares) {
        QUIMO_TRY(Pagina * pagina, EscribirPaginaDatos(almacen_, lugar.pagina, esquema_.pagina));
        const auto ranura = LeerRanura(*pagina, lugar.fila);
        if (!ranura || ranura->Borrada())
            return almacen_.Danado(lugar.ATexto() + " se borra dos veces");
        BorrarRanura(*pagina, lugar.fila);
        QUIMO_TRY_VOID(AnotarLugar(almacen_, esquema_.libres, lugar.pagina));
    }
    return {};
}

Result<void> Escritor::BorrarLargoDe(std::size_t columna, const Celda& celda) {
    if (!EsLargo(esquema_.tabla.columnas[columna].tipo) || celda.bytes.empty()) return {};
    return BorrarLargo(almacen_, MapasDe(columna), celda.bytes);
}

Result<void> Escritor::Borrar(IdFila id) {
    std::vector<Puntero> lugares = {{id.pagina, id.fila}};
    QUIMO_TRY(const FilaCruda contenido, AbrirFila(almacen_, esquema_, id, &lugares));
    const Bytes bytes(contenido.Bytes().begin(), contenido.Bytes().end());
    Lectura lectura(almacen_);
    Fila fila;
    QUIMO_TRY_VOID(LeerValores(lectura, esquema_, bytes, fila));
    Claves claves;
    for (std::size_t i = 0; i < esquema_.reales.size(); ++i) {
        QUIMO_TRY(auto clave, ClaveDe(i, fila));
        claves.push_back(std::move(clave));
    }
    const auto vista = VistaFila::De(esquema_, bytes);
    QUIMO_CHECK(vista.has_value());
    Transaccion transaccion(almacen_);
    for (std::size_t i = 0; i < claves.size(); ++i) {
        if (claves[i]) QUIMO_TRY_VOID(Indice(almacen_, esquema_, i).Quitar(*claves[i], id));
    }
    for (std::size_t i = 0; i < fila.size(); ++i) {
        const auto celda = CeldaDeFila(esquema_, *vista, i);
        if (celda) QUIMO_TRY_VOID(BorrarLargoDe(i, *celda));
    }
    std::reverse(lugares.begin(), lugares.end());
    QUIMO_TRY_VOID(BorrarRanuras(lugares));
    QUIMO_TRY_VOID(Contar(-1, nullptr));
    transaccion.Confirmar();
    return {};
}

/// Gives back all pages of a pair of maps.
Result<void> Escritor::VaciarPaginas(Puntero propias, Puntero libres, std::uint32_t dueno) {
    Mapa mapa(almacen_, propias);
    QUIMO_TRY(const std::vector<std::uint32_t> paginas, mapa.Miembros());
    for (const std::uint32_t numero : paginas) {
        QUIMO_TRY(const PaginaLeida pagina, almacen_.Leer(numero));
        if (!EsDeDatos(*pagina) || Dueno(*pagina) != dueno) {
            return almacen_.Danado("la página " + std::to_string(numero) + " no es de la tabla " +
                                   esquema_.tabla.nombre);
        }
        QUIMO_TRY_VOID(LiberarPagina(almacen_, numero));
    }
    QUIMO_TRY_VOID(mapa.Vaciar());
    return Mapa(almacen_, libres).Vaciar();
}

Result<void> Escritor::Vaciar() {
    Transaccion transaccion(almacen_);
    for (std::size_t i = 0; i < esquema_.reales.size(); ++i) {
        QUIMO_TRY_VOID(Indice(almacen_, esquema_, i).Vaciar());
    }
    for (std::size_t i = 0; i < esquema_.fisicas.size(); ++i) {
        const auto mapas = MapasDe(i);
        if (mapas) QUIMO_TRY_VOID(VaciarPaginas(mapas->propias, mapas->libres, kDuenoLargos));
    }
    QUIMO_TRY_VOID(VaciarPaginas(esquema_.propias, esquema_.libres, esquema_.pagina));
    QUIMO_TRY(Pagina * definicion, almacen_.Escribir(esquema_.pagina));
    PonerU32(definicion->data() + kPosFilas, 0);
    transaccion.Confirmar();
    return {};
}

}  // namespace quimo::jet
