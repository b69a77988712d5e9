#include "data/odbc/enlace.h"

#include <algorithm>
#include <array>

#include "data/odbc/diagnostico.h"
#include "data/odbc/fallos_odbc.h"
#include "data/odbc/lectura.h"
#include "data/odbc/valores_ligados.h"

using namespace Qt::StringLiterals;

namespace quimo::data::odbc {

namespace {

/// Without a practical limit: a close of a busy day may think for long.
constexpr SQLULEN kSegundosPorSentencia = 100000;
constexpr int kControladoresMax = 1000;
constexpr int kResultadosMax = 100000;

SQLWCHAR* Ancho(const QString& texto) {
    // The interface takes texts that it only reads as writable.
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast)
    return const_cast<SQLWCHAR*>(reinterpret_cast<const SQLWCHAR*>(texto.utf16()));
}

/// "Word=value" texts, each ended by a zero.
bool EsDeFreeTds(const QString& nombre, const QString& atributos) {
    return nombre.contains(u"freetds"_s, Qt::CaseInsensitive) ||
           atributos.contains(u"tdsodbc"_s, Qt::CaseInsensitive);
}

QVector<Controlador> ControladoresInstalados(SQLHENV entorno) {
    QVector<Controlador> instalados;
    for (int i = 0; i < kControladoresMax; ++i) {
        std::array<SQLWCHAR, 256> nombre = {};
        std::array<SQLWCHAR, 2048> atributos = {};
        SQLSMALLINT largo_nombre = 0;
        SQLSMALLINT largo_atributos = 0;
        const SQLRETURN leido =
            SQLDriversW(entorno, i == 0 ? SQL_FETCH_FIRST : SQL_FETCH_NEXT, nombre.data(),
                        static_cast<SQLSMALLINT>(nombre.size()), &largo_nombre, atributos.data(),
                        static_cast<SQLSMALLINT>(atributos.size()), &largo_atributos);
        if (!SQL_SUCCEEDED(leido)) break;
        const QString llamado =
            QString::fromUtf16(reinterpret_cast<const char16_t*>(nombre.data()));
        const QString dice =
            QString::fromUtf16(reinterpret_cast<const char16_t*>(atributos.data()),
                               std::clamp<qsizetype>(largo_atributos, 0, atributos.size()));
        instalados.append({llamado, EsDeFreeTds(llamado, dice)});
    }
    return instalados;
}

/// A driver that odbcinst.ini names and whose library is not there is not installed either.
bool FaltaLaBiblioteca(const QVector<ErrorProveedor>& errores) {
    return std::any_of(errores.begin(), errores.end(), [](const ErrorProveedor& error) {
        return error.sqlstate == kSinControlador || error.sqlstate == kSinBiblioteca ||
               error.descripcion.contains(u"Can't open lib"_s);
    });
}

/// Some drivers tell the connection text back: the password never leaves it.
void TacharClave(QVector<ErrorProveedor>& errores, const QString& clave) {
    if (clave.isEmpty()) return;
    for (ErrorProveedor& error : errores)
        error.descripcion.replace(clave, u"****"_s);
}

}  // namespace

