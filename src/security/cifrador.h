#pragma once

#include <functional>

#include <QByteArray>
#include <QString>

#include "base/result.h"

namespace quimo::security {

/// Whether a file may take the place of another.
enum class SiExiste { Fallar, Reemplazar };
/// Whether the encrypted side of a call is Base64.
enum class Forma { Bytes, Base64 };

/// What both ciphers offer: texts, byte arrays and whole files, encrypted and back, with the
/// encrypted side as it is or as Base64. The same key and input always give the same output.
///
/// An empty key argument means the key stored with Key(). With neither the call is refused
/// (Restriccion): nothing is ever encrypted with an empty key. Texts become bytes in the code page
/// of pagina_codigos.h; what the page does not have is not preserved.
class Cifrador {
public:
    using Bytes = base::Result<QByteArray>;
    /// Told the percentage done, 0 to 100, during file operations.
    using Avance = std::function<void(int)>;
    /// Files are held in memory; larger ones are refused.
    static constexpr qint64 kArchivoMax = 256LL * 1024 * 1024;

    Cifrador(const Cifrador&) = delete;
    Cifrador& operator=(const Cifrador&) = delete;
    virtual ~Cifrador() = default;

    // The product's fixed names.
    // NOLINTBEGIN(readability-identifier-naming)
    Avance Progress;  ///< may be empty

    /// Stores the key text.
    void Key(const QString& valor) { clave_ = valor; }

    base::Result<QString> EncryptString(const QString& Text, const QString& Key = {},
                                        Forma OutputIn64 = Forma::Bytes) const;
    base::Result<QString> DecryptString(const QString& Text, const QString& Key = {},
                                        Forma IsTextIn64 = Forma::Bytes) const;

    /// Change the array in place; on an error it is left as it was.
    base::Result<void> EncryptByte(QByteArray& byteArray, const QString& Key = {},
                                   Forma OutputIn64 = Forma::Bytes) const;
    base::Result<void> DecryptByte(QByteArray& byteArray, const QString& Key = {},
                                   Forma IsByteIn64 = Forma::Bytes) const;

    /// Whole files. OutFile appears complete or not at all; it may be InFile.
    base::Result<void> EncryptFile(const QString& InFile, const QString& OutFile,
                                   SiExiste Overwrite, const QString& Key = {},
                                   Forma OutputIn64 = Forma::Bytes) const;
    base::Result<void> DecryptFile(const QString& InFile, const QString& OutFile,
                                   SiExiste Overwrite, const QString& Key = {},
                                   Forma IsFileIn64 = Forma::Bytes) const;

    /// Base64 with the standard alphabet and padding. What is not Base64 is refused (Formato).
    static QString Encode64(const QString& sInput);
    static base::Result<QString> Decode64(const QString& sInput);
    static QByteArray EncodeArray64(const QByteArray& bytInput);
    static Bytes DecodeArray64(const QByteArray& bytInput);
    // NOLINTEND(readability-identifier-naming)

protected:
    Cifrador() = default;
    /// The cipher itself. `clave` is not empty; `avance` may be.
    virtual Bytes Cifrar(QByteArray claro, const QByteArray& clave, const Avance& avance) const = 0;
    virtual Bytes Descifrar(QByteArray cifrado, const QByteArray& clave,
                            const Avance& avance) const = 0;

    /// Calls `paso` with one stretch of the bytes after the other, each a multiple of 8 long but
    /// the last, and tells how far it is.
    static void PorTramos(QByteArray& bytes, const Avance& avance,
                          const std::function<void(unsigned char*, std::size_t)>& paso);

private:
    enum class Sentido { Cifrar, Descifrar };
    Bytes Aplicar(Sentido sentido, const QByteArray& entrada, const QString& clave, Forma forma,
                  const Avance& avance) const;
    base::Result<void> AplicarArchivo(Sentido sentido, const QString& entrada,
                                      const QString& salida, SiExiste si_existe,
                                      const QString& clave, Forma forma) const;

    QString clave_;
};

}  // namespace quimo::security
