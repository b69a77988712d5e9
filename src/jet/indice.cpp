#include "jet/indice.h"

#include <algorithm>
#include <string>

#include "base/check.h"
#include "jet/mapa.h"

namespace quimo::jet {

namespace {

constexpr std::size_t kNivelesMax = 20;

bool Iguales(std::span<const std::uint8_t> a, std::span<const std::uint8_t> b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end());
}

/// The child that holds an entry or where it belongs.
std::size_t ElegirHijo(const PaginaIndice& nodo, std::span<const std::uint8_t> entrada) {
    const std::size_t i = nodo.Buscar(entrada);
    return i == nodo.Entradas() && nodo.cola == 0 ? i - 1 : i;
}

std::uint32_t PaginaDeHijo(const PaginaIndice& nodo, std::size_t hijo) {
    return hijo < nodo.Entradas() ? nodo.Hijo(hijo) : nodo.cola;
}

/// A node of two or more children keeps the last one in its tail, without an entry.
void PasarUltimoACola(PaginaIndice& nodo) {
    if (nodo.hoja || nodo.cola != 0 || nodo.Entradas() < 2) return;
    nodo.cola = nodo.Hijo(nodo.Entradas() - 1);
    nodo.Quitar(nodo.Entradas() - 1);
}

/// Divides [desde, hasta) into ranges that fit a page each and appends where they end.
bool Dividir(const PaginaIndice& pagina, std::size_t desde, std::size_t hasta,
             std::vector<std::size_t>& fines) {
    if (pagina.Parte(desde, hasta).Cabe()) {
        fines.push_back(hasta);
        return true;
    }
    if (hasta - desde < 2) return false;
    const std::size_t medio = desde + (hasta - desde) / 2;
    return Dividir(pagina, desde, medio, fines) && Dividir(pagina, medio, hasta, fines);
}

}  // namespace

std::vector<std::uint8_t> EntradaDe(std::span<const std::uint8_t> clave, IdFila id) {
    std::vector<std::uint8_t> entrada(clave.begin(), clave.end());
    for (int i = 16; i >= 0; i -= 8)
        entrada.push_back(static_cast<std::uint8_t>(id.pagina >> i));
    entrada.push_back(id.fila);
    return entrada;
}

IdFila FilaDeEntrada(std::span<const std::uint8_t> entrada) {
    const std::uint32_t crudo = U32Be(entrada.data() + entrada.size() - kLargoFilaEnIndice);
    return {crudo >> 8, static_cast<std::uint8_t>(crudo & 0xFF)};
}

Error Indice::Danado(const char* que) const {
    return almacen_->Danado("el índice " + Real().nombre + " de la tabla " +
                            esquema_->tabla.nombre + " " + que);
}

Result<Indice::Camino> Indice::Bajar(std::span<const std::uint8_t> entrada) const {
    Camino camino;
    std::uint32_t pagina = Real().raiz;
    while (camino.size() < kNivelesMax) {
        Nivel nivel;
        nivel.pagina = pagina;
        QUIMO_TRY_VOID(nivel.contenido.Leer(*almacen_, pagina, esquema_->pagina));
        const bool hoja = nivel.contenido.hoja;
        if (!camino.empty()) camino.back().hijos_son_nodos = !hoja;
        if (!hoja) {
            if (nivel.contenido.Cuantos() == 0) return Danado("tiene un nodo vacío");
            nivel.hijo = ElegirHijo(nivel.contenido, entrada);
            pagina = PaginaDeHijo(nivel.contenido, nivel.hijo);
        }
        camino.push_back(std::move(nivel));
        if (hoja) return camino;
    }
    return Danado("no tiene fondo");
}

Result<bool> Indice::TieneVecina(const PaginaIndice& hoja, std::size_t i,
                                 std::span<const std::uint8_t> clave) const {
    if (i > 0 && Iguales(hoja.Clave(i - 1), clave)) return true;
    if (i < hoja.Entradas()) {
        if (Iguales(hoja.Clave(i), clave)) return true;
    } else if (hoja.siguiente != 0) {
        PaginaIndice otra;
        QUIMO_TRY_VOID(otra.Leer(*almacen_, hoja.siguiente, esquema_->pagina));
        if (otra.Entradas() > 0 && Iguales(otra.Clave(0), clave)) return true;
    }
    if (i == 0 && hoja.previa != 0) {
        PaginaIndice otra;
        QUIMO_TRY_VOID(otra.Leer(*almacen_, hoja.previa, esquema_->pagina));
        const std::size_t n = otra.Entradas();
        return n > 0 && Iguales(otra.Clave(n - 1), clave);
    }
    return false;
}

