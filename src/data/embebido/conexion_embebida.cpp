#include "data/embebido/conexion_embebida.h"

#include <QFileInfo>

#include "data/embebido/errores_motor.h"
#include "data/embebido/interprete.h"
#include "data/fallos.h"
#include "tsql/valores/texto.h"

namespace quimo::data {

namespace {

using embebido::AFallo;
using embebido::ErrorSql;
using embebido::Interprete;
using embebido::Sesion;
using embebido::Valor;
using embebido::ValorConTipo;

FalloSql Cerrada() { return ConexionCerrada(embebido::kOrigen); }

class ConexionEmbebida final : public SqlConnection {
public:
    explicit ConexionEmbebida(const Reloj& reloj) : sesion_(reloj) {}
    ConexionEmbebida(const ConexionEmbebida&) = delete;
    ConexionEmbebida& operator=(const ConexionEmbebida&) = delete;
    ~ConexionEmbebida() override { CerrarSesion(); }

    embebido::Hecho Abrir(const QString& archivo, bool crear) {
        auto hecho = sesion_.Abrir(archivo.toStdString(), crear);
        if (hecho) Enlazar();
        return hecho;
    }

    RespuestaSql Ejecutar(const QString& tsql, const QVector<QVariant>& parametros) override {
        RespuestaSql respuesta;
        if (!sesion_.Abierta()) {
            respuesta.fallo = Cerrada();
            return respuesta;
        }
        std::vector<ValorConTipo> valores;
        for (const QVariant& parametro : parametros) {
            auto valor = embebido::DeVariante(parametro);
            if (!valor) {
                respuesta.fallo =
                    AFallo(tsql::ConversionImplicitaProhibida(parametro.typeName(), "sql_variant"));
                return respuesta;
            }
            valores.push_back(*std::move(valor));
        }
        Interprete(sesion_, respuesta).Correr(tsql.toStdString(), valores);
        return respuesta;
    }

    base::Result<void, FalloSql> Iniciar() override {
        return Con([this] { return sesion_.Iniciar({}); });
    }
    base::Result<void, FalloSql> Confirmar() override {
        return Con([this] { return sesion_.Confirmar(); });
    }
    base::Result<void, FalloSql> Revertir() override {
        return Con([this] { return sesion_.Revertir({}); });
    }
    bool EnTransaccion() const override { return sesion_.TransaccionActual() != 0; }
    std::uint64_t TransaccionActual() const override { return sesion_.TransaccionActual(); }

    base::Result<DefinicionTabla, FalloSql> Describir(const QString& nombre) override {
        if (!sesion_.Abierta()) return Cerrada();
        tsql::NombreObjeto objeto;
        objeto.objeto = nombre.toStdString();
        if (objeto.objeto.starts_with("dbo.")) objeto.objeto.erase(0, 4);
        const auto tabla = sesion_.Catalogo().BuscarTabla(objeto);
        if (!tabla) return AFallo(tsql::ObjetoDesconocido(nombre.toStdString()));
        DefinicionTabla definicion;
        definicion.nombre = QString::fromStdString(tabla->nombre);
        for (const tsql::ColumnaTabla& columna : tabla->columnas) {
            definicion.columnas.append(embebido::AColumna({columna.nombre, columna.tipo}));
            if (columna.identidad) definicion.identidad = QString::fromStdString(columna.nombre);
        }
        if (const tsql::Indice* primaria = tabla->Primaria()) {
            for (const int cual : primaria->columnas)
                definicion.clave.append(definicion.columnas[cual].nombre);
        }
        return definicion;
    }

    bool Abierta() const override { return sesion_.Abierta(); }
    void Cerrar() override { CerrarSesion(); }

private:
    void CerrarSesion() {
        if (!sesion_.Abierta()) return;
        // What was begun and not confirmed goes with the connection.
        sesion_.Cerrar();
    }

    template <typename Trabajo>
    base::Result<void, FalloSql> Con(Trabajo trabajo) {
        if (!sesion_.Abierta()) return Cerrada();
        const std::uint64_t antes = sesion_.TransaccionActual();
        const auto hecho = trabajo();
        sesion_.Conciliar();
        if (hecho) return {};
        FalloSql fallo = AFallo(hecho.error());
        if (antes != 0 && sesion_.TransaccionActual() != antes) {
            fallo.errores.append(embebido::AProveedor(embebido::TransaccionDeshecha()));
        }
        return fallo;
    }

