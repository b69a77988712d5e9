// The smallest database: 16 pages with the four system tables.

#include <array>
#include <ctime>
#include <string>

#include "base/check.h"
#include "jet/catalogo.h"
#include "jet/escritor.h"
#include "jet/mapa.h"
#include "jet/pagina_datos.h"
#include "jet/plano.h"
#include "jet/texto.h"

namespace quimo::jet {

namespace {

using Tipo = TipoColumna;

constexpr std::uint32_t kPaginaDeMapas = 6;
constexpr std::uint32_t kPrimeraRaiz = 7;
constexpr std::uint32_t kPrimeraLibre = 16;
constexpr int kTextoMax = 255;
constexpr int kBinarioMax = 510;

DefColumna Columna(const char* nombre, TipoColumna tipo) {
    const int largo = tipo == Tipo::Texto ? kTextoMax : tipo == Tipo::Binario ? kBinarioMax : 0;
    return {.nombre = nombre, .tipo = tipo, .largo = largo};
}

enum class Banderas { Unico, Primaria, Requerido, IgnoraNulos };

DefIndice IndiceDe(const char* nombre, std::initializer_list<const char*> columnas, Banderas b) {
    DefIndice indice;
    indice.nombre = nombre;
    for (const char* columna : columnas)
        indice.columnas.push_back({columna, false});
    indice.primaria = b == Banderas::Primaria;
    indice.unico = b == Banderas::Unico || b == Banderas::Primaria;
    indice.requerido = b == Banderas::Requerido;
    indice.ignora_nulos = b == Banderas::IgnoraNulos;
    return indice;
}

std::array<DefTabla, 4> TablasDeSistema() {
    return {{
        {"MSysObjects",
         {Columna("Id", Tipo::Largo), Columna("ParentId", Tipo::Largo),
          Columna("Name", Tipo::Texto), Columna("Type", Tipo::Entero),
          Columna("DateCreate", Tipo::Fecha), Columna("DateUpdate", Tipo::Fecha),
          Columna("Owner", Tipo::Binario), Columna("Flags", Tipo::Largo),
          Columna("Database", Tipo::Memo), Columna("Connect", Tipo::Memo),
          Columna("ForeignName", Tipo::Texto), Columna("RmtInfoShort", Tipo::Binario),
          Columna("RmtInfoLong", Tipo::Ole), Columna("Lv", Tipo::Ole), Columna("LvProp", Tipo::Ole),
          Columna("LvModule", Tipo::Ole), Columna("LvExtra", Tipo::Ole)},
         {IndiceDe("ParentIdName", {"ParentId", "Name"}, Banderas::Unico),
          IndiceDe("Id", {"Id"}, Banderas::Primaria)}},
        {"MSysACEs",
         {Columna("ObjectId", Tipo::Largo), Columna("SID", Tipo::Binario),
          Columna("ACM", Tipo::Largo), Columna("FInheritable", Tipo::Logico)},
         {IndiceDe("ObjectId", {"ObjectId"}, Banderas::Requerido)}},
        {"MSysQueries",
         {Columna("ObjectId", Tipo::Largo), Columna("Attribute", Tipo::Byte),
          Columna("Order", Tipo::Binario), Columna("Name1", Tipo::Texto),
          Columna("Name2", Tipo::Texto), Columna("Expression", Tipo::Memo),
          Columna("Flag", Tipo::Entero), Columna("LvExtra", Tipo::Largo)},
         {IndiceDe("ObjectIdAttribute", {"ObjectId", "Attribute", "Order"}, Banderas::Primaria)}},
        {"MSysRelationships",
         {Columna("szRelationship", Tipo::Texto), Columna("grbit", Tipo::Largo),
          Columna("ccolumn", Tipo::Largo), Columna("icolumn", Tipo::Largo),
          Columna("szObject", Tipo::Texto), Columna("szColumn", Tipo::Texto),
          Columna("szReferencedObject", Tipo::Texto), Columna("szReferencedColumn", Tipo::Texto)},
         {IndiceDe("szRelationship", {"szRelationship"}, Banderas::IgnoraNulos),
          IndiceDe("szObject", {"szObject"}, Banderas::IgnoraNulos),
          IndiceDe("szReferencedObject", {"szReferencedObject"}, Banderas::IgnoraNulos)}},
    }};
}

/// Ids of the default workgroup, masked with the stamp in the header.
enum class Quien { Admin, Usuarios, Motor, Creador };

Binario Sid(Quien quien) {
    switch (quien) {
        case Quien::Admin:
            return {0x64, 0x8B};
        case Quien::Usuarios:
            return {0x65, 0x8B};
        case Quien::Motor:
            return {0x65, 0x89};
        case Quien::Creador:
            return {0x65, 0x8E};
    }
    return {};
}

struct ObjetoInicial {
    std::int32_t id;
    std::int32_t padre;
    const char* nombre;
    std::int32_t tipo;
    Quien dueno;
};
constexpr ObjetoInicial kObjetos[] = {
    {0x0F000001, 0x0F000000, "Tables", 3, Quien::Motor},
    {0x0F000002, 0x0F000000, "Databases", 3, Quien::Motor},
    {0x0F000003, 0x0F000000, "Relationships", 3, Quien::Motor},
    {0x10000000, 0x0F000002, "MSysDb", 2, Quien::Admin},
    {2, 0x0F000001, "MSysObjects", 1, Quien::Motor},
    {3, 0x0F000001, "MSysACEs", 1, Quien::Motor},
    {4, 0x0F000001, "MSysQueries", 1, Quien::Motor},
    {5, 0x0F000001, "MSysRelationships", 1, Quien::Motor},
};

struct PermisoInicial {
    std::int32_t objeto;
    Quien quien;
    std::int32_t permisos;
    bool se_hereda;
};
constexpr PermisoInicial kPermisos[] = {
    {2, Quien::Admin, 0x060000, false},
    {3, Quien::Admin, 0x060000, false},
    {4, Quien::Admin, 0x060000, false},
    {5, Quien::Admin, 0x0E0000, false},
    {0x0F000001, Quien::Creador, 0x0F00FE, true},
    {0x0F000001, Quien::Admin, 0x060001, false},
    {0x0F000003, Quien::Creador, 0x0F00FE, true},
    {0x0F000003, Quien::Admin, 0x060001, false},
    {0x0F000002, Quien::Admin, 0x060000, false},
    {0x10000000, Quien::Admin, 0x06000E, false},
    {0x10000000, Quien::Usuarios, 0x00000E, false},
    {4, Quien::Usuarios, 0x000014, false},
    {5, Quien::Usuarios, 0x000014, false},
    {2, Quien::Usuarios, 0x000014, false},
    {0x0F000001, Quien::Usuarios, 0x0FFEFF, true},
    {0x0F000003, Quien::Usuarios, 0x0FFFFF, true},
};

constexpr auto kDeSistema = static_cast<std::int32_t>(0x80000000U);

Result<void> PonerMapaGlobal(Almacen& almacen) {
    QUIMO_TRY(Pagina * pagina, almacen.Escribir(1));
    FormatearPaginaDatos(*pagina, 1);
    std::vector<std::uint8_t> fila = FilaDeMapaVacia();
    std::fill(fila.begin() + 5 + kPrimeraLibre / 8, fila.end(), std::uint8_t{0xFF});
    PonerFila(*pagina, fila, 0);
    PonerFila(*pagina, FilaDeMapaVacia(), 0);
    return {};
}

/// Definition, maps and roots of one system table; `raiz` is the next root page.
Result<void> PonerTabla(Almacen& almacen, const DefTabla& tabla, std::uint32_t numero,
                        std::uint32_t& raiz) {
    QUIMO_TRY(Pagina * mapas, almacen.Escribir(kPaginaDeMapas));
    const auto poner = [mapas](const std::vector<std::uint8_t>& fila) {
        return Puntero{kPaginaDeMapas, PonerFila(*mapas, fila, 0)};
    };
    Plano plano;
    plano.propias = poner(FilaDeMapaVacia());
    plano.libres = poner(FilaDeMapaVacia());
    for (std::size_t i = 0; i < ColumnasDeLargos(tabla); ++i) {
        const Puntero propias = poner(FilaDeMapaVacia());
        plano.largos.emplace_back(propias, poner(FilaDeMapaVacia()));
    }
    for (std::size_t i = 0; i < tabla.indices.size(); ++i, ++raiz) {
        plano.mapas.push_back(poner(FilaDeMapaDe(raiz)));
        plano.raices.push_back(raiz);
        QUIMO_TRY_VOID(EscribirRaizVacia(almacen, raiz, numero));
    }
    return EscribirDefinicion(almacen, numero, ArmarDefinicion(tabla, plano, ClaseTabla::Sistema));
}

Result<void> LlenarTablas(Almacen& almacen, Fecha ahora) {
    QUIMO_TRY(const auto objetos, LeerEsquema(almacen, kPaginaCatalogo, "MSysObjects"));
    Escritor catalogo(almacen, *objetos);
    for (const ObjetoInicial& o : kObjetos) {
        Fila fila(objetos->fisicas.size());
        fila[0] = o.id;
        fila[1] = o.padre;
        fila[2] = AUtf16(o.nombre);
        fila[3] = o.tipo;
        fila[4] = ahora;
        fila[5] = ahora;
        fila[6] = Sid(o.dueno);
        fila[7] = kDeSistema;
        QUIMO_TRY_VOID(catalogo.Insertar(fila));
    }
    QUIMO_TRY(const auto aces, LeerEsquema(almacen, kPaginaCatalogo + 1, "MSysACEs"));
    Escritor permisos(almacen, *aces);
    for (const PermisoInicial& p : kPermisos) {
        const Fila fila = {p.objeto, Sid(p.quien), p.permisos, p.se_hereda};
        QUIMO_TRY_VOID(permisos.Insertar(fila));
    }
    return {};
}

}  // namespace

Result<void> LlenarBaseNueva(Almacen& almacen) {
    QUIMO_CHECK(almacen.Paginas() == 0);
    Transaccion transaccion(almacen);
    std::uint32_t raiz = kPrimeraRaiz;
    for (std::uint32_t i = 0; i < kPrimeraRaiz + 7; ++i)
        QUIMO_TRY_VOID(almacen.Agregar());
    QUIMO_TRY(Pagina * cabecera, almacen.Escribir(0));
    *cabecera = CabeceraNueva();
    QUIMO_TRY_VOID(PonerMapaGlobal(almacen));
    QUIMO_TRY(Pagina * mapas, almacen.Escribir(kPaginaDeMapas));
    FormatearPaginaDatos(*mapas, 0);
    std::uint32_t numero = kPaginaCatalogo;
    for (const DefTabla& tabla : TablasDeSistema()) {
        QUIMO_TRY_VOID(PonerTabla(almacen, tabla, numero++, raiz));
    }
    QUIMO_TRY_VOID(LlenarTablas(almacen, Ahora()));
    transaccion.Confirmar();
    return {};
}

}  // namespace quimo::jet