Result<bool> Indice::ExisteClave(std::span<const std::uint8_t> clave) const {
    const std::vector<std::uint8_t> entrada = EntradaDe(clave, {});
    QUIMO_TRY(const Camino camino, Bajar(entrada));
    const PaginaIndice& hoja = camino.back().contenido;
    return TieneVecina(hoja, hoja.Buscar(entrada), clave);
}

Result<void> Indice::ContarDistinta() {
    QUIMO_TRY(Pagina * pagina, almacen_->Escribir(esquema_->pagina));
    std::uint8_t* p = pagina->data() + kPosContadores + kLargoContador * numero_ + 4;
    PonerU32(p, U32(p) + 1);
    return {};
}

void Indice::CorregirSeparadores(Camino& camino, std::size_t nivel,
                                 std::span<const std::uint8_t> entrada) {
    for (std::size_t k = nivel; k > 0; --k) {
        Nivel& padre = camino[k - 1];
        if (padre.hijo >= padre.contenido.Entradas()) continue;  // the tail has no entry
        padre.contenido.Cambiar(padre.hijo, entrada);
        padre.cambiado = true;
        if (padre.hijo + 1 < padre.contenido.Cuantos()) return;
    }
}

Result<void> Indice::Agregar(std::span<const std::uint8_t> clave, IdFila id) {
    const std::vector<std::uint8_t> entrada = EntradaDe(clave, id);
    QUIMO_TRY(Camino camino, Bajar(entrada));
    Nivel& nivel = camino.back();
    PaginaIndice& hoja = nivel.contenido;
    const std::size_t i = hoja.Buscar(entrada);
    if (i < hoja.Entradas() && Iguales(hoja.Entrada(i), entrada)) {
        return Danado("ya nombra una fila que se agrega");
    }
    QUIMO_TRY(const bool repetida, TieneVecina(hoja, i, clave));
    if (!repetida) QUIMO_TRY_VOID(ContarDistinta());
    hoja.Insertar(i, entrada);
    nivel.cambiado = true;
    const bool ultima = i + 1 == hoja.Entradas();
    const bool al_final = ultima && hoja.siguiente == 0;
    if (ultima) CorregirSeparadores(camino, camino.size() - 1, entrada);
    return EscribirCamino(camino, al_final);
}

Result<void> Indice::EscribirCamino(Camino& camino, bool al_final) {
    for (std::size_t k = camino.size(); k > 0; --k) {
        if (!camino[k - 1].cambiado) continue;
        if (camino[k - 1].contenido.Cabe()) {
            QUIMO_TRY_VOID(camino[k - 1].contenido.Escribir(*almacen_, camino[k - 1].pagina));
            continue;
        }
        if (k == 1) {
            QUIMO_TRY_VOID(PartirRaiz(camino));
            ++k;  // what was in the root is one level lower now
        }
        QUIMO_TRY_VOID(Partir(camino, k - 1, al_final));
    }
    return {};
}

/// The root's page number never changes: its content moves to a new page, its only child.
Result<void> Indice::PartirRaiz(Camino& camino) {
    QUIMO_TRY(const std::uint32_t nueva, AsignarPagina(*almacen_));
    QUIMO_TRY_VOID(Mapa(*almacen_, Real().mapa).Poner(nueva));
    Nivel raiz;
    raiz.pagina = Real().raiz;
    raiz.contenido.hoja = false;
    raiz.contenido.tabla = esquema_->pagina;
    raiz.contenido.cola = nueva;
    raiz.hijo = 0;
    raiz.hijos_son_nodos = !camino.front().contenido.hoja;
    raiz.cambiado = true;
    camino.front().pagina = nueva;
    camino.front().contenido.previa = 0;
    camino.front().contenido.siguiente = 0;
    camino.insert(camino.begin(), std::move(raiz));
    return {};
}

