// Relationships and sort orders: what a file asks of those who write to it.

#include <algorithm>
#include <array>
#include <cstdio>

#include "jet/catalogo.h"
#include "jet/recorrido.h"
#include "jet/texto.h"

namespace quimo::jet {

namespace {

constexpr const char* kTabla = "MSysRelationships";

struct NombreDeOrden {
    int lcid;
    const char* nombre;
};
constexpr NombreDeOrden kOrdenes[] = {
    {0x0409, "General"}, {0x040A, "español tradicional"}, {0x0C0A, "español moderno"}};

std::string TextoDe(const Esquema& esquema, const Fila& fila, std::string_view columna) {
    const auto i = esquema.BuscarColumna(columna);
    const auto* texto = i ? std::get_if<std::u16string>(&fila[*i]) : nullptr;
    return texto != nullptr ? AUtf8(*texto) : std::string();
}

}  // namespace

std::string OrdenTexto::Nombre() const {
    const auto* const hallado = std::find_if(std::begin(kOrdenes), std::end(kOrdenes),
                                             [this](const auto& o) { return o.lcid == lcid; });
    std::array<char, 16> codigo{};
    std::snprintf(codigo.data(), codigo.size(), "0x%04X", static_cast<unsigned>(lcid));
    std::string texto = hallado != std::end(kOrdenes)
                            ? std::string(hallado->nombre) + " (" + codigo.data() + ")"
                            : "el orden " + std::string(codigo.data());
    if (version != 0) texto += ", versión " + std::to_string(version);
    return texto;
}

void AgregarRelacion(const Esquema& esquema, const Fila& fila, std::vector<Relacion>& relaciones) {
    const std::string nombre = TextoDe(esquema, fila, "szRelationship");
    auto relacion = std::find_if(relaciones.begin(), relaciones.end(),
                                 [&](const Relacion& r) { return r.nombre == nombre; });
    if (relacion == relaciones.end()) {
        const auto grbit = esquema.BuscarColumna("grbit");
        const auto* banderas = grbit ? std::get_if<std::int32_t>(&fila[*grbit]) : nullptr;
        relaciones.push_back(
            {.nombre = nombre,
             .tabla = TextoDe(esquema, fila, "szObject"),
             .referida = TextoDe(esquema, fila, "szReferencedObject"),
             .columnas = {},
             .banderas = banderas != nullptr ? static_cast<std::uint32_t>(*banderas) : 0});
        relacion = relaciones.end() - 1;
    }
    relacion->columnas.emplace_back(TextoDe(esquema, fila, "szColumn"),
                                    TextoDe(esquema, fila, "szReferencedColumn"));
}

Result<std::vector<Relacion>> LeerRelaciones(Almacen& almacen) {
    const auto esquema = BuscarEsquema(almacen, kTabla);
    if (!esquema && esquema.error().codigo == Error::Codigo::NoEncontrado) {
        return std::vector<Relacion>();
    }
    if (!esquema) return esquema.error();
    QUIMO_TRY(const auto recorrido, RecorridoPaginas::Empezar(almacen, *esquema));
    std::vector<Relacion> relaciones;
    Fila fila;
    while (true) {
        QUIMO_TRY(const bool hay, recorrido->Avanzar());
        if (!hay) return relaciones;
        QUIMO_TRY_VOID(recorrido->Leer(fila));
        AgregarRelacion(**esquema, fila, relaciones);
    }
}

}  // namespace quimo::jet
