// New tables in an existing database.

#include <algorithm>
#include <ctime>
#include <set>
#include <string>

#include "jet/catalogo.h"
#include "jet/escritor.h"
#include "jet/mapa.h"
#include "jet/pagina_datos.h"
#include "jet/plano.h"
#include "jet/recorrido.h"
#include "jet/texto.h"

namespace quimo::jet {

namespace {

constexpr std::int32_t kRaizDeContenedores = 0x0F000000;
constexpr std::int32_t kTablas = 0x0F000001;
constexpr std::int32_t kTodosLosPermisos = 0x000FFFFF;
constexpr std::size_t kCabeceraDeContinuacion = 8;

Result<void> ComprobarNombreLibre(const Catalogo& catalogo, const std::string& nombre) {
    const ObjetoCatalogo* otro = catalogo.Buscar(nombre);
    if (otro == nullptr) return {};
    return Error{Error::Codigo::Restriccion,
                 "Ya hay una tabla o consulta llamada " + otro->nombre + "."};
}

/// Puts map rows on new pages, as many as it takes.
class ColocadorDeMapas {
public:
    explicit ColocadorDeMapas(Almacen& almacen) : almacen_(almacen) {}
    Result<Puntero> Poner(const std::vector<std::uint8_t>& fila) {
        if (numero_ != 0) {
            QUIMO_TRY(Pagina * actual, almacen_.Escribir(numero_));
            if (CabeFila(*actual, fila.size()))
                return Puntero{numero_, PonerFila(*actual, fila, 0)};
        }
        QUIMO_TRY(numero_, AsignarPagina(almacen_));
        QUIMO_TRY(Pagina * nueva, almacen_.Escribir(numero_));
        FormatearPaginaDatos(*nueva, 0);
        return Puntero{numero_, PonerFila(*nueva, fila, 0)};
    }

private:
    Almacen& almacen_;
    std::uint32_t numero_ = 0;
};

Fila FilaVacia(const Esquema& esquema) { return Fila(esquema.fisicas.size()); }

Result<void> Poner(const Esquema& esquema, Fila& fila, std::string_view columna, Valor valor) {
    const auto i = esquema.BuscarColumna(columna);
    if (!i) {
        return Error{Error::Codigo::Formato, "La tabla de sistema " + esquema.tabla.nombre +
                                                 " no tiene la columna " + std::string(columna) +
                                                 "."};
    }
    fila[*i] = std::move(valor);
    return {};
}

/// Who owns the database owns new tables.
Valor DuenoDeLaBase(const std::vector<ObjetoCatalogo>& objetos) {
    for (const ObjetoCatalogo& contenedor : objetos) {
        if (contenedor.padre != kRaizDeContenedores || contenedor.nombre != "Databases") continue;
        for (const ObjetoCatalogo& objeto : objetos) {
            if (objeto.padre == contenedor.id && objeto.nombre == "MSysDb") return objeto.dueno;
        }
    }
    return {};
}

/// Returns the object that the catalogue has now.
Result<ObjetoCatalogo> AgregarAlCatalogo(Almacen& almacen,
                                         const std::vector<ObjetoCatalogo>& objetos,
                                         const std::string& nombre, std::uint32_t pagina) {
    std::int32_t padre = kTablas;
    for (const ObjetoCatalogo& objeto : objetos) {
        if (objeto.padre == kRaizDeContenedores && objeto.nombre == "Tables") padre = objeto.id;
    }
    QUIMO_TRY(const auto esquema, LeerEsquema(almacen, kPaginaCatalogo, "MSysObjects"));
    Fila fila = FilaVacia(*esquema);
    const Fecha ahora = Ahora();
    QUIMO_TRY_VOID(Poner(*esquema, fila, "Id", static_cast<std::int32_t>(pagina)));
    QUIMO_TRY_VOID(Poner(*esquema, fila, "ParentId", padre));
    QUIMO_TRY_VOID(Poner(*esquema, fila, "Name", AUtf16(nombre)));
    QUIMO_TRY_VOID(Poner(*esquema, fila, "Type", std::int32_t{ObjetoCatalogo::kTabla}));
    QUIMO_TRY_VOID(Poner(*esquema, fila, "DateCreate", ahora));
    QUIMO_TRY_VOID(Poner(*esquema, fila, "DateUpdate", ahora));
    QUIMO_TRY_VOID(Poner(*esquema, fila, "Owner", DuenoDeLaBase(objetos)));
    QUIMO_TRY_VOID(Poner(*esquema, fila, "Flags", std::int32_t{0}));
    Escritor escritor(almacen, *esquema);
    QUIMO_TRY_VOID(escritor.PuedeEscribir());
    QUIMO_TRY_VOID(escritor.Insertar(fila));
    return ObjetoCatalogo{.id = static_cast<std::int32_t>(pagina),
                          .padre = padre,
                          .nombre = nombre,
                          .tipo = ObjetoCatalogo::kTabla,
                          .banderas = 0,
                          .dueno = DuenoDeLaBase(objetos)};
}

/// Everybody who has rights on tables.
Result<std::set<Binario>> ConPermisos(Almacen& almacen, std::shared_ptr<const Esquema> esquema) {
    const auto objeto = esquema->BuscarColumna("ObjectId");
    const auto sid = esquema->BuscarColumna("SID");
    if (!objeto || !sid || esquema->tabla.columnas[*objeto].tipo != TipoColumna::Largo ||
        esquema->tabla.columnas[*sid].tipo != TipoColumna::Binario) {
        return almacen.Danado("la tabla MSysACEs no tiene sus columnas");
    }
    QUIMO_TRY(const auto recorrido, RecorridoPaginas::Empezar(almacen, esquema));
    std::set<Binario> sids;
    Fila fila;
    while (true) {
        QUIMO_TRY(const bool hay, recorrido->Avanzar());
        if (!hay) break;
        QUIMO_TRY_VOID(recorrido->Leer(fila));
        const auto* de_quien = std::get_if<Binario>(&fila[*sid]);
        if (fila[*objeto] == Valor(kTablas) && de_quien != nullptr) sids.insert(*de_quien);
    }
    // A table that nobody has rights on could not be opened by its own maker.
    if (sids.empty()) return almacen.Danado("nadie tiene permisos sobre sus tablas");
    return sids;
}

/// Everybody who has rights on tables gets rights on the new one.
Result<void> AgregarPermisos(Almacen& almacen, std::uint32_t pagina) {
    QUIMO_TRY(const auto esquema, BuscarEsquema(almacen, "MSysACEs"));
    std::set<Binario>& sids = almacen.CatalogoLeido()->con_permisos;
    if (sids.empty()) {
        QUIMO_TRY(sids, ConPermisos(almacen, esquema));
    }
    Escritor escritor(almacen, *esquema);
    QUIMO_TRY_VOID(escritor.PuedeEscribir());
    for (const Binario& uno : sids) {
        Fila nueva = FilaVacia(*esquema);
        QUIMO_TRY_VOID(Poner(*esquema, nueva, "ObjectId", static_cast<std::int32_t>(pagina)));
        QUIMO_TRY_VOID(Poner(*esquema, nueva, "SID", uno));
        QUIMO_TRY_VOID(Poner(*esquema, nueva, "ACM", kTodosLosPermisos));
        QUIMO_TRY_VOID(Poner(*esquema, nueva, "FInheritable", false));
        QUIMO_TRY_VOID(escritor.Insertar(nueva));
    }
    return {};
}

}  // namespace

Fecha Ahora() {
    const std::time_t segundos = std::time(nullptr);
    std::tm t{};
    ::localtime_r(&segundos, &t);
    const auto fecha = Fecha::DeCivil({t.tm_year + 1900, t.tm_mon + 1, t.tm_mday, t.tm_hour,
                                       t.tm_min, std::min(t.tm_sec, 59), 0});
    return fecha ? *fecha : Fecha{};
}

Result<void> EscribirDefinicion(Almacen& almacen, std::uint32_t primera,
                                const std::vector<std::uint8_t>& definicion) {
    std::uint32_t numero = primera;
    std::size_t hechos = 0;
    while (true) {
        // The first page carries its own header among the bytes; the others are given one.
        const std::size_t cabecera = hechos == 0 ? 0 : kCabeceraDeContinuacion;
        const std::size_t estos = std::min(kTamPagina - cabecera, definicion.size() - hechos);
        const bool ultima = hechos + estos == definicion.size();
        std::uint32_t siguiente = 0;
        if (!ultima) {
            QUIMO_TRY(siguiente, AsignarPagina(almacen));
        }
        QUIMO_TRY(Pagina * pagina, almacen.Escribir(numero));
        pagina->bytes.fill(0);
        std::copy_n(definicion.begin() + static_cast<std::ptrdiff_t>(hechos), estos,
                    pagina->bytes.begin() + static_cast<std::ptrdiff_t>(cabecera));
        const std::size_t usados = cabecera + estos;
        const std::size_t sobran = kTamPagina - usados;
        pagina->bytes[0] = kPaginaDefinicion;
        pagina->bytes[1] = 1;
        PonerU16(pagina->data() + 2, sobran > 8 ? sobran - 8 : 0);
        PonerU32(pagina->data() + 4, siguiente);
        if (ultima) return {};
        hechos += estos;
        numero = siguiente;
    }
}

Result<std::uint32_t> AgregarTabla(Almacen& almacen, const DefTabla& definicion) {
    QUIMO_TRY(const auto catalogo, LeerCatalogo(almacen));
    QUIMO_TRY_VOID(ComprobarNombreLibre(*catalogo, definicion.nombre));
    Transaccion transaccion(almacen);
    QUIMO_TRY(const std::uint32_t tabla, AsignarPagina(almacen));
    Plano plano;
    for (std::size_t i = 0; i < definicion.indices.size(); ++i) {
        QUIMO_TRY(const std::uint32_t raiz, AsignarPagina(almacen));
        QUIMO_TRY_VOID(EscribirRaizVacia(almacen, raiz, tabla));
        plano.raices.push_back(raiz);
    }
    ColocadorDeMapas mapas(almacen);
    QUIMO_TRY(plano.propias, mapas.Poner(FilaDeMapaVacia()));
    QUIMO_TRY(plano.libres, mapas.Poner(FilaDeMapaVacia()));
    for (const std::uint32_t raiz : plano.raices) {
        QUIMO_TRY(const Puntero mapa, mapas.Poner(FilaDeMapaDe(raiz)));
        plano.mapas.push_back(mapa);
    }
    for (std::size_t i = 0; i < ColumnasDeLargos(definicion); ++i) {
        QUIMO_TRY(const Puntero propias, mapas.Poner(FilaDeMapaVacia()));
        QUIMO_TRY(const Puntero libres, mapas.Poner(FilaDeMapaVacia()));
        plano.largos.emplace_back(propias, libres);
    }
    QUIMO_TRY_VOID(EscribirDefinicion(almacen, tabla,
                                      ArmarDefinicion(definicion, plano, ClaseTabla::Usuario)));
    QUIMO_TRY(ObjetoCatalogo objeto,
              AgregarAlCatalogo(almacen, catalogo->objetos, definicion.nombre, tabla));
    QUIMO_TRY_VOID(AgregarPermisos(almacen, tabla));
    transaccion.Confirmar();
    almacen.CatalogoLeido()->Agregar(std::move(objeto));
    return tabla;
}

}  // namespace quimo::jet
