#include "security/cifrador.h"

#include <algorithm>

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include "security/pagina_codigos.h"

using namespace Qt::StringLiterals;

namespace quimo::security {

using base::Error;
using base::Result;

namespace {

constexpr qsizetype kTramo = qsizetype{64} * 1024;

Error ErrorDeArchivo(const QString& archivo, const QString& motivo) {
    return {Error::Codigo::Archivo, (archivo + u": "_s + motivo).toStdString()};
}

Result<QByteArray> LeerEntero(const QString& archivo, qint64 limite) {
    QFile entrada(archivo);
    if (!entrada.open(QIODevice::ReadOnly)) {
        return ErrorDeArchivo(archivo, entrada.errorString());
    }
    QByteArray bytes = entrada.read(limite + 1);
    if (entrada.error() != QFileDevice::NoError) {
        return ErrorDeArchivo(archivo, entrada.errorString());
    }
    if (bytes.size() > limite) {
        return Error{Error::Codigo::Interno,
                     (archivo + u": el archivo es demasiado grande."_s).toStdString()};
    }
    return bytes;
}

}  // namespace

void Cifrador::PorTramos(QByteArray& bytes, const Avance& avance,
                         const std::function<void(unsigned char*, std::size_t)>& paso) {
    auto* const inicio = reinterpret_cast<unsigned char*>(bytes.data());
    for (qsizetype hecho = 0; hecho < bytes.size();) {
        const qsizetype tramo = std::min(kTramo, bytes.size() - hecho);
        paso(inicio + hecho, static_cast<std::size_t>(tramo));
        hecho += tramo;
        if (avance) avance(static_cast<int>(hecho * 100 / bytes.size()));
    }
}

Cifrador::Bytes Cifrador::Aplicar(Sentido sentido, const QByteArray& entrada, const QString& clave,
                                  Forma forma, const Avance& avance) const {
    const QByteArray bytes_clave = APagina(clave.isEmpty() ? clave_ : clave);
    if (bytes_clave.isEmpty()) {
        return Error{Error::Codigo::Restriccion, "Falta la clave del cifrado."};
    }
    if (sentido == Sentido::Cifrar) {
        QUIMO_TRY(const QByteArray cifrado, Cifrar(entrada, bytes_clave, avance));
        return forma == Forma::Base64 ? EncodeArray64(cifrado) : cifrado;
    }
    if (forma == Forma::Bytes) return Descifrar(entrada, bytes_clave, avance);
    QUIMO_TRY(const QByteArray cifrado, DecodeArray64(entrada));
    return Descifrar(cifrado, bytes_clave, avance);
}

Result<void> Cifrador::AplicarArchivo(Sentido sentido, const QString& entrada,
                                      const QString& salida, SiExiste si_existe,
                                      const QString& clave, Forma forma) const {
    if (si_existe == SiExiste::Fallar && QFileInfo::exists(salida)) {
        return ErrorDeArchivo(salida, u"el archivo ya existe."_s);
    }
    if (Progress) Progress(0);
    QUIMO_TRY(const QByteArray bytes, LeerEntero(entrada, kArchivoMax));
    QUIMO_TRY(const QByteArray resultado, Aplicar(sentido, bytes, clave, forma, Progress));
    QSaveFile destino(salida);
    if (!destino.open(QIODevice::WriteOnly) || destino.write(resultado) != resultado.size() ||
        !destino.commit()) {
        return ErrorDeArchivo(salida, destino.errorString());
    }
    if (Progress && resultado.isEmpty()) Progress(100);
    return {};
}

// NOLINTBEGIN(readability-identifier-naming)
Result<QString> Cifrador::EncryptString(const QString& Text, const QString& Key,
                                        Forma OutputIn64) const {
    QUIMO_TRY(const QByteArray cifrado,
              Aplicar(Sentido::Cifrar, APagina(Text), Key, OutputIn64, {}));
    return DePagina(cifrado);
}

Result<QString> Cifrador::DecryptString(const QString& Text, const QString& Key,
                                        Forma IsTextIn64) const {
    QUIMO_TRY(const QByteArray claro,
              Aplicar(Sentido::Descifrar, APagina(Text), Key, IsTextIn64, {}));
    return DePagina(claro);
}

Result<void> Cifrador::EncryptByte(QByteArray& byteArray, const QString& Key,
                                   Forma OutputIn64) const {
    QUIMO_TRY(byteArray, Aplicar(Sentido::Cifrar, byteArray, Key, OutputIn64, {}));
    return {};
}

Result<void> Cifrador::DecryptByte(QByteArray& byteArray, const QString& Key,
                                   Forma IsByteIn64) const {
    QUIMO_TRY(byteArray, Aplicar(Sentido::Descifrar, byteArray, Key, IsByteIn64, {}));
    return {};
}

Result<void> Cifrador::EncryptFile(const QString& InFile, const QString& OutFile,
                                   SiExiste Overwrite, const QString& Key, Forma OutputIn64) const {
    return AplicarArchivo(Sentido::Cifrar, InFile, OutFile, Overwrite, Key, OutputIn64);
}

Result<void> Cifrador::DecryptFile(const QString& InFile, const QString& OutFile,
                                   SiExiste Overwrite, const QString& Key, Forma IsFileIn64) const {
    return AplicarArchivo(Sentido::Descifrar, InFile, OutFile, Overwrite, Key, IsFileIn64);
}

QString Cifrador::Encode64(const QString& sInput) {
    return QString::fromLatin1(EncodeArray64(APagina(sInput)));
}

Result<QString> Cifrador::Decode64(const QString& sInput) {
    QUIMO_TRY(const QByteArray bytes, DecodeArray64(APagina(sInput)));
    return DePagina(bytes);
}

QByteArray Cifrador::EncodeArray64(const QByteArray& bytInput) { return bytInput.toBase64(); }

Cifrador::Bytes Cifrador::DecodeArray64(const QByteArray& bytInput) {
    const QByteArray texto = bytInput.trimmed();
    auto leido = QByteArray::fromBase64Encoding(texto, QByteArray::AbortOnBase64DecodingErrors);
    if (!leido || texto.size() % 4 != 0)
        return Error{Error::Codigo::Formato, "El texto no es Base64."};
    return std::move(*leido);
}
// NOLINTEND(readability-identifier-naming)

}  // namespace quimo::security
