#include "jet/catalogo.h"

#include <algorithm>
#include <optional>
#include <set>

#include "jet/recorrido.h"
#include "jet/texto.h"

namespace quimo::jet {

namespace {

constexpr const char* kCatalogo = "MSysObjects";

/// Reads the named columns of the row gone to; those the table does not have are NULL.
class LectorDeColumnas {
public:
    explicit LectorDeColumnas(RecorridoPaginas& recorrido) : recorrido_(recorrido) {}
    Result<Valor> Leer(const VistaFila& vista, std::string_view nombre) {
        const Esquema& esquema = recorrido_.EsquemaDeTabla();
        const auto columna = esquema.BuscarColumna(nombre);
        Valor valor;
        if (columna) {
            QUIMO_TRY_VOID(LeerValor(recorrido_.LecturaDeFila(), esquema, vista, *columna, valor));
        }
        return valor;
    }
    Result<std::int32_t> LeerNumero(const VistaFila& vista, std::string_view nombre) {
        QUIMO_TRY(const Valor valor, Leer(vista, nombre));
        const auto* numero = std::get_if<std::int32_t>(&valor);
        return numero != nullptr ? *numero : 0;
    }

private:
    RecorridoPaginas& recorrido_;
};

}  // namespace

void Catalogo::Agregar(ObjetoCatalogo objeto) {
    if (objeto.CompiteEnNombres()) {
        const auto [lugar, nuevo] = por_nombre.emplace(Plegado(objeto.nombre), objetos.size());
        // A local table goes before what only has its name.
        if (!nuevo && objeto.EsTabla()) lugar->second = objetos.size();
    }
    objetos.push_back(std::move(objeto));
}

const ObjetoCatalogo* Catalogo::Buscar(std::string_view nombre) const {
    const auto hallado = por_nombre.find(Plegado(nombre));
    return hallado == por_nombre.end() ? nullptr : &objetos[hallado->second];
}

Result<std::shared_ptr<const Catalogo>> LeerCatalogo(Almacen& almacen) {
    if (almacen.CatalogoLeido() != nullptr) {
        return std::shared_ptr<const Catalogo>(almacen.CatalogoLeido());
    }
    QUIMO_TRY(const auto esquema, LeerEsquema(almacen, kPaginaCatalogo, kCatalogo));
    QUIMO_TRY(const auto recorrido, RecorridoPaginas::Empezar(almacen, esquema));
    LectorDeColumnas lector(*recorrido);
    auto catalogo = std::make_shared<Catalogo>();
    std::set<std::uint32_t> definiciones;
    while (true) {
        QUIMO_TRY(const bool hay, recorrido->Avanzar());
        if (!hay) break;
        const auto vista = VistaFila::De(*esquema, recorrido->Bytes());
        if (!vista) return almacen.Danado("el catálogo tiene una fila que no se puede leer");
        ObjetoCatalogo objeto;
        QUIMO_TRY(objeto.id, lector.LeerNumero(*vista, "Id"));
        QUIMO_TRY(objeto.padre, lector.LeerNumero(*vista, "ParentId"));
        QUIMO_TRY(objeto.tipo, lector.LeerNumero(*vista, "Type"));
        QUIMO_TRY(objeto.banderas, lector.LeerNumero(*vista, "Flags"));
        QUIMO_TRY(objeto.dueno, lector.Leer(*vista, "Owner"));
        QUIMO_TRY(const Valor nombre, lector.Leer(*vista, "Name"));
        if (const auto* texto = std::get_if<std::u16string>(&nombre)) objeto.nombre = AUtf8(*texto);
        const ObjetoCatalogo* otro = catalogo->Buscar(objeto.nombre);
        if (objeto.EsTabla() && (!definiciones.insert(objeto.Pagina()).second ||
                                 (otro != nullptr && otro->EsTabla()))) {
            return almacen.Danado("la tabla " + objeto.nombre +
                                  " tiene el nombre o la definición de otra");
        }
        catalogo->Agregar(std::move(objeto));
    }
    almacen.CatalogoLeido() = catalogo;
    return std::shared_ptr<const Catalogo>(std::move(catalogo));
}

Result<std::shared_ptr<const Esquema>> BuscarEsquema(Almacen& almacen, std::string_view nombre) {
    QUIMO_TRY(const auto catalogo, LeerCatalogo(almacen));
    const ObjetoCatalogo* objeto = catalogo->Buscar(nombre);
    if (objeto != nullptr && objeto->EsTabla()) {
        return LeerEsquema(almacen, objeto->Pagina(), objeto->nombre);
    }
    if (objeto != nullptr && objeto->EsEnlazada()) {
        return Error{Error::Codigo::NoSoportado, "La tabla " + std::string(nombre) +
                                                     " está enlazada: sus datos no están en " +
                                                     almacen.Ruta() + "."};
    }
    return Error{Error::Codigo::NoEncontrado, "El archivo " + almacen.Ruta() +
                                                  " no tiene una tabla llamada " +
                                                  std::string(nombre) + "."};
}

}  // namespace quimo::jet