/// Divides a page that does not fit. New pages take the front of it and stand before it in the
/// parent, so that its own place there need not change.
Result<void> Indice::Partir(Camino& camino, std::size_t k, bool al_final) {
    QUIMO_CHECK(k > 0);
    Nivel& nivel = camino[k];
    const PaginaIndice entera = std::move(nivel.contenido);
    const std::size_t n = entera.Entradas();
    std::vector<std::size_t> fines;
    // Keys that come in ascending order leave full pages behind.
    const std::size_t medio = al_final ? n - 1 : n / 2;
    if (n < 2 || !Dividir(entera, 0, medio, fines) || !Dividir(entera, medio, n, fines)) {
        return Danado("tiene una clave demasiado larga");
    }
    std::vector<PaginaIndice> partes;
    std::vector<std::uint32_t> paginas;
    std::size_t desde = 0;
    Nivel& padre = camino[k - 1];
    for (const std::size_t hasta : fines) {
        PaginaIndice parte = entera.Parte(desde, hasta);
        std::uint32_t pagina = nivel.pagina;
        if (hasta < n) {
            QUIMO_TRY(pagina, AsignarPagina(*almacen_));
            QUIMO_TRY_VOID(Mapa(*almacen_, Real().mapa).Poner(pagina));
            padre.contenido.Insertar(padre.hijo++, entera.Entrada(hasta - 1), pagina);
        } else {
            parte.cola = entera.cola;
        }
        PasarUltimoACola(parte);
        partes.push_back(std::move(parte));
        paginas.push_back(pagina);
        desde = hasta;
    }
    padre.cambiado = true;
    PasarUltimoACola(padre.contenido);
    for (std::size_t i = 0; i < partes.size(); ++i) {
        partes[i].previa = i == 0 ? entera.previa : paginas[i - 1];
        partes[i].siguiente = i + 1 == partes.size() ? entera.siguiente : paginas[i + 1];
        QUIMO_TRY_VOID(partes[i].Escribir(*almacen_, paginas[i]));
        if (i > 0 && nivel.hijos_son_nodos) {
            QUIMO_TRY_VOID(CortarHermanos(partes[i - 1], partes[i]));
        }
    }
    if (entera.previa != 0) {
        QUIMO_TRY_VOID(EnlazarIndice(*almacen_, entera.previa, nullptr, paginas.data()));
    }
    return {};
}

/// Nodes are chained only among children of one parent.
Result<void> Indice::CortarHermanos(const PaginaIndice& izquierda, const PaginaIndice& derecha) {
    const std::uint32_t ninguna = 0;
    const std::uint32_t ultimo = PaginaDeHijo(izquierda, izquierda.Cuantos() - 1);
    const std::uint32_t primero = PaginaDeHijo(derecha, 0);
    QUIMO_TRY_VOID(EnlazarIndice(*almacen_, ultimo, nullptr, &ninguna));
    return EnlazarIndice(*almacen_, primero, &ninguna, nullptr);
}

Result<void> Indice::Quitar(std::span<const std::uint8_t> clave, IdFila id) {
    const std::vector<std::uint8_t> entrada = EntradaDe(clave, id);
    QUIMO_TRY(Camino camino, Bajar(entrada));
    PaginaIndice& hoja = camino.back().contenido;
    const std::size_t i = hoja.Buscar(entrada);
    if (i == hoja.Entradas() || !Iguales(hoja.Entrada(i), entrada)) {
        return Danado("no nombra una fila que debía");
    }
    hoja.Quitar(i);
    camino.back().cambiado = true;
    if (hoja.Entradas() == 0) return QuitarPaginaVacia(camino);
    if (i == hoja.Entradas()) {
        const auto ultima = hoja.Entrada(i - 1);
        CorregirSeparadores(camino, camino.size() - 1, ultima);
    }
    return EscribirCamino(camino, false);
}

/// The last page of the path has no entries or children left.
Result<void> Indice::QuitarPaginaVacia(Camino& camino) {
    bool era_ultimo = false;
    while (camino.back().contenido.Cuantos() == 0) {
        if (camino.size() == 1) {
            camino.back().contenido.Limpiar();
            camino.back().contenido.hoja = true;
            return camino.back().contenido.Escribir(*almacen_, camino.back().pagina);
        }
        QUIMO_TRY_VOID(SoltarPagina(camino.back()));
        camino.pop_back();
        Nivel& padre = camino.back();
        padre.cambiado = true;
        era_ultimo = padre.hijo + 1 == padre.contenido.Cuantos();
        if (padre.hijo < padre.contenido.Entradas()) {
            padre.contenido.Quitar(padre.hijo);
        } else {
            padre.contenido.cola = 0;
        }
    }
    PaginaIndice& nodo = camino.back().contenido;
    if (nodo.Entradas() == 0) {  // an only child has an entry
        QUIMO_TRY(const auto entrada, UltimaDebajo(nodo.cola));
        nodo.Insertar(0, entrada, nodo.cola);
        nodo.cola = 0;
    }
    if (era_ultimo) {
        CorregirSeparadores(camino, camino.size() - 1, nodo.Entrada(nodo.Entradas() - 1));
    }
    PasarUltimoACola(nodo);
    return EscribirCamino(camino, false);
}

