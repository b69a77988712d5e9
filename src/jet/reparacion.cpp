#include "jet/reparacion.h"

#include <algorithm>
#include <filesystem>
#include <numeric>
#include <utility>

#include "base/letras_terminal.h"
#include "jet/clave.h"
#include "jet/escritor.h"
#include "jet/indice.h"
#include "jet/lectura_danada.h"
#include "jet/mapa.h"
#include "jet/plano.h"
#include "jet/texto.h"
#include "jet/verificacion.h"

namespace quimo::jet {

namespace {

// Forms, macros, reports, modules and pages, by their types in the catalogue.
constexpr std::int32_t kDeAccess[] = {-32768, -32766, -32764, -32761, -32756};
constexpr std::string_view kPrefijoDeSistema = "MSys";
constexpr std::size_t kLetrasDeClave = 255;  // the rest of a text is in no key

std::string FilaN(IdFila id) { return "la fila de la " + Puntero{id.pagina, id.fila}.ATexto(); }

class Reparador {
public:
    Reparador(Almacen& viejo, Almacen& nuevo) : viejo_(viejo), nuevo_(nuevo), lectura_(viejo) {}
    Result<InformeReparacion> Hacer();

private:
    struct PorCopiar {
        std::shared_ptr<const Esquema> esquema;
        Valor propiedades;
        TablaReparada informe;
    };
    /// A row's number and the indexes that cannot hold it, by what is wrong.
    struct Primera {
        std::set<IdFila> leidas;
        std::vector<std::string> imposibles;  // per logical index; empty: possible
    };

    Result<std::shared_ptr<const Esquema>> EsquemaDelCatalogo() const;
    Result<void> LeerTablas();
    std::optional<ObjetoCatalogo> LeerObjeto(const Esquema& catalogo, IdFila id,
                                             std::span<const std::uint8_t> bytes, Quejas& quejas,
                                             Valor& propiedades);
    void AgregarPorCopiar(const ObjetoCatalogo& objeto, Valor propiedades);
    void BuscarSueltas();
    void AnotarLoQueNoSeCopia(const std::vector<ObjetoCatalogo>& objetos);
    void AnotarRelaciones(const Esquema& esquema);
    Result<void> Copiar(PorCopiar& tabla);
    Primera PrimeraVuelta(const Esquema& esquema, Quejas& quejas);
    DefTabla DefinicionNueva(const Esquema& esquema, const Primera& primera);
    Result<void> CopiarFilas(PorCopiar& tabla, const Esquema& nueva, Quejas& quejas);
    void BuscarPerdidas(const Esquema& esquema, const Primera& primera, std::int64_t declaradas,
                        Quejas& quejas);
    Result<void> PonerPropiedades(const PorCopiar& tabla, const Esquema& nueva);
    Result<void> PonerAutonumerico(const Esquema& vieja, const Esquema& nueva);

