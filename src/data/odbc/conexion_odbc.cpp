#include "data/odbc/conexion_odbc.h"

#include <algorithm>
#include <optional>

#include <QRegularExpression>

#include "data/fallos.h"
#include "data/odbc/catalogo_servidor.h"
#include "data/odbc/enlace.h"
#include "data/odbc/fallos_odbc.h"

using namespace Qt::StringLiterals;

namespace quimo::data::odbc {

namespace {

FalloSql Cerrada() { return ConexionCerrada(u"QUIMO"); }

/// Whether the number of open transactions may be another after the text.
bool HablaDeTransacciones(const QString& tsql) {
    static const QRegularExpression kPalabras(
        u"\\b(?:TRAN|TRANSACTION|COMMIT|ROLLBACK|IMPLICIT_TRANSACTIONS)\\b"_s,
        QRegularExpression::CaseInsensitiveOption);
    return tsql.contains(kPalabras);
}

bool SoloTerminaTransaccion(const QString& tsql) {
    static const QRegularExpression kTermina(
        u"^\\s*(?:COMMIT|ROLLBACK)(?:\\s+(?:TRAN|TRANSACTION|WORK))?\\s*;?\\s*$"_s,
        QRegularExpression::CaseInsensitiveOption);
    return tsql.contains(kTermina);
}

bool TerminaYEmpieza(const QString& tsql) {
    static const QRegularExpression kFin(u"\\b(?:COMMIT|ROLLBACK)\\b"_s,
                                         QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression kPrincipio(u"\\bBEGIN\\s+TRAN"_s,
                                               QRegularExpression::CaseInsensitiveOption);
    return tsql.contains(kFin) && tsql.contains(kPrincipio);
}

/// The statements in one text that stops at the first failure and tells its end with their number.
QString TextoDeGrupo(const QStringList& sentencias, const QString& punto) {
    const QString si_falla = u"\nIF @@ERROR<>0 RETURN\n"_s;
    return u"SAVE TRANSACTION "_s + punto + u'\n' + sentencias.join(si_falla) + si_falla +
           u"SELECT %1 AS hechas"_s.arg(sentencias.size());
}

/// Whether a group got to its end without a failure; then its results are one for each statement.
bool LlegoAlFinal(RespuestaSql& grupo, qsizetype cuantas) {
    const bool dice_el_final = !grupo.resultados.isEmpty() && grupo.resultados.last().conjunto;
    const bool entera = !grupo.fallo && dice_el_final &&
                        grupo.resultados.last().conjunto->filas.value(0).value(0) == cuantas;
    if (dice_el_final) grupo.resultados.removeLast();
    // A server may count more, such as what its triggers do: then no count is any statement's own.
    if (entera && grupo.resultados.size() != cuantas) {
        grupo.resultados = QVector<ResultadoSql>(cuantas);
    }
    return entera;
}

class ConexionOdbc final : public SqlConnection {
public:
    ConexionOdbc(DatosConexion datos, OpcionesOdbc opciones, FrasesDeSesion frases)
        : datos_(std::move(datos)), opciones_(std::move(opciones)), frases_(std::move(frases)) {}

    base::Result<void, FalloSql> Abrir() {
        QUIMO_TRY(Enlace nuevo, Enlace::Abrir(datos_, opciones_));
        if (!frases_.al_abrir.isEmpty()) {
            RespuestaSql dicho = nuevo.Correr(frases_.al_abrir);
            if (dicho.fallo) return *std::move(dicho.fallo);
        }
        enlace_ = std::move(nuevo);
        transacciones_ = 0;
        return {};
    }

    RespuestaSql Ejecutar(const QString& tsql, const QVector<QVariant>& parametros) override {
        return Correr(tsql, parametros, HablaDeTransacciones(tsql));
    }

    /// Inside a transaction all go in one text behind a savepoint. When anything is not as it
    /// should be the savepoint undoes them and they are sent one by one, so that the one that fails
    /// is known and nothing behind it is done, whatever the driver counted.
    RespuestaSql EjecutarVarias(const QStringList& sentencias) override {
        const bool otro_servidor = frases_.cuenta_transacciones.isEmpty();
        if (sentencias.size() < 2 || otro_servidor || transaccion_rota_ || transacciones_ == 0) {
            return SqlConnection::EjecutarVarias(sentencias);
        }
        const QString punto = u"quimo_%1"_s.arg(++puntos_);
        RespuestaSql grupo = Correr(TextoDeGrupo(sentencias, punto), {}, false);
        if (LlegoAlFinal(grupo, sentencias.size())) return grupo;
        if (!EnTransaccion() || transaccion_rota_) {
            // It is gone, and what the group did with it. What was counted tells how far it came.
            grupo.resultados.resize(std::min(grupo.resultados.size(), sentencias.size() - 1));
            if (!grupo.fallo) grupo.fallo = TransaccionPerdida();
            return grupo;
        }
        RespuestaSql deshecho = Correr(u"ROLLBACK TRANSACTION "_s + punto, {}, false);
        // A text that the server could not even read did not get to its savepoint.
        if (deshecho.fallo && !EsPuntoDesconocido(*deshecho.fallo)) {
            deshecho.resultados.clear();
            return deshecho;
        }
        return SqlConnection::EjecutarVarias(sentencias);
    }

    base::Result<void, FalloSql> Iniciar() override { return Mandar(u"BEGIN TRANSACTION"_s); }
    base::Result<void, FalloSql> Confirmar() override { return Terminar(u"COMMIT TRANSACTION"_s); }
    base::Result<void, FalloSql> Revertir() override { return Terminar(u"ROLLBACK TRANSACTION"_s); }
    bool EnTransaccion() const override { return transaccion_rota_ || transacciones_ > 0; }
    std::uint64_t TransaccionActual() const override {
        return EnTransaccion() ? numero_transaccion_ : 0;
    }

    base::Result<DefinicionTabla, FalloSql> Describir(const QString& tabla) override {
        return LeerDefinicion(tabla, Ejecutar(ConsultaDeTabla(tabla), {}));
    }

    bool Abierta() const override { return !cerrada_; }
    void Cerrar() override {
        // What was begun and not confirmed goes with the connection.
        enlace_.reset();
        transacciones_ = 0;
        transaccion_rota_ = false;
        cerrada_ = true;
    }

private:
    RespuestaSql Correr(const QString& tsql, const QVector<QVariant>& parametros, bool recontar) {
        RespuestaSql respuesta;
        if (transaccion_rota_) {
            respuesta.fallo = TransaccionPerdida();
            if (SoloTerminaTransaccion(tsql)) transaccion_rota_ = false;
            return respuesta;
        }
        auto listo = Asegurar();
        if (!listo) {
            respuesta.fallo = std::move(listo).error();
            return respuesta;
        }
        respuesta = enlace_->Correr(tsql, parametros);
        if (Perdida(respuesta)) {
            Perder(transacciones_ > 0 && !SoloTerminaTransaccion(tsql));
        } else if (respuesta.fallo || recontar) {
            Recontar(tsql);
        }
        return respuesta;
    }

    static bool Perdida(const RespuestaSql& respuesta) {
        return respuesta.fallo && respuesta.fallo->numero == FalloSql::kConexionPerdida;
    }

    /// A line to the server, a new one when the last was lost.
    base::Result<void, FalloSql> Asegurar() {
        if (cerrada_) return Cerrada();
        if (enlace_) return {};
        return Abrir();
    }

    void Perder(bool con_transaccion) {
        transaccion_rota_ = con_transaccion;
        transacciones_ = 0;
        enlace_.reset();
    }

    base::Result<void, FalloSql> Mandar(const QString& texto) {
        RespuestaSql respuesta = Ejecutar(texto, {});
        if (respuesta.fallo) return *std::move(respuesta.fallo);
        if (frases_.cuenta_transacciones.isEmpty()) Contadas(texto.startsWith(u'B') ? 1 : 0, texto);
        return {};
    }

    base::Result<void, FalloSql> Terminar(const QString& texto) {
        if (cerrada_) return Cerrada();
        if (transaccion_rota_ || !enlace_) {
            transaccion_rota_ = false;
            return TransaccionPerdida();
        }
        return Mandar(texto);
    }

    /// Asks the server how many transactions are open: a failure may have ended them, and texts
    /// and procedures say BEGIN and ROLLBACK themselves.
    void Recontar(const QString& tsql) {
        if (frases_.cuenta_transacciones.isEmpty()) return;
        const RespuestaSql cuenta = enlace_->Correr(frases_.cuenta_transacciones);
        if (Perdida(cuenta)) {
            // The text may just have begun one: rather one too many is taken for broken.
            return Perder((transacciones_ > 0 || HablaDeTransacciones(tsql)) &&
                          !SoloTerminaTransaccion(tsql));
        }
        if (cuenta.fallo || cuenta.resultados.isEmpty() || !cuenta.resultados.first().conjunto) {
            return;
        }
        Contadas(cuenta.resultados.first().conjunto->filas.value(0).value(0).toInt(), tsql);
    }

    /// The count after a text. One that ends and begins may have put another in the place of the
    /// transaction that was open.
    void Contadas(int transacciones, const QString& tsql) {
        if (transacciones > 0 && (transacciones_ == 0 || TerminaYEmpieza(tsql)))
            ++numero_transaccion_;
        transacciones_ = transacciones;
    }

    DatosConexion datos_;
    OpcionesOdbc opciones_;
    FrasesDeSesion frases_;
    std::optional<Enlace> enlace_;
    int transacciones_ = 0;
    std::uint64_t numero_transaccion_ = 0;
    int puntos_ = 0;                 // savepoints named so far
    bool transaccion_rota_ = false;  // lost with its connection, and nobody has ended it yet
    bool cerrada_ = false;
};

}  // namespace

base::Result<std::unique_ptr<SqlConnection>, FalloSql> AbrirOdbc(const DatosConexion& datos,
                                                                 const OpcionesOdbc& opciones,
                                                                 const FrasesDeSesion& frases) {
    // A driver would take another server or database for the one that is missing.
    if (datos.servidor.trimmed().isEmpty()) return ServidorSinNombre();
    if (datos.base_de_datos.trimmed().isEmpty()) return BaseSinNombre();
    auto conexion = std::make_unique<ConexionOdbc>(datos, opciones, frases);
    QUIMO_TRY_VOID(conexion->Abrir());
    return std::unique_ptr<SqlConnection>(std::move(conexion));
}

}  // namespace quimo::data::odbc