    /// Gives the functions of running statements what they need of the connection.
    void Enlazar() {
        embebido::ContextoFunciones& contexto = sesion_.Contexto();
        contexto.llamar = [this](const std::string& funcion, tsql::Argumentos argumentos) {
            RespuestaSql aparte;
            return Interprete(sesion_, aparte).LlamarFuncion(funcion, argumentos);
        };
        contexto.id_objeto = [this](const std::string& nombre, const std::string& clase) {
            return IdObjeto(nombre, clase);
        };
        contexto.tiene_candado = [this](const std::string& nombre) {
            return sesion_.Cerrojos().Tiene(nombre);
        };
        contexto.nombre_objeto = [this](std::int64_t id) {
            for (const auto& [clave, tabla] : sesion_.Catalogo().Tablas()) {
                if (tabla->id == id) return Valor::DeTexto(tabla->nombre);
            }
            for (const auto& [clave, modulo] : sesion_.Catalogo().Modulos()) {
                if (sesion_.Catalogo().IdModulo(clave) == id) {
                    return Valor::DeTexto(modulo->nombre.objeto);
                }
            }
            return Valor{};
        };
    }

    /// OBJECT_ID('dbo.name' [, 'U', 'P', 'V' or 'FN'])
    Valor IdObjeto(const std::string& nombre, const std::string& clase) const {
        std::string corto;
        for (const char c : nombre) {
            if (c == '.') {
                corto.clear();
            } else if (c != '[' && c != ']' && c != '"') {
                corto.push_back(c);
            }
        }
        const std::string pedida = tsql::AMayusculas(tsql::SinBlancosAlFinal(clase));
        tsql::NombreObjeto objeto;
        objeto.objeto = corto;
        const auto tabla = sesion_.Catalogo().BuscarTabla(objeto);
        if (tabla && (pedida.empty() || pedida == "U")) return Valor::De(tabla->id);
        const auto modulo = sesion_.Catalogo().BuscarModulo(objeto);
        if (!modulo) return {};
        using Clase = tsql::CrearModulo::Clase;
        const std::string es = modulo->clase == Clase::Vista     ? "V"
                               : modulo->clase == Clase::Funcion ? "FN"
                                                                 : "P";
        if (!pedida.empty() && pedida != es) return {};
        return Valor::De(sesion_.Catalogo().IdModulo(tsql::AMinusculas(corto)));
    }

    mutable Sesion sesion_;
};

/// There is no server whose wording would be expected here: the user is told about the file.
QString PorQueNoAbre(const QString& archivo) {
    const QFileInfo info(archivo);
    if (!info.exists()) {
        return QFileInfo(info.path()).isDir()
                   ? QStringLiteral("No existe la base de datos %1.").arg(archivo)
                   : QStringLiteral("No existe la carpeta de la base de datos %1.").arg(archivo);
    }
    if (!info.isFile() || !info.isReadable() || !info.isWritable()) {
        return QStringLiteral("No se puede leer y escribir la base de datos %1.").arg(archivo);
    }
    return QStringLiteral(
               "El archivo %1 no es una base de datos de QUIMO, está dañado o lo tiene ocupado "
               "otro programa.")
        .arg(archivo);
}

}  // namespace

base::Result<std::unique_ptr<SqlConnection>, FalloSql> AbrirEmbebida(const QString& archivo,
                                                                     const Reloj& reloj,
                                                                     bool crear) {
    auto conexion = std::make_unique<ConexionEmbebida>(reloj);
    const auto hecho = conexion->Abrir(archivo, crear);
    if (!hecho) {
        FalloSql fallo = AFallo(hecho.error());
        if (!fallo.errores.isEmpty()) fallo.errores.first().descripcion = PorQueNoAbre(archivo);
        return fallo;
    }
    return std::unique_ptr<SqlConnection>(std::move(conexion));
}

}  // namespace quimo::data
