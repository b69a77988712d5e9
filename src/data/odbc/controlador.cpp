#include "data/odbc/controlador.h"

#include <algorithm>

#include "data/odbc/fallos_odbc.h"

using namespace Qt::StringLiterals;

namespace quimo::data::odbc {

namespace {

/// "Word=value;" or "Word={value};". FreeTDS ends a value at a brace before a semicolon and knows
/// no doubled one; the other drivers read two closing braces as one.
class Texto {
public:
    explicit Texto(bool es_freetds) : es_freetds_(es_freetds) {}

    void Agregar(QLatin1StringView palabra, const QString& valor) {
        if (valor.isEmpty()) return;
        const bool cortado =
            valor.contains(QChar(u'\0')) || (es_freetds_ && valor.contains(u"};"_s));
        if (cortado && imposible_.isEmpty()) imposible_ = palabra;
        if (!NecesitaLlaves(valor)) return Fija(palabra, valor);
        QString entre_llaves = valor;
        if (!es_freetds_) entre_llaves.replace(u'}', u"}}"_s);
        Fija(palabra, u'{' + entre_llaves + u'}');
    }
    /// The driver's name stands in braces whatever it is.
    void Driver(const QString& nombre) { texto_ += u"Driver={"_s + nombre + u"};"_s; }
    /// A word whose value is harmless.
    void Fija(QLatin1StringView palabra, const QString& valor) {
        texto_ += palabra + u'=' + valor + u';';
    }
    void Fija(QLatin1StringView palabra, QLatin1StringView valor) { Fija(palabra, QString(valor)); }
    void Tal(const QString& opciones) { texto_ += opciones; }

    base::Result<QString, FalloSql> Terminado() const {
        if (imposible_.isEmpty()) return texto_;
        return ValorNoSeEscribe(imposible_);
    }

private:
    /// Some drivers take braces for a part of a plain value.
    static bool NecesitaLlaves(const QString& valor) {
        static const QString kEspeciales = u"[]{}();?*=!@"_s;
        return valor.front().isSpace() || valor.back().isSpace() ||
               std::any_of(valor.begin(), valor.end(),
                           [](QChar c) { return kEspeciales.contains(c) || c < u' '; });
    }

    bool es_freetds_;
    QString texto_;
    QString imposible_;
};

bool EsSi(const QString& valor) {
    const QString limpio = valor.trimmed().toLower();
    return limpio == u"si"_s || limpio == u"sí"_s || limpio == u"1"_s;
}

bool EsNo(const QString& valor) {
    const QString limpio = valor.trimmed().toLower();
    return limpio == u"no"_s || limpio == u"0"_s;
}

}  // namespace

OpcionesOdbc OpcionesOdbc::DelEntorno() {
    constexpr int kPlazoMaximo = 600;
    OpcionesOdbc opciones;
    opciones.controlador = qEnvironmentVariable("QUIMO_ODBC_DRIVER").trimmed();
    opciones.cifrado = qEnvironmentVariable("QUIMO_ODBC_CIFRADO");
    opciones.confiar = EsSi(qEnvironmentVariable("QUIMO_ODBC_CONFIAR"));
    opciones.opciones = qEnvironmentVariable("QUIMO_ODBC_OPCIONES").trimmed();
    const int plazo = qEnvironmentVariableIntValue("QUIMO_ODBC_PLAZO");
    if (plazo > 0) opciones.plazo_s = std::min(plazo, kPlazoMaximo);
    return opciones;
}

QStringList NombresDeControladores(const OpcionesOdbc& opciones) {
    QStringList nombres;
    if (!opciones.controlador.isEmpty()) nombres << opciones.controlador;
    return nombres << u"SQL Server"_s << u"ODBC Driver 18 for SQL Server"_s
                   << u"ODBC Driver 17 for SQL Server"_s << u"FreeTDS"_s;
}

QVector<Controlador> ElegirControladores(const QStringList& nombres,
                                         const QVector<Controlador>& instalados) {
    QVector<Controlador> elegidos;
    for (const QString& nombre : nombres) {
        const auto hallado =
            std::find_if(instalados.begin(), instalados.end(), [&](const Controlador& instalado) {
                return instalado.nombre.compare(nombre, Qt::CaseInsensitive) == 0;
            });
        if (hallado != instalados.end()) elegidos.append(*hallado);
    }
    return elegidos;
}

base::Result<QString, FalloSql> TextoDeConexion(const Controlador& controlador,
                                                const DatosConexion& datos,
                                                const OpcionesOdbc& opciones) {
    Texto texto(controlador.es_freetds);
    texto.Driver(controlador.nombre);
    const qsizetype coma = datos.servidor.lastIndexOf(u',');
    if (controlador.es_freetds && coma >= 0) {
        texto.Agregar("Server"_L1, datos.servidor.left(coma).trimmed());
        texto.Agregar("Port"_L1, datos.servidor.mid(coma + 1).trimmed());
    } else {
        texto.Agregar("Server"_L1, datos.servidor);
        // FreeTDS asks the server for the port of an instance; a bare name needs the usual one.
        if (controlador.es_freetds && !datos.servidor.contains(u'\\')) {
            texto.Fija("Port"_L1, "1433"_L1);
        }
    }
    texto.Agregar("Database"_L1, datos.base_de_datos);
    texto.Agregar("UID"_L1, datos.usuario);
    texto.Agregar("PWD"_L1, datos.clave);
    texto.Fija("APP"_L1, "QUIMO"_L1);
    if (controlador.es_freetds) {
        texto.Fija("TDS_Version"_L1, "7.4"_L1);
        texto.Fija("ClientCharset"_L1, "UTF-8"_L1);
        if (EsSi(opciones.cifrado)) texto.Fija("Encryption"_L1, "require"_L1);
        if (EsNo(opciones.cifrado)) texto.Fija("Encryption"_L1, "off"_L1);
    } else {
        if (EsSi(opciones.cifrado)) texto.Fija("Encrypt"_L1, "yes"_L1);
        if (EsNo(opciones.cifrado)) texto.Fija("Encrypt"_L1, "no"_L1);
        if (opciones.confiar) texto.Fija("TrustServerCertificate"_L1, "yes"_L1);
    }
    texto.Tal(opciones.opciones);
    return texto.Terminado();
}

}  // namespace quimo::data::odbc
