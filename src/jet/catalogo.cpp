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

Result<std::vector<ObjetoCatalogo>> LeerCatalogo(Almacen& almacen) {
    QUIMO_TRY(const auto esquema, LeerEsquema(almacen, kPaginaCatalogo, kCatalogo));
    QUIMO_TRY(const auto recorrido, RecorridoPaginas::Empezar(almacen, esquema));
    LectorDeColumnas lector(*recorrido);
    std::vector<ObjetoCatalogo> objetos;
    std::set<std::uint32_t> definiciones;
    std::set<std::string> nombres;
    while (true) {
        QUIMO_TRY(const bool hay, recorrido->Avanzar());
        if (!hay) return objetos;
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
        if (objeto.EsTabla() && (!definiciones.insert(objeto.Pagina()).second ||
                                 !nombres.insert(Plegado(objeto.nombre)).second)) {
            return almacen.Danado("la tabla " + objeto.nombre +
                                  " tiene el nombre o la definición de otra");
        }
        objetos.push_back(std::move(objeto));
    }
}

Result<std::shared_ptr<const Esquema>> BuscarEsquema(Almacen& almacen, std::string_view nombre) {
    QUIMO_TRY(const std::vector<ObjetoCatalogo> objetos, LeerCatalogo(almacen));
    bool enlazada = false;
    for (const ObjetoCatalogo& objeto : objetos) {
        if (!MismoNombre(objeto.nombre, nombre)) continue;
        if (objeto.EsTabla()) return LeerEsquema(almacen, objeto.Pagina(), objeto.nombre);
        enlazada = enlazada || objeto.tipo == ObjetoCatalogo::kEnlazada ||
                   objeto.tipo == ObjetoCatalogo::kEnlazadaOdbc;
    }
    if (enlazada) {
        return Error{Error::Codigo::NoSoportado, "La tabla " + std::string(nombre) +
                                                     " está enlazada: sus datos no están en " +
                                                     almacen.Ruta() + "."};
    }
    return Error{Error::Codigo::NoEncontrado, "El archivo " + almacen.Ruta() +
                                                  " no tiene una tabla llamada " +
                                                  std::string(nombre) + "."};
}

}  // namespace quimo::jet