base::Result<Enlace, FalloSql> Enlace::Abrir(const DatosConexion& datos,
                                             const OpcionesOdbc& opciones) {
    EntornoOdbc entorno = EntornoOdbc::Crear(nullptr);
    if (!entorno || !SQL_SUCCEEDED(SQLSetEnvAttr(entorno.Crudo(), SQL_ATTR_ODBC_VERSION,
                                                 ComoAtributo(SQL_OV_ODBC3), 0))) {
        return AdministradorSinRespuesta();
    }
    const QStringList nombres = NombresDeControladores(opciones);
    FalloSql fallo = SinControladores(nombres);
    for (const Controlador& controlador :
         ElegirControladores(nombres, ControladoresInstalados(entorno.Crudo()))) {
        QUIMO_TRY(const QString texto, TextoDeConexion(controlador, datos, opciones));
        EnlaceOdbc enlace = EnlaceOdbc::Crear(entorno.Crudo());
        if (!enlace) break;
        SQLSetConnectAttrW(enlace.Crudo(), SQL_ATTR_LOGIN_TIMEOUT,
                           ComoAtributo(static_cast<SQLULEN>(opciones.plazo_s)), 0);
        const SQLRETURN hecho = SQLDriverConnectW(enlace.Crudo(), nullptr, Ancho(texto),
                                                  static_cast<SQLSMALLINT>(texto.size()), nullptr,
                                                  0, nullptr, SQL_DRIVER_NOPROMPT);
        if (SQL_SUCCEEDED(hecho)) {
            return Enlace(std::move(entorno), std::move(enlace), controlador.nombre);
        }
        auto errores = LeerDiagnosticos(SQL_HANDLE_DBC, enlace.Crudo(), controlador.nombre);
        TacharClave(errores, datos.clave);
        const bool falta = FaltaLaBiblioteca(errores);
        if (falta && !errores.isEmpty()) errores.first().sqlstate = kSinBiblioteca;
        fallo = FalloAlAbrir(std::move(errores));
        if (!falta) break;
    }
    return fallo;
}

RespuestaSql Enlace::Correr(const QString& tsql, const QVector<QVariant>& parametros) {
    RespuestaSql respuesta;
    if (tsql.trimmed().isEmpty()) return respuesta;
    SentenciaOdbc sentencia = SentenciaOdbc::Crear(enlace_.Crudo());
    if (!sentencia) {
        Fallar(LeerDiagnosticos(SQL_HANDLE_DBC, enlace_.Crudo(), origen_), respuesta);
        return respuesta;
    }
    SQLSetStmtAttrW(sentencia.Crudo(), SQL_ATTR_QUERY_TIMEOUT, ComoAtributo(kSegundosPorSentencia),
                    0);
    if (parametros.isEmpty()) {  // nothing in the text is for the driver
        SQLSetStmtAttrW(sentencia.Crudo(), SQL_ATTR_NOSCAN, ComoAtributo(SQL_NOSCAN_ON), 0);
    }
    if (!parametros.isEmpty() && CreaTemporal(tsql)) {
        if (const auto con_literales = ConLiterales(tsql, parametros)) {
            Recoger(sentencia.Crudo(), Lanzar(sentencia.Crudo(), *con_literales), respuesta);
            return respuesta;
        }
    }
    ValoresLigados valores;
    auto ligados = valores.Ligar(sentencia.Crudo(), parametros, origen_);
    if (!ligados) {
        respuesta.fallo = std::move(ligados).error();
        return respuesta;
    }
    Recoger(sentencia.Crudo(), Lanzar(sentencia.Crudo(), tsql), respuesta);
    return respuesta;
}

SQLRETURN Enlace::Lanzar(SQLHSTMT sentencia, const QString& texto) {
    return SQLExecDirectW(sentencia, Ancho(texto), static_cast<SQLINTEGER>(texto.size()));
}

/// Everything that the text left, to its end: a statement that failed need not be the last one.
void Enlace::Recoger(SQLHSTMT sentencia, SQLRETURN estado, RespuestaSql& respuesta) {
    for (int i = 0; i < kResultadosMax; ++i) {
        Anotar(sentencia, estado, respuesta);
        const bool perdida =
            respuesta.fallo && respuesta.fallo->numero == FalloSql::kConexionPerdida;
        if (perdida || estado == SQL_INVALID_HANDLE) return;
        SQLSMALLINT columnas = 0;
        SQLLEN filas = -1;
        // A statement that met no row may answer that there is no data, and so may one that writes
        // none: the count tells them apart.
        if (SQL_SUCCEEDED(estado) && SQL_SUCCEEDED(SQLNumResultCols(sentencia, &columnas)) &&
            columnas > 0) {
            LeerConjunto(sentencia, respuesta);
        } else if (estado != SQL_ERROR && SQL_SUCCEEDED(SQLRowCount(sentencia, &filas)) &&
                   filas >= 0) {
            respuesta.resultados.append({std::nullopt, static_cast<qint64>(filas)});
        }
        estado = SQLMoreResults(sentencia);
        if (estado == SQL_NO_DATA) {
            // Messages of the very end.
            Anotar(sentencia, SQL_SUCCESS_WITH_INFO, respuesta);
            return;
        }
    }
}

