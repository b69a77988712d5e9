#include <QFile>
#include <QFileInfo>

#include "app/comandos/consola.h"
#include "data/esquema.h"

using namespace Qt::StringLiterals;

namespace quimo::app {

namespace {

bool EsEmbebido(const QString& servidor) {
    return servidor.compare(QString::fromUtf16(foundation::kServidorEmbebido),
                            Qt::CaseInsensitive) == 0;
}

/// What the program's login needs of a server's database, and no more.
const QString kConsejo =
    u"Si el programa entra con otro usuario, un administrador debe darle en esta base estos "
    u"permisos "
    "y ninguno más\n(aquí para quimo_db; la guía está en docs/sqlserver.md):\n"
    "  CREATE USER [quimo_db] FOR LOGIN [quimo_db]\n"
    "  ALTER ROLE db_datareader ADD MEMBER [quimo_db]\n"
    "  ALTER ROLE db_datawriter ADD MEMBER [quimo_db]\n"
    "  GRANT EXECUTE ON SCHEMA::dbo TO [quimo_db]"_s;

/// An embedded file that this command made is not left behind half-filled.
class BaseNuevaEnDisco {
public:
    BaseNuevaEnDisco(const QString& servidor, QString base) : base_(std::move(base)) {
        nueva_ = EsEmbebido(servidor) && !QFileInfo::exists(base_);
    }
    BaseNuevaEnDisco(const BaseNuevaEnDisco&) = delete;
    BaseNuevaEnDisco& operator=(const BaseNuevaEnDisco&) = delete;
    ~BaseNuevaEnDisco() {
        if (!nueva_) return;
        for (const QString& sufijo : {QString(), u"-wal"_s, u"-shm"_s})
            QFile::remove(base_ + sufijo);
    }
    void Conservar() { nueva_ = false; }

private:
    QString base_;
    bool nueva_ = false;
};

}  // namespace

Estado ComandoCrear(const Argumentos& argumentos, const Entorno& entorno) {
    QString datos;
    if (argumentos.Hay(u"sql"_s)) {
        const auto leidos = LeerTexto(argumentos.Opcion(u"sql"_s));
        if (!leidos) return kFallo;
        datos = *leidos;
    }
    BaseNuevaEnDisco en_disco(argumentos.palabras[0], argumentos.palabras[1]);
    const auto sesion = AbrirSesion(argumentos, entorno, foundation::SiFalta::Crear, QString());
    if (sesion == nullptr) return kFallo;
    const auto creada = data::CrearBase(sesion->ado->Conexion(), datos);
    if (!creada) {
        EscribirError(u"No se creó la base de datos: "_s + TextoDeFallo(creada.error()));
        sesion->ado->Desconectar();
        return kFallo;
    }
    en_disco.Conservar();
    Escribir(u"Base de datos creada: "_s + argumentos.palabras[1]);
    if (!EsEmbebido(argumentos.palabras[0])) Escribir(kConsejo);
    return kHecho;
}

}  // namespace quimo::app