    Almacen& viejo_;
    Almacen& nuevo_;
    LecturaDanada lectura_;
    std::vector<PorCopiar> tablas_;
    std::set<std::uint32_t> definiciones_;
    InformeReparacion informe_;
};

/// The catalogue's own definition, or the one that every file has when that is damaged.
Result<std::shared_ptr<const Esquema>> Reparador::EsquemaDelCatalogo() const {
    auto esquema = LeerEsquema(viejo_, kPaginaCatalogo, "MSysObjects");
    if (esquema) {
        const auto tiene = [&](const char* c) { return (*esquema)->BuscarColumna(c).has_value(); };
        if (tiene("Id") && tiene("Name") && tiene("Type") && tiene("Flags")) return esquema;
    }
    QUIMO_TRY(const auto de_fabrica, LeerEsquema(nuevo_, kPaginaCatalogo, "MSysObjects"));
    auto copia = std::make_shared<Esquema>(*de_fabrica);
    copia->propias = {};  // nobody knows where its map is: its pages tell
    return std::shared_ptr<const Esquema>(std::move(copia));
}

std::optional<ObjetoCatalogo> Reparador::LeerObjeto(const Esquema& catalogo, IdFila id,
                                                    std::span<const std::uint8_t> bytes,
                                                    Quejas& quejas, Valor& propiedades) {
    Lectura lectura(viejo_);
    const auto vista = VistaFila::De(catalogo, bytes);
    const auto leer = [&](const char* columna, Valor& destino) {
        const auto i = catalogo.BuscarColumna(columna);
        return i && vista && LeerValor(lectura, catalogo, *vista, *i, destino).has_value();
    };
    Valor numero;
    Valor nombre;
    Valor tipo;
    Valor banderas;
    const bool bien = leer("Id", numero) && leer("Name", nombre) && leer("Type", tipo) &&
                      leer("Flags", banderas) && std::get_if<std::int32_t>(&numero) != nullptr &&
                      std::get_if<std::int32_t>(&tipo) != nullptr &&
                      std::get_if<std::u16string>(&nombre) != nullptr;
    if (!bien) {
        quejas.Anotar(FilaN(id) + ", no se puede leer");
        return std::nullopt;
    }
    ObjetoCatalogo objeto;
    objeto.id = std::get<std::int32_t>(numero);
    objeto.nombre = AUtf8(std::get<std::u16string>(nombre));
    objeto.tipo = std::get<std::int32_t>(tipo);
    if (const auto* b = std::get_if<std::int32_t>(&banderas)) objeto.banderas = *b;
    if (!leer("LvProp", propiedades) && catalogo.BuscarColumna("LvProp") && objeto.EsTabla()) {
        informe_.faltas.push_back("Las propiedades de las columnas de la tabla " + objeto.nombre +
                                  " no se pueden leer.");
    }
    return objeto;
}

void Reparador::AgregarPorCopiar(const ObjetoCatalogo& objeto, Valor propiedades) {
    PorCopiar tabla;
    tabla.informe.nombre = objeto.nombre;
    auto esquema = LeerEsquema(viejo_, objeto.Pagina(), objeto.nombre);
    if (esquema) lectura_.Conocer(**esquema);
    const bool repetida = !definiciones_.insert(objeto.Pagina()).second;
    if (objeto.EsDeSistema()) {
        if (esquema && MismoNombre(objeto.nombre, "MSysRelationships")) AnotarRelaciones(**esquema);
        return;
    }
    if (!esquema) {
        tabla.informe.ilegibles.push_back(esquema.error().mensaje);
    } else if (repetida) {
        tabla.informe.ilegibles.emplace_back("su definición es la de otra tabla");
    } else {
        tabla.esquema = std::move(esquema).value();
        tabla.propiedades = std::move(propiedades);
    }
    tablas_.push_back(std::move(tabla));
}

Result<void> Reparador::LeerTablas() {
    QUIMO_TRY(const auto catalogo, EsquemaDelCatalogo());
    lectura_.Conocer(*catalogo);
    TablaReparada sobre_el_catalogo{.nombre = "MSysObjects", .ilegibles = {}};
    Quejas quejas(sobre_el_catalogo.ilegibles);
    std::vector<ObjetoCatalogo> objetos;
    std::vector<Valor> propiedades;
    lectura_.Recorrer(*catalogo, quejas, [&](IdFila id, std::span<const std::uint8_t> bytes) {
        Valor suyas;
        auto objeto = LeerObjeto(*catalogo, id, bytes, quejas, suyas);
        if (!objeto) return;
        objetos.push_back(std::move(*objeto));
        propiedades.push_back(std::move(suyas));
    });
    for (std::size_t i = 0; i < objetos.size(); ++i) {
        if (objetos[i].EsTabla()) AgregarPorCopiar(objetos[i], std::move(propiedades[i]));
    }
    AnotarLoQueNoSeCopia(objetos);
    if (!sobre_el_catalogo.ilegibles.empty() || objetos.empty()) {
        BuscarSueltas();
        informe_.tablas.push_back(std::move(sobre_el_catalogo));
    }
    if (objetos.empty() && tablas_.empty()) {
        return viejo_.Danado("no se encuentra ninguna tabla");
    }
    return {};
}

/// Tables whose row of the catalogue is lost: their rows are there, their names are not.
void Reparador::BuscarSueltas() {
    for (const std::uint32_t pagina : lectura_.DefinicionesSueltas()) {
        const std::string nombre = "Recuperada_" + std::to_string(pagina);
        auto esquema = LeerEsquema(viejo_, pagina, nombre);
        if (!esquema || !definiciones_.insert(pagina).second) continue;
        lectura_.Conocer(**esquema);
        PorCopiar tabla;
        tabla.informe.nombre = nombre;
        tabla.informe.ilegibles.emplace_back("su nombre se perdió con el catálogo");
        tabla.esquema = std::move(esquema).value();
        tablas_.push_back(std::move(tabla));
    }
}

void Reparador::AnotarLoQueNoSeCopia(const std::vector<ObjetoCatalogo>& objetos) {
    std::size_t otros = 0;
    for (const ObjetoCatalogo& objeto : objetos) {
        if (objeto.EsEnlazada()) {
            informe_.faltas.push_back("La tabla enlazada " + objeto.nombre + " no se copia.");
        }
        const bool consulta =
            objeto.tipo == ObjetoCatalogo::kConsulta && !objeto.nombre.starts_with('~');
        const bool de_access = std::find(std::begin(kDeAccess), std::end(kDeAccess), objeto.tipo) !=
                               std::end(kDeAccess);
        if (consulta || de_access) ++otros;
    }
    if (otros == 0) return;
    informe_.faltas.push_back("No se copian " + std::to_string(otros) +
                              " consultas, formularios y demás objetos de Access.");
}

void Reparador::AnotarRelaciones(const Esquema& esquema) {
    std::vector<std::string> ilegibles;
    Quejas quejas(ilegibles);
    std::vector<Relacion> relaciones;
    Lectura lectura(viejo_);
    lectura_.Recorrer(esquema, quejas, [&](IdFila id, std::span<const std::uint8_t> bytes) {
        Fila fila;
        if (LeerValores(lectura, esquema, bytes, fila)) {
            AgregarRelacion(esquema, fila, relaciones);
        } else {
            quejas.Anotar(FilaN(id) + ", no se puede leer");
        }
    });
    for (const Relacion& r : relaciones) {
        if (r.tabla.starts_with(kPrefijoDeSistema)) continue;  // between tables that Access makes
        informe_.faltas.push_back("La relación " + r.nombre + ", de " + r.tabla + " a " +
                                  r.referida + ", no se copia.");
    }
    for (const std::string& queja : ilegibles)
        informe_.faltas.push_back("Relaciones: " + queja + ".");
}

Reparador::Primera Reparador::PrimeraVuelta(const Esquema& esquema, Quejas& quejas) {
    Primera primera;
    primera.imposibles.resize(esquema.tabla.indices.size());
    Lectura lectura(viejo_);
    Fila fila;
    lectura_.Recorrer(esquema, quejas, [&](IdFila id, std::span<const std::uint8_t> bytes) {
        const auto leida = LeerValores(lectura, esquema, bytes, fila);
        if (!leida) return quejas.Anotar(FilaN(id) + ": " + leida.error().mensaje);
        primera.leidas.insert(id);
        for (std::size_t i = 0; i < primera.imposibles.size(); ++i) {
            if (!primera.imposibles[i].empty()) continue;
            for (const IndiceReal::Columna& c : esquema.reales[esquema.real_de[i]].columnas) {
                const auto* texto = std::get_if<std::u16string>(&fila[c.posicion]);
                if (texto == nullptr) continue;
                const auto corto = std::u16string_view(*texto).substr(0, kLetrasDeClave);
                if (!base::PrimeraLetraAjena(corto)) continue;
                primera.imposibles[i] = FilaN(id) + ", lleva en " +
                                        NombrarColumna(esquema, c.posicion) +
                                        " una letra que el índice no puede tener";
            }
        }
    });
    return primera;
}

/// The table as it was, but for what cannot be made anew.
DefTabla Reparador::DefinicionNueva(const Esquema& esquema, const Primera& primera) {
    DefTabla nueva = esquema.tabla;
    nueva.indices.clear();
    for (std::size_t i = 0; i < esquema.tabla.indices.size(); ++i) {
        const DefIndice& indice = esquema.tabla.indices[i];
        if (indice.foranea) continue;  // told with its relationship
        if (primera.imposibles[i].empty()) {
            nueva.indices.push_back(indice);
        } else {
            informe_.faltas.push_back("El índice " + indice.nombre + " de la tabla " +
                                      nueva.nombre + " no se copia: " + primera.imposibles[i] +
                                      ".");
        }
    }
    for (std::size_t i = 0; i < esquema.fisicas.size(); ++i) {
        const OrdenTexto orden{esquema.fisicas[i].orden, esquema.fisicas[i].version_orden};
        if (!EsTexto(nueva.columnas[i].tipo) || orden.SeEscribe()) continue;
        informe_.faltas.push_back("Los textos de " + NombrarColumna(esquema, i) + " ordenaban en " +
                                  orden.Nombre() + "; en la copia, en el orden General.");
    }
    return nueva;
}

Result<void> Reparador::CopiarFilas(PorCopiar& tabla, const Esquema& nueva, Quejas& quejas) {
    std::vector<std::string> ya_dichas;  // by the first walk
    Quejas descarte(ya_dichas);
    Lectura lectura(viejo_);
    Escritor escritor(nuevo_, nueva);
    Fila fila;
    std::uint32_t ultima = 0;
    Result<void> fallo;
    lectura_.Recorrer(*tabla.esquema, descarte,
                      [&](IdFila id, std::span<const std::uint8_t> bytes) {
                          if (!fallo || !LeerValores(lectura, *tabla.esquema, bytes, fila)) return;
                          const auto puesta = escritor.Insertar(fila);
                          if (!puesta)
                              return quejas.Anotar(FilaN(id) + ": " + puesta.error().mensaje);
                          ++tabla.informe.leidas;
                          if (ultima != 0 && puesta->pagina != ultima) {
                              // Later rows must not fill up earlier pages: the copy keeps the order
                              // of the file.
                              Transaccion transaccion(nuevo_);
                              fallo = Mapa(nuevo_, nueva.libres).Quitar(ultima);
                              transaccion.Confirmar();
                          }
                          ultima = puesta->pagina;
                      });
    return fallo;
}

/// Fewer rows than the definition counts: either the count is wrong, or rows are gone without a
/// trace. An index that is whole and names just the rows that were read proves the former.
void Reparador::BuscarPerdidas(const Esquema& esquema, const Primera& primera,
                               std::int64_t declaradas, Quejas& quejas) {
    std::set<IdFila> perdidas;
    for (std::size_t i = 0; i < esquema.reales.size(); ++i) {
        LectorIndice lector(viejo_, esquema, i);
        std::set<IdFila> nombradas;
        bool entero = lector.Situar({}, {}).has_value();
        while (entero) {
            const auto hay = lector.Siguiente();
            entero = hay.has_value();
            if (!hay || !*hay) break;
            nombradas.insert(lector.Id());
        }
        if (entero && !esquema.reales[i].IgnoraNulos() && nombradas == primera.leidas) return;
        std::set_difference(nombradas.begin(), nombradas.end(), primera.leidas.begin(),
                            primera.leidas.end(), std::inserter(perdidas, perdidas.end()));
    }
    for (const IdFila id : perdidas)
        quejas.Anotar(FilaN(id) + ", que un índice nombra, no está");
    for (const std::uint32_t pagina : lectura_.Dudosas(esquema)) {
        quejas.Anotar("la página " + std::to_string(pagina) +
                      " tiene filas de la tabla, pero el archivo la da por libre o por ajena");
    }
    quejas.Anotar("la definición cuenta " + std::to_string(declaradas) + " filas y se leyeron " +
                  std::to_string(primera.leidas.size()));
}

Result<void> Reparador::PonerPropiedades(const PorCopiar& tabla, const Esquema& nueva) {
    if (EsNulo(tabla.propiedades)) return {};
    QUIMO_TRY(const auto catalogo, LeerEsquema(nuevo_, kPaginaCatalogo, "MSysObjects"));
    const auto columna = catalogo->BuscarColumna("LvProp");
    const std::vector<Valor> clave = {static_cast<std::int32_t>(nueva.pagina)};
    for (std::size_t i = 0; i < catalogo->reales.size(); ++i) {
        if (!catalogo->reales[i].primario || !columna) continue;
        QUIMO_TRY(const auto bytes, ClaveDeValores(*catalogo, catalogo->reales[i], clave));
        LectorIndice lector(nuevo_, *catalogo, i);
        QUIMO_TRY_VOID(lector.Situar(bytes, bytes));
        QUIMO_TRY(const bool hay, lector.Siguiente());
        if (!hay) continue;
        const std::vector<Cambio> cambios = {{*columna, tabla.propiedades}};
        return Escritor(nuevo_, *catalogo).Actualizar(lector.Id(), cambios);
    }
    return nuevo_.Danado("la tabla " + nueva.tabla.nombre + " no está en su catálogo");
}

/// Numbers of deleted rows are not given out again.
Result<void> Reparador::PonerAutonumerico(const Esquema& vieja, const Esquema& nueva) {
    if (!vieja.autonumerica) return {};
    QUIMO_TRY(const PaginaLeida definicion, viejo_.Leer(vieja.pagina));
    const auto ultimo = static_cast<std::int32_t>(U32(definicion->data() + kPosAutonumerico));
    Transaccion transaccion(nuevo_);
    QUIMO_TRY(Pagina * pagina, nuevo_.Escribir(nueva.pagina));
    if (ultimo > static_cast<std::int32_t>(U32(pagina->data() + kPosAutonumerico))) {
        PonerU32(pagina->data() + kPosAutonumerico, static_cast<std::uint32_t>(ultimo));
    }
    transaccion.Confirmar();
    return {};
}

Result<void> Reparador::Copiar(PorCopiar& tabla) {
    if (tabla.esquema == nullptr) return {};
    const Esquema& vieja = *tabla.esquema;
    QUIMO_TRY(const PaginaLeida definicion, viejo_.Leer(vieja.pagina));
    tabla.informe.declaradas = U32(definicion->data() + kPosFilas);
    const bool entera = tabla.informe.ilegibles.empty();
    Quejas quejas(tabla.informe.ilegibles);
    const Primera primera = PrimeraVuelta(vieja, quejas);
    if (entera && tabla.informe.ilegibles.empty() &&
        static_cast<std::int64_t>(primera.leidas.size()) < tabla.informe.declaradas) {
        BuscarPerdidas(vieja, primera, tabla.informe.declaradas, quejas);
    }
    const DefTabla def = DefinicionNueva(vieja, primera);
    const auto posible = ComprobarDefinicion(def);
    const auto pagina = posible ? AgregarTabla(nuevo_, def) : posible.error();
    if (!pagina) {
        quejas.Anotar("la tabla no se puede crear en la copia: " + pagina.error().mensaje);
        return {};
    }
    QUIMO_TRY(const auto nueva, LeerEsquema(nuevo_, *pagina, def.nombre));
    QUIMO_TRY_VOID(CopiarFilas(tabla, *nueva, quejas));
    QUIMO_TRY_VOID(PonerAutonumerico(vieja, *nueva));
    return PonerPropiedades(tabla, *nueva);
}

Result<InformeReparacion> Reparador::Hacer() {
    QUIMO_TRY_VOID(LeerTablas());
    for (PorCopiar& tabla : tablas_) {
        QUIMO_TRY_VOID(Copiar(tabla));
        informe_.tablas.push_back(std::move(tabla.informe));
    }
    for (const Hallazgo& hallazgo : Verificacion(nuevo_).Hacer()) {
        if (hallazgo.gravedad != Hallazgo::Gravedad::Falla) continue;
        return Error{Error::Codigo::Interno, "La copia no salió bien y no se guarda.",
                     hallazgo.mensaje};
    }
    return std::move(informe_);
}

}  // namespace

bool InformeReparacion::Completa() const {
    return faltas.empty() && std::all_of(tablas.begin(), tablas.end(),
                                         [](const auto& tabla) { return tabla.ilegibles.empty(); });
}

std::int64_t InformeReparacion::Renglones() const {
    return std::accumulate(
        tablas.begin(), tablas.end(), std::int64_t{0},
        [](std::int64_t suma, const TablaReparada& tabla) { return suma + tabla.leidas; });
}

namespace {

Result<InformeReparacion> RepararAlmacen(Almacen& viejo, Almacen& nuevo) {
    QUIMO_TRY_VOID(ComprobarFormato(viejo));
    QUIMO_TRY_VOID(LlenarBaseNueva(nuevo));
    return Reparador(viejo, nuevo).Hacer();
}

}  // namespace

Result<InformeReparacion> RepararImagen(std::vector<std::uint8_t> imagen,
                                        std::vector<std::uint8_t>& copia) {
    QUIMO_TRY(const auto viejo, Almacen::DeImagen(std::move(imagen)));
    const auto nuevo = Almacen::Nuevo("");
    QUIMO_TRY(InformeReparacion informe, RepararAlmacen(*viejo, *nuevo));
    QUIMO_TRY(copia, nuevo->Imagen());
    return informe;
}

Result<InformeReparacion> Reparar(const std::string& origen, const std::string& destino) {
    std::error_code fallo;
    if (std::filesystem::equivalent(origen, destino, fallo)) {
        return Error{Error::Codigo::Datos,
                     "La copia reparada no puede ser el mismo archivo: " + destino + "."};
    }
    QUIMO_TRY(const auto viejo, Almacen::DeArchivo(origen, Almacen::Acceso::Lectura));
    const auto nuevo = Almacen::Nuevo("");
    QUIMO_TRY(InformeReparacion informe, RepararAlmacen(*viejo, *nuevo));
    QUIMO_TRY_VOID(nuevo->GuardarEn(destino));
    return informe;
}

}  // namespace quimo::jet
