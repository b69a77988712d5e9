#pragma once

#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "tsql/lectura/catalogo.h"

namespace quimo::tsql {

/// What the given CREATE TABLE, INDEX, VIEW and FUNCTION texts define, with no database behind it.
class CatalogoPrueba final : public Catalogo {
public:
    CatalogoPrueba(std::initializer_list<const char*> definiciones);

    TablaPtr BuscarTabla(const NombreObjeto& nombre) const override;
    ModuloPtr BuscarModulo(const NombreObjeto& nombre) const override;
    TablaPtr Tabla(const std::string& nombre) const { return BuscarTabla({{}, {}, nombre}); }

private:
    void Definir(const CrearTabla& definicion);
    void Definir(const CrearIndice& definicion);
    void Definir(const CrearModulo& definicion);

    std::vector<std::shared_ptr<tsql::Tabla>> tablas_;
    std::vector<ModuloPtr> modulos_;
};

}  // namespace quimo::tsql