void Enlace::Anotar(SQLHSTMT sentencia, SQLRETURN estado, RespuestaSql& respuesta) {
    constexpr int kCambioDeBase = 5701;
    constexpr int kCambioDeIdioma = 5703;
    if (estado == SQL_SUCCESS || estado == SQL_NO_DATA) return;
    auto registros = LeerDiagnosticos(SQL_HANDLE_STMT, sentencia, origen_);
    if (estado == SQL_SUCCESS_WITH_INFO) {
        for (ErrorProveedor& registro : registros) {
            if (registro.nativo == kCambioDeBase || registro.nativo == kCambioDeIdioma) continue;
            respuesta.mensajes.append(std::move(registro));
        }
        return;
    }
    Fallar(std::move(registros), respuesta);
}

void Enlace::Fallar(QVector<ErrorProveedor> registros, RespuestaSql& respuesta) {
    const bool perdida = EsConexionPerdida(registros) || EstaMuerto();
    QVector<ErrorProveedor> errores;
    for (ErrorProveedor& registro : registros) {
        const bool mensaje = EsMensaje(registro) && !perdida;
        (mensaje ? respuesta.mensajes : errores).append(std::move(registro));
    }
    FalloSql fallo = FalloDeSentencia(std::move(errores), perdida);
    if (!respuesta.fallo) {
        respuesta.fallo = std::move(fallo);
        return;
    }
    respuesta.fallo->errores += fallo.errores;
    if (perdida) respuesta.fallo->numero = FalloSql::kConexionPerdida;
}

void Enlace::LeerConjunto(SQLHSTMT sentencia, RespuestaSql& respuesta) {
    const auto romper = [&](const LecturaRota& rota) {
        if (rota.motivo.isEmpty()) {
            Fallar(LeerDiagnosticos(SQL_HANDLE_STMT, sentencia, origen_), respuesta);
        } else {
            Fallar({ValorIlegible(origen_, rota.motivo)}, respuesta);
        }
    };
    Conjunto conjunto;
    auto columnas = LeerColumnas(sentencia);
    if (!columnas) return romper(columnas.error());
    conjunto.columnas = std::move(columnas).value();
    while (true) {
        const SQLRETURN leido = SQLFetch(sentencia);
        if (leido == SQL_NO_DATA) break;
        Anotar(sentencia, leido, respuesta);
        if (!SQL_SUCCEEDED(leido)) return;  // a set cut short is not handed out
        Fila fila;
        fila.reserve(conjunto.columnas.size());
        for (qsizetype i = 0; i < conjunto.columnas.size(); ++i) {
            auto valor =
                LeerValor(sentencia, static_cast<SQLUSMALLINT>(i + 1), conjunto.columnas[i]);
            if (!valor) return romper(valor.error());
            fila.append(std::move(valor).value());
        }
        conjunto.filas.append(std::move(fila));
    }
    respuesta.resultados.append({std::move(conjunto), -1});
}

bool Enlace::EstaMuerto() const {
    SQLUINTEGER muerto = SQL_CD_FALSE;
    const SQLRETURN leido = SQLGetConnectAttrW(enlace_.Crudo(), SQL_ATTR_CONNECTION_DEAD, &muerto,
                                               sizeof muerto, nullptr);
    return SQL_SUCCEEDED(leido) && muerto == SQL_CD_TRUE;
}

}  // namespace quimo::data::odbc