Result<void> Indice::SoltarPagina(const Nivel& nivel) {
    const std::uint32_t previa = nivel.contenido.previa;
    const std::uint32_t siguiente = nivel.contenido.siguiente;
    if (previa != 0) QUIMO_TRY_VOID(EnlazarIndice(*almacen_, previa, nullptr, &siguiente));
    if (siguiente != 0) QUIMO_TRY_VOID(EnlazarIndice(*almacen_, siguiente, &previa, nullptr));
    QUIMO_TRY_VOID(LiberarPagina(*almacen_, nivel.pagina));
    return Mapa(*almacen_, Real().mapa).Quitar(nivel.pagina);
}

Result<std::vector<std::uint8_t>> Indice::UltimaDebajo(std::uint32_t pagina) const {
    PaginaIndice actual;
    for (std::size_t nivel = 0; nivel < kNivelesMax; ++nivel) {
        QUIMO_TRY_VOID(actual.Leer(*almacen_, pagina, esquema_->pagina));
        if (actual.Cuantos() == 0) return Danado("tiene una página vacía");
        if (actual.hoja) {
            const auto ultima = actual.Entrada(actual.Entradas() - 1);
            return std::vector<std::uint8_t>(ultima.begin(), ultima.end());
        }
        pagina = PaginaDeHijo(actual, actual.Cuantos() - 1);
    }
    return Danado("no tiene fondo");
}

Result<void> Indice::Vaciar() {
    Mapa mapa(*almacen_, Real().mapa);
    QUIMO_TRY(const std::vector<std::uint32_t> paginas, mapa.Miembros());
    PaginaIndice vacia;
    QUIMO_TRY_VOID(vacia.Leer(*almacen_, Real().raiz, esquema_->pagina));
    for (const std::uint32_t pagina : paginas) {
        if (pagina == Real().raiz) continue;
        QUIMO_TRY(const PaginaLeida leida, almacen_->Leer(pagina));
        // Other programs leave pages in the map that they have given back.
        if (leida->bytes[0] == kPaginaLibre) continue;
        QUIMO_TRY_VOID(vacia.Leer(*almacen_, pagina, esquema_->pagina));
        QUIMO_TRY_VOID(LiberarPagina(*almacen_, pagina));
    }
    vacia.Limpiar();
    vacia.hoja = true;
    vacia.tabla = esquema_->pagina;
    QUIMO_TRY_VOID(vacia.Escribir(*almacen_, Real().raiz));
    QUIMO_TRY_VOID(mapa.Vaciar());
    return mapa.Poner(Real().raiz);
}

Result<void> LectorIndice::Situar(std::span<const std::uint8_t> desde,
                                  std::vector<std::uint8_t> hasta) {
    hasta_ = std::move(hasta);
    generacion_ = almacen_->Generacion();
    hojas_ = 0;
    std::uint32_t pagina = esquema_->reales[numero_].raiz;
    for (std::size_t nivel = 0; nivel < kNivelesMax; ++nivel) {
        QUIMO_TRY_VOID(hoja_.Leer(*almacen_, pagina, esquema_->pagina));
        if (hoja_.hoja) {
            posicion_ = hoja_.Buscar(desde);
            acabado_ = false;
            return {};
        }
        if (hoja_.Cuantos() == 0) break;
        pagina = PaginaDeHijo(hoja_, ElegirHijo(hoja_, desde));
    }
    return almacen_->Danado("un índice de la tabla " + esquema_->tabla.nombre + " no tiene fondo");
}

Result<bool> LectorIndice::Siguiente() {
    if (acabado_) return false;
    acabado_ = true;
    if (almacen_->Generacion() != generacion_) {
        return Error{Error::Codigo::Interno, "La tabla " + esquema_->tabla.nombre +
                                                 " cambió mientras se recorría un índice suyo."};
    }
    while (posicion_ == hoja_.Entradas()) {
        if (hoja_.siguiente == 0) return false;
        if (++hojas_ > almacen_->Paginas()) {
            return almacen_->Danado("un índice de la tabla " + esquema_->tabla.nombre +
                                    " da vueltas");
        }
        QUIMO_TRY_VOID(hoja_.Leer(*almacen_, hoja_.siguiente, esquema_->pagina));
        if (!hoja_.hoja) {
            return almacen_->Danado("un índice de la tabla " + esquema_->tabla.nombre +
                                    " tiene un nodo entre sus hojas");
        }
        posicion_ = 0;
    }
    const auto clave = hoja_.Clave(posicion_);
    const auto cabeza = clave.first(std::min(clave.size(), hasta_.size()));
    if (!hasta_.empty() && CompararBytes(cabeza, hasta_) > 0) return false;
    id_ = FilaDeEntrada(hoja_.Entrada(posicion_++));
    acabado_ = false;
    return true;
}

}  // namespace quimo::jet
