#include "security/clave.h"

#include <array>
#include <cerrno>

#include <sys/stat.h>
#include <unistd.h>

#include <QByteArray>
#include <QFile>
#include <QRandomGenerator>

#include "base/reemplazo.h"
#include "security/pagina_codigos.h"

using namespace Qt::StringLiterals;

namespace quimo::security {

using base::Error;
using base::FalloSistema;
using base::Reemplazo;
using base::Result;

namespace {

constexpr qint64 kArchivoMax = 4096;
constexpr std::size_t kPalabras = 8;  // of 32 bits: a key of 256 bits

Error Malo(Error::Codigo codigo, const QString& mensaje) { return {codigo, mensaje.toStdString()}; }

// A key with characters that do not fit would be weaker than it looks.
Result<QString> Comprobada(const QString& clave, const QString& de_donde) {
    if (clave.isEmpty()) {
        return Malo(Error::Codigo::Datos,
                    u"La clave del cifrado en "_s + de_donde + u" está vacía."_s);
    }
    if (!CabeEnPagina(clave)) {
        return Malo(Error::Codigo::Datos, u"La clave del cifrado en "_s + de_donde +
                                              u" lleva caracteres que no se admiten."_s);
    }
    return clave;
}

Error ErrorDeArchivo(const QString& archivo, const QString& motivo) {
    return Malo(Error::Codigo::Archivo,
                u"No se puede usar el archivo de clave "_s + archivo + u": "_s + motivo);
}

/// All of it or nothing, and for good: whoever loses a key that was used loses the passwords.
Result<void, FalloSistema> CrearDurable(const std::string& archivo, const QByteArray& contenido) {
    // A name of its own, and never somebody else's file: it holds the key.
    QUIMO_TRY(Reemplazo nuevo,
              Reemplazo::Crear(archivo, archivo + '.' + std::to_string(getpid()) + ".tmp",
                               Reemplazo::Restos::Respetar, S_IRUSR | S_IWUSR));
    QUIMO_TRY_VOID(
        nuevo.Escribir(contenido.constData(), static_cast<std::size_t>(contenido.size())));
    QUIMO_TRY_VOID(nuevo.Asegurar());
    QUIMO_TRY_VOID(nuevo.ColocarSiFalta());
    auto asegurado = base::AsegurarNombre(archivo);
    if (!asegurado) unlink(archivo.c_str());
    return asegurado;
}

}  // namespace

Result<QString> LeerClaveDe(const QString& archivo) {
    QFile entrada(archivo);
    if (!entrada.open(QIODevice::ReadOnly)) return ErrorDeArchivo(archivo, entrada.errorString());
    struct stat datos = {};
    if (fstat(entrada.handle(), &datos) != 0 || !S_ISREG(datos.st_mode)) {
        return ErrorDeArchivo(archivo, u"no es un archivo."_s);
    }
    if (datos.st_uid != geteuid() || (datos.st_mode & (S_IRWXG | S_IRWXO)) != 0) {
        return ErrorDeArchivo(archivo,
                              u"solo su dueño, que es quien usa el programa, debe poder leerlo."_s);
    }
    const QByteArray bytes = entrada.read(kArchivoMax);
    const QString primera = QString::fromUtf8(bytes).section(u'\n', 0, 0).trimmed();
    return Comprobada(primera, archivo);
}

Result<QString> LeerClave() {
    if (qEnvironmentVariableIsSet("QUIMO_CLAVE")) {
        return Comprobada(qEnvironmentVariable("QUIMO_CLAVE"), u"QUIMO_CLAVE"_s);
    }
    const QString archivo = qEnvironmentVariable("QUIMO_CLAVE_ARCHIVO");
    if (!archivo.isEmpty()) return LeerClaveDe(archivo);
    return Malo(Error::Codigo::NoEncontrado,
                u"Falta la clave del cifrado de contraseñas: defina QUIMO_CLAVE o "
                "QUIMO_CLAVE_ARCHIVO. El administrador la crea con 'quimoctl clave'."_s);
}

Result<void> CrearArchivoClave(const QString& archivo) {
    std::array<quint32, kPalabras> azar = {};
    QRandomGenerator::system()->fillRange(azar.data(), static_cast<qsizetype>(azar.size()));
    const QByteArray linea =
        QByteArray(reinterpret_cast<const char*>(azar.data()), sizeof(azar)).toBase64() + '\n';
    const auto creado = CrearDurable(QFile::encodeName(archivo).toStdString(), linea);
    if (creado) return {};
    const int error = creado.error().error;
    return ErrorDeArchivo(archivo, error == EEXIST ? u"ya existe."_s : qt_error_string(error));
}

}  // namespace quimo::security
