#include "dayclose/terminales/red_conf.h"

#include <cerrno>
#include <cstring>
#include <optional>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>
#include <QStringList>

using namespace Qt::StringLiterals;

namespace quimo::dayclose {

namespace {

constexpr qint64 kBytesMax = 1 << 16;
constexpr qsizetype kLargoMax = 200;  // of a value; the network library's own limit is 255 bytes
constexpr int kPlazoMax = 300;

base::Error Mal(const QString& texto) { return {base::Error::Codigo::Datos, texto.toStdString()}; }

/// The file's bytes, if nobody but us may read it. What is checked is what is open.
base::Result<QByteArray> LeerPrivado(const QString& ruta) {
    const int fd = ::open(QFile::encodeName(ruta).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) {
        const QString motivo = QString::fromLocal8Bit(std::strerror(errno));
        return Mal(u"No se puede leer el archivo "_s + ruta + u": "_s + motivo);
    }
    QFile archivo;
    if (!archivo.open(fd, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)) {
        ::close(fd);
        return Mal(u"No se puede leer el archivo "_s + ruta);
    }
    struct stat estado {};
    if (::fstat(fd, &estado) != 0 || !S_ISREG(estado.st_mode) || estado.st_size > kBytesMax) {
        return Mal(u"El archivo "_s + ruta + u" no es una configuración de red."_s);
    }
    if (estado.st_uid != ::geteuid()) {
        return Mal(u"El archivo "_s + ruta +
                   u" guarda la clave de la red y es de otro usuario. Debe ser de quien ejecuta el "
                   u"programa."_s);
    }
    if ((estado.st_mode & (S_IRWXG | S_IRWXO)) != 0) {
        return Mal(u"El archivo "_s + ruta +
                   u" guarda la clave de la red y otros usuarios tienen permisos sobre él. "
                   u"Quíteselos con: chmod 600 "_s +
                   ruta);
    }
    return archivo.read(kBytesMax);
}

/// A whole number from 1 to `maximo`.
std::optional<int> Numero(const QString& texto, int maximo) {
    bool entero = false;
    const int numero = texto.toInt(&entero);
    if (!entero || numero < 1 || numero > maximo) return std::nullopt;
    return numero;
}

QString SinComillas(const QString& valor) {
    const bool con_comillas = valor.size() >= 2 && valor.startsWith(u'"') && valor.endsWith(u'"');
    return con_comillas ? valor.mid(1, valor.size() - 2) : valor;
}

/// What is wrong with a line's key and value; an empty text if nothing is.
QString Defecto(const QString& nombre, const QString& valor) {
    static const QStringList kNombres = {u"usuario"_s,   u"clave"_s,  u"dominio"_s,
                                         u"direccion"_s, u"puerto"_s, u"plazo"_s};
    if (!kNombres.contains(nombre)) return u"no se conoce el nombre que está antes del signo ="_s;
    if (valor.toUtf8().size() > kLargoMax) return u"el valor de "_s + nombre + u" es muy largo"_s;
    if (nombre == u"puerto"_s && !Numero(valor, 65535)) {
        return u"el puerto debe ser un número del 1 al 65535"_s;
    }
    if (nombre == u"plazo"_s && !Numero(valor, kPlazoMax)) {
        return u"el plazo debe ser un número de segundos del 1 al 300"_s;
    }
    return {};
}

}  // namespace

base::Result<ConfiguracionRed> ConfiguracionRed::Leer(const QString& ruta) {
    QUIMO_TRY(const QByteArray bytes, LeerPrivado(ruta));
    QStringDecoder decodificador(QStringDecoder::Utf8);
    const QString texto = decodificador.decode(bytes);
    if (decodificador.hasError()) return Mal(u"El archivo "_s + ruta + u" no está en UTF-8."_s);
    ConfiguracionRed leida;
    leida.secciones_.insert(QString(), {});
    QString seccion;
    const QStringList lineas = texto.split(u'\n');
    for (qsizetype i = 0; i < lineas.size(); ++i) {
        const QString linea = lineas[i].trimmed();
        if (linea.isEmpty() || linea.startsWith(u'#') || linea.startsWith(u';')) continue;
        QString defecto;
        if (linea.startsWith(u'[')) {
            seccion = linea.mid(1).chopped(linea.endsWith(u']') ? 1 : 0).trimmed().toLower();
            if (!linea.endsWith(u']') || seccion.isEmpty()) {
                defecto = u"se esperaba el nombre de un equipo entre corchetes"_s;
            } else if (leida.secciones_.contains(seccion)) {
                defecto = u"el equipo está repetido"_s;
            }
            leida.secciones_[seccion];
        } else if (!linea.contains(u'=')) {
            defecto = u"se esperaba nombre = valor"_s;
        } else {
            const QString nombre = linea.section(u'=', 0, 0).trimmed().toLower();
            const QString valor = SinComillas(linea.section(u'=', 1).trimmed());
            defecto = Defecto(nombre, valor);
            Valores& valores = leida.secciones_[seccion];
            if (defecto.isEmpty() && valores.contains(nombre)) {
                defecto = nombre + u" está repetido"_s;
            }
            valores.insert(nombre, valor);
        }
        if (!defecto.isEmpty()) {
            return Mal(u"Archivo "_s + ruta + u", línea "_s + QString::number(i + 1) + u": "_s +
                       defecto + u'.');
        }
    }
    return leida;
}

base::Result<ConfiguracionRed> ConfiguracionRed::DelPrograma(const QString& carpeta) {
    const QString nombrado = qEnvironmentVariable("QUIMO_RED_ARCHIVO");
    if (!nombrado.isEmpty()) return Leer(nombrado);
    const QString habitual = carpeta + u"/red.conf"_s;
    const QFileInfo archivo(habitual);
    if (!archivo.exists() && !archivo.isSymLink()) return ConfiguracionRed();
    return Leer(habitual);
}

AccesoRed ConfiguracionRed::Para(const QString& equipo) const {
    Valores valores = secciones_.value(QString());
    const Valores propios = secciones_.value(equipo.toLower());
    // Another user's password would only lock the account.
    if (propios.contains(u"usuario"_s)) valores.remove(u"clave"_s);
    valores.insert(propios);
    AccesoRed acceso;
    acceso.usuario = valores.value(u"usuario"_s);
    acceso.clave = valores.value(u"clave"_s);
    acceso.dominio = valores.value(u"dominio"_s);
    acceso.direccion = valores.value(u"direccion"_s);
    const QString puerto = valores.value(u"puerto"_s);
    if (!puerto.isEmpty()) acceso.puerto = static_cast<quint16>(puerto.toUInt());
    const QString plazo = valores.value(u"plazo"_s);
    if (!plazo.isEmpty()) acceso.plazo_s = plazo.toInt();
    return acceso;
}

}  // namespace quimo::dayclose
