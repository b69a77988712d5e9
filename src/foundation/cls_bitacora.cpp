#include "foundation/cls_bitacora.h"

#include <algorithm>

#include <pwd.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStringEncoder>

#include "data/valores.h"
#include "foundation/rutas.h"

using namespace Qt::StringLiterals;

namespace quimo::foundation {

QString UsuarioDelSistema() {
    const passwd* entrada = getpwuid(geteuid());
    if (entrada != nullptr) return QString::fromLocal8Bit(entrada->pw_name);
    return qEnvironmentVariable("USER", u"Desconocido"_s);
}

namespace {

/// "dd-mm-yy hh:mm:ss"
QString HoraDeLinea(const QDateTime& momento) {
    const QDate dia = momento.date();
    const QTime hora = momento.time();
    return QString::asprintf("%02d-%02d-%02d %02d:%02d:%02d", dia.day(), dia.month(),
                             dia.year() % 100, hora.hour(), hora.minute(), hora.second());
}

bool CortaLaLinea(char letra) { return letra == '\n' || letra == '\r' || letra == '\t'; }

/// Why a file could not be written. The system's own text would not be Spanish, and a write that
/// stopped half way has none.
QString MotivoDe(const QFile& archivo) {
    if (archivo.error() == QFileDevice::PermissionsError) return u"no hay permiso."_s;
    if (archivo.error() == QFileDevice::OpenError) return u"no se puede abrir."_s;
    return u"no se pudo guardar completa; puede que el disco esté lleno."_s;
}

}  // namespace

ClsBitacora::ClsBitacora(const OpcionesBitacora& opciones, Dialogos& dialogos,
                         const data::Reloj& reloj)
    : dialogos_(dialogos),
      reloj_(reloj),
      archivo_(opciones.PArchivoLog.value_or(RutaFija(CarpetaInstalacion(), u"C:\\QUIMO.log"_s))),
      programa_(opciones.PPrograma),
      version_(opciones.PVersion.value_or(QCoreApplication::applicationVersion())),
      usuario_(opciones.PUsuario.value_or(UsuarioDelSistema())),
      usuario_app_(opciones.PUsuarioApp),
      crear_(opciones.PCrearArchivo),
      a_archivo_(opciones.Parchivo),
      a_mensaje_(opciones.PMsgBox) {
    Escribir({u"Iniciando"_s, u"...Log Iniciado..."_s});
}

QByteArray ClsBitacora::Linea(const QVector<QVariant>& partes) const {
    QStringList textos;
    for (const QVariant& parte : partes)
        textos << data::TextoDeValor(parte);
    const QVector<QStringView> vistas(textos.cbegin(), textos.cend());
    QByteArray linea;
    AgregarLinea(linea, Principio(), vistas);
    return linea;
}

void ClsBitacora::AgregarLinea(QByteArray& lineas, const QByteArray& principio,
                               std::span<const QStringView> partes) {
    lineas += principio;
    const qsizetype desde = lineas.size();
    QStringEncoder utf8(QStringEncoder::Utf8);
    qsizetype lugar = desde;
    for (const QStringView parte : partes) {
        lineas.resize(lugar + utf8.requiredSpace(parte.size()) + 1);
        char* const fin = utf8.appendToBuffer(lineas.data() + lugar, parte);
        std::replace_if(lineas.data() + lugar, fin, CortaLaLinea, ' ');
        *fin = '\t';
        lugar = fin + 1 - lineas.data();
    }
    lineas.resize(lugar);
    lineas += '\n';
}

/// A close writes thousands of lines in a second: made once for it.
const QByteArray& ClsBitacora::Principio() const {
    const QDateTime ahora = reloj_.Ahora();
    const qint64 segundo = ahora.toSecsSinceEpoch();
    if (principio_.isEmpty() || segundo != segundo_del_principio_) {
        principio_ = (HoraDeLinea(ahora) + u'\t' + programa_ + u"\tV"_s + version_ + u'\t' +
                      usuario_ + u'\t' + usuario_app_ + u'\t')
                         .toUtf8();
        segundo_del_principio_ = segundo;
    }
    return principio_;
}

void ClsBitacora::EscribirLineas(const QByteArray& lineas) {
    if (lineas.isEmpty()) return;
    if (a_archivo_) Anexar(lineas);
    if (!a_mensaje_) return;
    for (const QByteArray& linea : lineas.chopped(1).split('\n'))
        dialogos_.Avisar(QString::fromUtf8(linea), Icono::Ninguno);
}

void ClsBitacora::Anexar(const QByteArray& lineas) {
    QFile archivo(archivo_);
    const bool nuevo = !archivo.exists();
    if (nuevo && crear_) QDir().mkpath(QFileInfo(archivo_).absolutePath());
    QIODevice::OpenMode modo = QIODevice::Append | QIODevice::Text;
    if (!crear_) modo |= QIODevice::ExistingOnly;
    if (archivo.open(modo) && archivo.write(lineas) == lineas.size() && archivo.flush()) return;
    if (fallo_avisado_) return;
    fallo_avisado_ = true;
    dialogos_.Avisar(
        u"No se pudo escribir en la bitácora "_s + archivo_ + u": "_s + MotivoDe(archivo),
        Icono::Critico, u"Error Bitácora"_s);
}

bool ClsBitacora::CopiarLog(const QString& origen, const QString& destino) {
    if (!QFileInfo(origen).isFile()) {
        dialogos_.Avisar(u"No existe el archivo log a copiar"_s, Icono::Exclamacion,
                         u"Error Bitácora"_s);
        return false;
    }
    return Trasladar(origen, destino, Traslado::Copiar);
}

bool ClsBitacora::RenombrarLog(const QString& origen, const QString& nombre_nuevo) {
    if (!QFileInfo(origen).isFile()) {
        dialogos_.Avisar(u"No existe el archivo log a renombrar"_s, Icono::Exclamacion,
                         u"Error_Log"_s);
        return false;
    }
    return Trasladar(origen, QFileInfo(origen).absolutePath() + u'/' + nombre_nuevo,
                     Traslado::Mover);
}

bool ClsBitacora::Trasladar(const QString& origen, const QString& destino, Traslado traslado) {
    const QFileInfo info(destino);
    QString mensaje;
    if (info.fileName().isEmpty() || info.isDir()) {
        mensaje = u"Nombre del archivo log incorrecto"_s;
    } else if (!info.absoluteDir().exists()) {
        mensaje = u"Ruta del archivo log incorrecta"_s;
    } else if (info.exists()) {
        mensaje = u"El archivo destino ya existe"_s;
    } else {
        QFile archivo(origen);
        const bool hecho =
            traslado == Traslado::Copiar ? archivo.copy(destino) : archivo.rename(destino);
        if (hecho) return true;
        mensaje = u"error "_s + archivo.errorString();
    }
    dialogos_.Avisar(mensaje, Icono::Exclamacion, u"Error_Log"_s);
    return false;
}

bool ClsBitacora::LocalizarLog(const QString& archivo) {
    if (QFileInfo(archivo).isFile()) return true;
    dialogos_.Avisar(u"No se encontro el archivo log"_s, Icono::Exclamacion, u"Error_Log"_s);
    return false;
}

std::unique_ptr<QFile> ClsBitacora::AbrirFechado(const QString& raiz, const QString& texto_base) {
    if (!QDir().mkpath(RutaFija(raiz, u"\\norsa\\log\\"_s))) {
        dialogos_.Avisar(u"Error en bitacora al crear el directorio \\norsa\\log !"_s,
                         Icono::Critico);
        return nullptr;
    }
    const QString nombre =
        texto_base + u"\\norsa\\"_s + reloj_.Ahora().toString(u"ddMMyyyy"_s) + u".log"_s;
    const QString ruta = RutaFija(raiz, nombre);
    auto archivo = std::make_unique<QFile>(ruta);
    if (QDir().mkpath(QFileInfo(ruta).absolutePath()) &&
        archivo->open(QIODevice::Append | QIODevice::Text)) {
        return archivo;
    }
    dialogos_.Avisar(u"error "_s + archivo->errorString(), Icono::Critico, u"Error_Log"_s);
    return nullptr;
}

}  // namespace quimo::foundation
