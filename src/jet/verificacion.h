#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/result.h"
#include "jet/almacen.h"
#include "jet/catalogo.h"
#include "jet/esquema.h"
#include "jet/fila.h"
#include "jet/mapa.h"
#include "jet/pagina_indice.h"
#include "jet/verificador.h"

/// The parts of a verification. Errors of reading become findings, and the work goes on elsewhere.
namespace quimo::jet {

/// What all parts share: the findings, and who owns which page.
class Verificacion {
public:
    explicit Verificacion(Almacen& almacen);

    Almacen& Archivo() { return almacen_; }
    void Falla(std::string mensaje) { Anotar(Hallazgo::Gravedad::Falla, std::move(mensaje)); }
    void Rareza(std::string mensaje) { Anotar(Hallazgo::Gravedad::Rareza, std::move(mensaje)); }
    /// Damage, or an oddity when it concerns a system table of a file of other origin.
    void FallaDe(const Esquema& esquema, std::string mensaje);
    /// Notes the error of a result; whether there was none.
    template <typename T>
    bool Bien(const Result<T>& resultado) {
        if (!resultado) Falla(resultado.error().mensaje);
        return resultado.has_value();
    }

    /// Enters a page's owner. A second one is a finding, and false.
    bool Reclamar(std::uint32_t pagina, const std::string& dueno);
    /// Enters a usage map: its row, the page of that row and its bitmap pages. Returns its members.
    std::vector<std::uint32_t> ReclamarMapa(Puntero lugar, const std::string& dueno);
    /// Enters a row of a long value. A second use is a finding.
    void ReclamarPieza(Puntero lugar, const std::string& dueno);
    bool PiezaUsada(Puntero lugar) const { return piezas_.count(lugar) != 0; }
    bool EstaLibre(std::uint32_t pagina) const {
        return pagina < libres_.size() && libres_[pagina];
    }
    /// Slot table and free counter of a data page.
    bool ComprobarPaginaDatos(std::uint32_t numero, std::uint32_t dueno);

    /// Everything.
    std::vector<Hallazgo> Hacer();

private:
    void Anotar(Hallazgo::Gravedad gravedad, std::string mensaje);
    void ComprobarPaginas01();
    void ComprobarCatalogo(const std::vector<ObjetoCatalogo>& objetos);
    void ComprobarColumnasDeSistema(const Esquema& esquema);
    void ComprobarPermisos(const std::vector<ObjetoCatalogo>& objetos);
    void ComprobarSinDueno();

    Almacen& almacen_;
    std::vector<Hallazgo> hallazgos_;
    std::vector<std::string> duenos_;      // names; 0 = nobody
    std::vector<std::uint32_t> dueno_de_;  // per page, index into duenos_
    std::set<Puntero> mapas_;
    std::map<Puntero, std::string> piezas_;
    std::vector<bool> libres_;
};

/// One table: its definition, pages, rows and long values, and by VerificadorIndice its indexes.
class VerificadorTabla {
public:
    VerificadorTabla(Verificacion& verificacion, std::shared_ptr<const Esquema> esquema);
    void Hacer();

private:
    void ComprobarDefinicion();
    std::vector<std::uint32_t> ComprobarPaginas(Puntero propias, Puntero libres,
                                                std::uint32_t dueno, const std::string& quien);
    void ComprobarPagina(std::uint32_t numero);
    void ComprobarFila(IdFila id, std::span<const std::uint8_t> bytes);
    using NombreFila = std::function<std::string()>;
    void ComprobarLargos(const VistaFila& vista, const NombreFila& fila);
    void ComprobarClaves(IdFila id, const NombreFila& fila);
    void ComprobarOcultas();
    void ComprobarPiezasSueltas();
    void ComprobarContadores();

    Verificacion& v_;
    std::shared_ptr<const Esquema> esquema_;
    std::string nombre_;
    Lectura lectura_;
    Fila fila_;
    std::vector<std::set<std::uint32_t>> paginas_largos_;  // per column
    std::set<Puntero> ocultas_;                            // slots with moved content
    std::set<Puntero> llegadas_;                           // those that a row leads to
    std::uint32_t filas_ = 0;
    std::int32_t mayor_numero_ = 0;
    std::vector<std::vector<std::vector<std::uint8_t>>> entradas_;  // expected, per real index
    std::vector<std::set<IdFila>> sin_clave_;  // rows whose keys cannot be computed, likewise
};

/// One real index against the entries that it should have.
class VerificadorIndice {
public:
    VerificadorIndice(Verificacion& verificacion, const Esquema& esquema, std::size_t real);
    void Hacer(std::vector<std::vector<std::uint8_t>> esperadas, const std::set<IdFila>& sin_clave);

private:
    struct Debajo {
        std::vector<std::uint8_t> ultima;  // last full entry
        bool bien = false;
    };
    Debajo Bajar(std::uint32_t pagina, std::size_t nivel);
    void ComprobarNodo(const PaginaIndice& nodo, std::uint32_t pagina, std::size_t nivel,
                       Debajo& debajo);
    void ComprobarHermanos(const std::vector<std::uint32_t>& hijos);
    void ComprobarPagina(const PaginaIndice& indice, std::uint32_t numero);
    void ComprobarHojas();
    void ComprobarMapa();
    void ComprobarUnicas();
    void Comparar(const std::vector<std::vector<std::uint8_t>>& esperadas,
                  const std::set<IdFila>& sin_clave);

    Verificacion& v_;
    const Esquema& esquema_;
    const IndiceReal& real_;
    std::size_t numero_;
    std::string nombre_;
    std::size_t nivel_de_hojas_ = 0;
    std::set<std::uint32_t> paginas_;
    std::vector<std::uint32_t> hojas_;                              // left to right
    std::vector<std::pair<std::uint32_t, std::uint32_t>> enlaces_;  // of the leaves: prev, next
    std::vector<std::vector<std::uint8_t>> entradas_;
};

}  // namespace quimo::jet
