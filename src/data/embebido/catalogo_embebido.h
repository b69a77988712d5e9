#pragma once

#include <map>
#include <string>

#include "data/embebido/base_sqlite.h"
#include "tsql/lectura/catalogo.h"

namespace quimo::data::embebido {

/// Tables, views, procedures and functions of one file, as T-SQL knows them, kept in tables of the
/// file itself (their names begin with _quimo_) and read whole when it is opened. Temporary tables
/// live in memory alone.
class CatalogoEmbebido final : public tsql::Catalogo {
public:
    explicit CatalogoEmbebido(BaseSqlite& base) : base_(base) {}

    /// Makes the tables of an empty file and reads what there is.
    Hecho Abrir();
    /// Gives its statements back: the file stays open until the last one is gone.
    void Cerrar();
    /// Reads again when another process has changed the definitions.
    Hecho Refrescar();

    tsql::TablaPtr BuscarTabla(const tsql::NombreObjeto& nombre) const override;
    tsql::ModuloPtr BuscarModulo(const tsql::NombreObjeto& nombre) const override;

    std::int64_t NuevoId();
    /// Writes a table's definition, in place of the one of its number. The caller has a
    /// transaction around this and the engine's own change.
    Hecho Guardar(const tsql::Tabla& tabla);
    Hecho Borrar(const tsql::Tabla& tabla);
    Hecho GuardarModulo(const tsql::CrearModulo& modulo);
    Hecho BorrarModulo(const std::string& nombre);

    /// Grows with every change of a definition.
    std::int64_t Version() const { return version_; }
    std::int64_t VersionModulos() const { return version_modulos_; }

    /// Everything known, to come back to when a transaction is rolled back.
    struct Foto {
        std::map<std::string, tsql::TablaPtr> tablas;
        std::map<std::string, tsql::ModuloPtr> modulos;
        std::int64_t version_archivo = 0;  ///< of the file that these were read from
    };
    Foto Retratar() const { return foto_; }
    void Restaurar(Foto foto);

    const std::map<std::string, tsql::TablaPtr>& Tablas() const { return foto_.tablas; }
    const std::map<std::string, tsql::ModuloPtr>& Modulos() const { return foto_.modulos; }
    /// Number that OBJECT_ID gives a module: those of tables are kept in the file.
    std::int64_t IdModulo(const std::string& nombre) const;

    /// Whether another table refers to this one.
    const tsql::Tabla* Referente(const tsql::Tabla& tabla) const;

    /// Last number given in an identity column; the one before the seed when there is none.
    Resultado<std::int64_t> UltimoNumero(const tsql::Tabla& tabla);
    Hecho GuardarNumero(const tsql::Tabla& tabla, std::int64_t numero);

    /// What the text of a CREATE or ALTER defines, with its constants in the tree.
    static Resultado<tsql::ModuloPtr> LeerModulo(const std::string& texto);

private:
    Hecho Cargar();
    Hecho CargarColumnas(std::map<std::int64_t, tsql::Tabla>& tablas);
    Hecho CargarRestricciones(std::map<std::int64_t, tsql::Tabla>& tablas);
    Hecho CargarModulos(Foto& foto);
    Hecho Avanzar();
    Resultado<std::int64_t> LeerVersion();

    BaseSqlite& base_;
    Foto foto_;
    std::map<std::int64_t, std::int64_t> numeros_;  ///< what a rollback does not give back
    std::map<std::int64_t, std::int64_t> temporales_;
    std::int64_t version_ = 1;
    std::int64_t version_modulos_ = 1;
    std::int64_t ultimo_id_ = 0;
    Preparada leer_numero_;
    Preparada guardar_numero_;
};

}  // namespace quimo::data::embebido
