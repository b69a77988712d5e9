// The verification of one index.

#include <algorithm>

#include "jet/indice.h"
#include "jet/verificacion.h"

namespace quimo::jet {

namespace {

constexpr std::size_t kNivelesMax = 20;
constexpr std::size_t kLugar = 3616;  // bytes for entries on a page
constexpr std::size_t kPosCola = 20;
constexpr std::size_t kPosMascara = 27;
constexpr std::size_t kPosEntradas = 480;

std::size_t BytesUsados(const Pagina& pagina) {
    std::size_t usados = 0;
    for (std::size_t k = 0; k < (kPosEntradas - kPosMascara) * 8; ++k) {
        if ((pagina.bytes.at(kPosMascara + k / 8) >> (k % 8) & 1) != 0) usados = k;
    }
    return usados;
}

}  // namespace

VerificadorIndice::VerificadorIndice(Verificacion& verificacion, const Esquema& esquema,
                                     std::size_t real)
    : v_(verificacion),
      esquema_(esquema),
      real_(esquema.reales[real]),
      numero_(real),
      nombre_("el índice " + real_.nombre + " de la tabla " + esquema.tabla.nombre) {}

void VerificadorIndice::Hacer(std::vector<std::vector<std::uint8_t>> esperadas,
                              const std::set<IdFila>& sin_clave) {
    const Debajo raiz = Bajar(real_.raiz, 0);
    ComprobarMapa();
    if (!raiz.bien) return;  // said already, and nothing below can be trusted
    ComprobarHojas();
    ComprobarUnicas();
    std::sort(esperadas.begin(), esperadas.end());
    Comparar(esperadas, sin_clave);
}

VerificadorIndice::Debajo VerificadorIndice::Bajar(std::uint32_t pagina, std::size_t nivel) {
    Debajo debajo;
    const std::string cual = "La página " + std::to_string(pagina) + ", en " + nombre_ + ",";
    if (nivel == kNivelesMax) {
        v_.Falla(cual + " está a demasiada profundidad.");
        return debajo;
    }
    if (!v_.Reclamar(pagina, nombre_)) return debajo;
    paginas_.insert(pagina);
    PaginaIndice indice;
    if (!v_.Bien(indice.Leer(v_.Archivo(), pagina, esquema_.pagina))) return debajo;
    ComprobarPagina(indice, pagina);
    debajo.bien = true;
    if (indice.Cuantos() == 0 && (nivel > 0 || !indice.hoja)) {
        v_.Falla(cual + " está vacía.");
        debajo.bien = false;
        return debajo;
    }
    if (!indice.hoja) {
        ComprobarNodo(indice, pagina, nivel, debajo);
        return debajo;
    }
    if (hojas_.empty()) nivel_de_hojas_ = nivel;
    if (nivel != nivel_de_hojas_) v_.Falla(cual + " no está al nivel de las demás hojas.");
    hojas_.push_back(pagina);
    enlaces_.emplace_back(indice.previa, indice.siguiente);
    for (std::size_t i = 0; i < indice.Entradas(); ++i) {
        const auto entrada = indice.Entrada(i);
        if (!entradas_.empty() && CompararBytes(entradas_.back(), entrada) >= 0) {
            v_.Falla(cual + " no está en orden.");
        }
        entradas_.emplace_back(entrada.begin(), entrada.end());
    }
    if (indice.Entradas() > 0) debajo.ultima = entradas_.back();
    return debajo;
}

void VerificadorIndice::ComprobarNodo(const PaginaIndice& nodo, std::uint32_t pagina,
                                      std::size_t nivel, Debajo& debajo) {
    const std::string cual =
        "El nodo de la página " + std::to_string(pagina) + ", en " + nombre_ + ",";
    if ((nodo.cola != 0) != (nodo.Cuantos() >= 2)) {
        v_.Falla(cual + " no guarda bien su último hijo.");
    }
    std::vector<std::uint32_t> hijos;
    for (std::size_t i = 0; i < nodo.Cuantos(); ++i) {
        const bool es_cola = i == nodo.Entradas();
        hijos.push_back(es_cola ? nodo.cola : nodo.Hijo(i));
        const Debajo hijo = Bajar(hijos.back(), nivel + 1);
        debajo.bien = debajo.bien && hijo.bien;
        if (!es_cola && hijo.bien && CompararBytes(nodo.Entrada(i), hijo.ultima) != 0) {
            v_.Falla(cual + " no separa bien la página " + std::to_string(hijos.back()) + ".");
        }
        debajo.ultima = hijo.ultima;
    }
    if (debajo.bien && nivel + 1 < nivel_de_hojas_) ComprobarHermanos(hijos);
}

/// Nodes are chained among the children of one parent only.
void VerificadorIndice::ComprobarHermanos(const std::vector<std::uint32_t>& hijos) {
    for (std::size_t i = 0; i < hijos.size(); ++i) {
        PaginaIndice hijo;
        if (!v_.Bien(hijo.Leer(v_.Archivo(), hijos[i], esquema_.pagina))) return;
        const std::uint32_t previa = i == 0 ? 0 : hijos[i - 1];
        const std::uint32_t siguiente = i + 1 == hijos.size() ? 0 : hijos[i + 1];
        if (hijo.previa != previa || hijo.siguiente != siguiente) {
            v_.Rareza("El nodo de la página " + std::to_string(hijos[i]) + ", en " + nombre_ +
                      ", no está encadenado con sus hermanos.");
        }
    }
}

void VerificadorIndice::ComprobarPagina(const PaginaIndice& indice, std::uint32_t numero) {
    const auto pagina = v_.Archivo().Leer(numero);
    if (!v_.Bien(pagina)) return;
    const std::string cual = "La página " + std::to_string(numero) + ", en " + nombre_ + ",";
    if (U16((*pagina)->data() + 2) != kLugar - BytesUsados(**pagina)) {
        v_.Falla(cual + " cuenta mal sus bytes libres.");
    }
    if (indice.hoja && U32((*pagina)->data() + kPosCola) != 0) {
        v_.Falla(cual + " es una hoja y nombra un último hijo.");
    }
    for (std::size_t i = 1; i < indice.Entradas(); ++i) {
        if (CompararBytes(indice.Entrada(i - 1), indice.Entrada(i)) >= 0) {
            v_.Falla(cual + " no está en orden.");
            return;
        }
    }
}

void VerificadorIndice::ComprobarHojas() {
    for (std::size_t i = 0; i < hojas_.size(); ++i) {
        const std::uint32_t previa = i == 0 ? 0 : hojas_[i - 1];
        const std::uint32_t siguiente = i + 1 == hojas_.size() ? 0 : hojas_[i + 1];
        if (enlaces_[i] != std::pair(previa, siguiente)) {
            v_.Falla("La hoja de la página " + std::to_string(hojas_[i]) + ", en " + nombre_ +
                     ", no está bien encadenada.");
        }
    }
}

void VerificadorIndice::ComprobarMapa() {
    const auto miembros = v_.ReclamarMapa(real_.mapa, nombre_);
    for (const std::uint32_t pagina : miembros) {
        if (paginas_.count(pagina) != 0) continue;
        const std::string que =
            "La página " + std::to_string(pagina) + " figura en " + nombre_ + " y no es suya.";
        // Other programs leave pages there that they have given back.
        if (v_.EstaLibre(pagina)) {
            v_.Rareza(que);
        } else {
            v_.Falla(que);
        }
    }
    for (const std::uint32_t pagina : paginas_) {
        if (std::binary_search(miembros.begin(), miembros.end(), pagina)) continue;
        v_.Falla("La página " + std::to_string(pagina) + ", en " + nombre_ +
                 ", no figura en su mapa.");
    }
}

void VerificadorIndice::ComprobarUnicas() {
    std::size_t distintas = entradas_.empty() ? 0 : 1;
    // A key of NULLs alone may be there any number of times.
    std::vector<std::uint8_t> nula;
    for (const IndiceReal::Columna& c : real_.columnas)
        nula.push_back(c.descendente ? 0xFF : 0x00);
    for (std::size_t i = 1; i < entradas_.size(); ++i) {
        const auto clave = [](const std::vector<std::uint8_t>& entrada) {
            return std::span(entrada).first(entrada.size() - kLargoFilaEnIndice);
        };
        if (CompararBytes(clave(entradas_[i - 1]), clave(entradas_[i])) != 0) {
            ++distintas;
        } else if (real_.Unico() && CompararBytes(clave(entradas_[i]), nula) != 0) {
            const IdFila id = FilaDeEntrada(entradas_[i]);
            v_.Falla("La clave de la fila de la " + Puntero{id.pagina, id.fila}.ATexto() +
                     " está repetida en " + nombre_ + ".");
        }
    }
    const auto pagina = v_.Archivo().Leer(esquema_.pagina);
    if (!v_.Bien(pagina)) return;
    const std::uint8_t* contador = (*pagina)->data() + kPosContadores + kLargoContador * numero_;
    if (U32(contador + 4) < distintas) {
        v_.Rareza("El contador de claves distintas, en " + nombre_ + ", es " +
                  std::to_string(U32(contador + 4)) + " y hay " + std::to_string(distintas) + ".");
    }
}

void VerificadorIndice::Comparar(const std::vector<std::vector<std::uint8_t>>& esperadas,
                                 const std::set<IdFila>& sin_clave) {
    const auto de_fila = [](const std::vector<std::uint8_t>& entrada) {
        const IdFila id = FilaDeEntrada(entrada);
        return "la fila de la " + Puntero{id.pagina, id.fila}.ATexto() + ".";
    };
    std::size_t i = 0;
    std::set<IdFila> vistas;
    for (const auto& entrada : entradas_) {
        const IdFila id = FilaDeEntrada(entrada);
        if (sin_clave.count(id) != 0) {
            vistas.insert(id);
            continue;
        }
        for (; i < esperadas.size() && CompararBytes(esperadas[i], entrada) < 0; ++i) {
            v_.Falla("A " + nombre_ + " le falta " + de_fila(esperadas[i]));
        }
        if (i < esperadas.size() && CompararBytes(esperadas[i], entrada) == 0) {
            ++i;
        } else {
            v_.Falla("A " + nombre_ + " le sobra o tiene con otra clave " + de_fila(entrada));
        }
    }
    for (; i < esperadas.size(); ++i) {
        v_.Falla("A " + nombre_ + " le falta " + de_fila(esperadas[i]));
    }
    if (vistas.size() != sin_clave.size()) {
        v_.Falla("A " + nombre_ + " le faltan filas cuyas claves no se pueden calcular.");
    }
}

}  // namespace quimo::jet
