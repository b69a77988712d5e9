#pragma once

#include <string>

#include "data/embebido/sesion.h"

namespace quimo::data::embebido {

/// Makes, changes and drops tables, indexes, views, procedures and functions: the engine's own
/// object and the definition beside it, together or not at all.
class Definiciones {
public:
    explicit Definiciones(Sesion& sesion) : sesion_(sesion) {}

    /// `local`: a table that ends with the text or procedure (#name or @name).
    Hecho Crear(const tsql::CrearTabla& crear, bool local);
    Hecho Crear(const tsql::CrearIndice& crear);
    Hecho Crear(const tsql::CrearModulo& crear);
    Hecho Cambiar(const tsql::CambiarTabla& cambiar);
    Hecho Quitar(const tsql::Quitar& quitar);
    Hecho Truncar(const tsql::NombreObjeto& nombre);

private:
    Resultado<PuntoDeSentencia> AbrirAlDia();
    Hecho Definir(tsql::Tabla& tabla, const tsql::CrearTabla& crear);
    Hecho AgregarColumna(tsql::Tabla& tabla, const tsql::ColumnaDef& def) const;
    Hecho AgregarRestriccion(tsql::Tabla& tabla, const tsql::RestriccionDef& def) const;
    Hecho AgregarClave(tsql::Tabla& tabla, const tsql::RestriccionDef& def) const;
    Hecho AgregarForanea(tsql::Tabla& tabla, const tsql::RestriccionDef& def) const;
    Hecho Calcular(tsql::Tabla& tabla) const;
    tsql::Entorno Entorno() const;
    std::string NombreLibre(const tsql::Tabla& tabla, const std::string& prefijo) const;

    Hecho CrearEnMotor(const tsql::Tabla& tabla, const std::string& nombre);
    Resultado<std::string> SqlDe(const tsql::Tabla& tabla, const std::string& nombre) const;
    Resultado<std::string> ColumnaSql(const tsql::Tabla& tabla, std::size_t columna) const;
    Hecho CrearIndices(const tsql::Tabla& tabla);
    Hecho CrearIndiceEnMotor(const tsql::Tabla& tabla, const tsql::Indice& indice);
    Hecho QuitarIndiceDelMotor(const tsql::Tabla& tabla, const tsql::Indice& indice);
    Hecho AsegurarClaves(const tsql::Tabla& tabla);
    /// Makes the engine's table anew with the other definition and takes its rows over.
    Hecho Rehacer(const tsql::Tabla& vieja, const tsql::Tabla& nueva);
    Hecho SinReferencias(const std::function<Hecho()>& trabajo);

    Hecho AgregarColumnas(const tsql::Tabla& vieja, const tsql::CambiarTabla& cambiar);
    Resultado<bool> TieneFilas(const tsql::Tabla& tabla);
    Resultado<std::string> ValorPorDefecto(const tsql::ColumnaTabla& columna);
    Hecho AgregarRestricciones(const tsql::Tabla& vieja, const tsql::CambiarTabla& cambiar);
    Resultado<bool> SumarRestricciones(tsql::Tabla& tabla, const tsql::CambiarTabla& cambiar) const;
    Hecho GuardarConIndices(const tsql::Tabla& vieja, const tsql::Tabla& nueva);
    Hecho CambiarColumna(const tsql::Tabla& vieja, const tsql::CambiarTabla& cambiar);
    Hecho QuitarColumnas(const tsql::Tabla& vieja, const tsql::CambiarTabla& cambiar);
    Hecho QuitarRestricciones(const tsql::Tabla& vieja, const tsql::CambiarTabla& cambiar);
    Hecho QuitarTabla(const tsql::NombreObjeto& nombre, bool si_existe);
    Hecho QuitarIndice(const tsql::NombreObjeto& nombre, bool si_existe);
    Hecho QuitarModulo(const tsql::NombreObjeto& nombre, const tsql::Quitar& quitar);

    Sesion& sesion_;
};

}  // namespace quimo::data::embebido
