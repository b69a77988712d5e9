#include <array>

#include "data/numeros_nativos.h"
#include "foundation/cls_ado.h"

using namespace Qt::StringLiterals;

namespace quimo::foundation {

namespace {

constexpr auto kMarca = "ClsRdo_Error"_L1;
constexpr qint64 kNoHayRegistros = 40022;
constexpr int kTuberiaCerrada = 232;  // of the system, not of the server
constexpr int kServidorNoEncontrado = 6;
constexpr int kNombreDnsIncorrecto = 0;
constexpr int kUsuarioIncorrecto = 4002;
// A message raised by a procedure comes behind the driver's 47 characters in brackets.
constexpr int kPrincipioDelMensaje = 48;

/// A native error with a fixed text. All are shown with the critical icon.
struct TextoNativo {
    int nativo = 0;
    QLatin1StringView texto;
    bool con_titulo = false;
    bool fatal = false;
    bool sin_servidor = false;
};

const QString& TextoConexionPerdida() {
    static const QString kTexto = u"Se perdio la conexión con el servidor"_s;
    return kTexto;
}

constexpr std::array<TextoNativo, 3> kTextosNativos = {{
    {kServidorNoEncontrado, "No se pudo encontrar al servidor"_L1, true, true, true},
    {kNombreDnsIncorrecto, "El nombre del DNS es incorrecto"_L1, false, true, true},
    {kUsuarioIncorrecto, "Usuario incorrecto"_L1, true, false, false},
}};

/// The number as the user has always seen it: signed, 32 bits.
QString NumeroVisible(qint64 numero) { return QString::number(static_cast<qint32>(numero)); }

}  // namespace

bool ClsAdo::ManejaError() {
    if (!pendiente_) return false;
    const data::FalloSql fallo = *std::move(pendiente_);
    pendiente_.reset();
    const QString descripcion = fallo.Descripcion();
    bool sin_servidor = false;
    switch (fallo.numero) {
        case data::FalloSql::kSinRegistro:
            dialogos_.Avisar(u"no hay registros"_s, Icono::Informacion);
            break;
        case ClsAdo::kErrorPropio:
            dialogos_.Avisar(descripcion, Icono::Ninguno);
            break;
        case data::FalloSql::kOtroAlAbrir:
        case data::FalloSql::kConexionCerrada:
            break;
        case data::FalloSql::kAccesoNegado:
            if (!fallo.errores.isEmpty() && fallo.errores.first().sqlstate.toInt() == 28000) break;
            for (const data::ErrorProveedor& error : fallo.errores) {
                RegistrarFallo({u"Descripcion "_s + error.descripcion});
                RegistrarFallo({u"Number "_s + QString::number(error.nativo)});
                RegistrarFallo({u"Source "_s + error.origen});
                RegistrarFallo({u"Sqlstate "_s + error.sqlstate});
            }
            break;
        case kNoHayRegistros:
            dialogos_.Avisar(u"No hay registros"_s, Icono::Informacion, CpsTitulo);
            RegistrarFallo({u"No hay registros"_s, QString(kMarca), descripcion});
            break;
        case data::FalloSql::kConexionPerdida:
            dialogos_.Avisar(TextoConexionPerdida(), Icono::Critico, CpsTitulo);
            RegistrarFallo({TextoConexionPerdida(), u"Fatal"_s, QString(kMarca), descripcion});
            break;
        case data::FalloSql::kIntegridad:
        case data::FalloSql::kSentencia:
        case data::FalloSql::kServidorAusente:
            DespacharNativo(fallo, sin_servidor);
            break;
        default: {
            const QString inicio = u"Error no controlado en BD "_s;
            const QString numero = NumeroVisible(fallo.numero);
            const QString blancos = u"    "_s;
            dialogos_.Avisar(inicio + numero + blancos + descripcion, Icono::Ninguno);
            RegistrarFallo({inicio, numero, blancos, descripcion});
            break;
        }
    }
    return sin_servidor;
}

void ClsAdo::DespacharNativo(const data::FalloSql& fallo, bool& sin_servidor) {
    const QString descripcion = fallo.Descripcion();
    const int nativo = fallo.Nativo();
    for (const TextoNativo& texto : kTextosNativos) {
        if (texto.nativo != nativo) continue;
        dialogos_.Avisar(QString(texto.texto), Icono::Critico,
                         texto.con_titulo ? CpsTitulo : QString());
        QVector<QVariant> partes = {QString(texto.texto)};
        if (texto.fatal) partes << u"Fatal"_s;
        RegistrarFallo(partes << QString(kMarca));
        sin_servidor = texto.sin_servidor;
        return;
    }
    switch (nativo) {
        case data::nativo::kIndiceRepetido:
            dialogos_.Avisar(CpsMen_LLave_Repetida, Icono::Exclamacion, CpsTitulo);
            RegistrarFallo({CpsMen_LLave_Repetida, QString(kMarca)});
            if (!fallo.errores.isEmpty()) RegistrarFallo({descripcion, QString(kMarca)});
            break;
        case data::nativo::kLlaveRepetida:
            if (!CbNoMensaje) {
                dialogos_.Avisar(CpsMen_LLave_Repetida, Icono::Exclamacion, CpsTitulo);
            }
            RegistrarFallo({CpsMen_LLave_Repetida, QString(kMarca)});
            break;
        case data::nativo::kReferencia:
            ConflictoDeReferencia(descripcion);
            break;
        case kTuberiaCerrada:
            dialogos_.Avisar(TextoConexionPerdida(), Icono::Critico, CpsTitulo);
            RegistrarFallo({TextoConexionPerdida(), u"Fatal"_s, QString(kMarca)});
            break;
        case data::nativo::kDeProcedimiento: {
            const QString texto = descripcion.mid(kPrincipioDelMensaje - 1);
            dialogos_.Avisar(texto, Icono::Exclamacion);
            RegistrarFallo({texto, kPrincipioDelMensaje, QString(kMarca)});
            break;
        }
        default:
            if (CbNoMensaje) {
                CsError = descripcion;
            } else {
                dialogos_.Avisar(descripcion, Icono::Ninguno);
            }
            RegistrarFallo({descripcion, QString(kMarca)});
            break;
    }
}

void ClsAdo::ConflictoDeReferencia(const QString& descripcion) {
    // The server's wording: "... database 'x', table 'Productos', column 'y'."
    const qsizetype coma = descripcion.indexOf(u',');
    QString tabla = coma < 0 ? QString() : descripcion.mid(coma + 8);
    const qsizetype siguiente = tabla.indexOf(u',');
    if (siguiente >= 0) tabla.truncate(siguiente);
    CsError = tabla;
    if (!CbNoMensaje) {
        dialogos_.Avisar(
            u"No se puede borrar este registro por estar en uso en la tabla "_s + tabla,
            Icono::Critico);
    }
    RegistrarFallo({descripcion, QString(kMarca)});
}

}  // namespace quimo::foundation
