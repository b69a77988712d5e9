#include <QFile>
#include <QFileInfo>

#include "app/consola.h"
#include "foundation/esquema.h"

using namespace Qt::StringLiterals;

namespace quimo::app {

namespace {

/// An embedded file that this command made is not left behind half-filled.
class BaseNuevaEnDisco {
public:
    BaseNuevaEnDisco(const QString& servidor, QString base) : base_(std::move(base)) {
        nueva_ = servidor.compare(QString::fromUtf16(foundation::kServidorEmbebido),
                                  Qt::CaseInsensitive) == 0 &&
                 !QFileInfo::exists(base_);
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

Estado OrdenCrear(const Argumentos& argumentos, const Entorno& entorno) {
    QString datos;
    if (argumentos.Hay(u"sql"_s)) {
        QFile archivo(argumentos.Opcion(u"sql"_s));
        if (!archivo.open(QIODevice::ReadOnly)) {
            EscribirError(u"No se puede leer el archivo "_s + archivo.fileName() + u": "_s +
                          archivo.errorString());
            return kFallo;
        }
        datos = QString::fromUtf8(archivo.readAll());
    }
    BaseNuevaEnDisco en_disco(argumentos.palabras[0], argumentos.palabras[1]);
    const auto sesion = AbrirSesion(argumentos, entorno, foundation::SiFalta::Crear, QString());
    if (sesion == nullptr) return kFallo;
    const auto creada = foundation::CrearBase(sesion->ado->Conexion(), datos);
    if (!creada) {
        EscribirError(u"No se creó la base de datos: "_s + TextoDeFallo(creada.error()));
        sesion->ado->Desconectar();
        return kFallo;
    }
    en_disco.Conservar();
    Escribir(u"Base de datos creada: "_s + argumentos.palabras[1]);
    return kHecho;
}

}  // namespace quimo::app
