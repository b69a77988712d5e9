#include "dayclose/transferencia.h"

#include <algorithm>
#include <optional>

#include "dayclose/base_terminal.h"
#include "foundation/transaccion.h"

using namespace Qt::StringLiterals;

namespace quimo::dayclose {

using foundation::ClsAdo;
using foundation::Transaccion;

namespace {

constexpr qint64 kFilasPorTransaccion = 1000;

/// Copies one table of one terminal.
class CopiaDeTabla {
public:
    CopiaDeTabla(ContextoCierre& contexto, CierrePendiente& cierre, Terminal terminal,
                 const DefCopia& copia)
        : contexto_(contexto),
          cierre_(cierre),
          terminal_(std::move(terminal)),
          copia_(copia),
          tabla_(QString::fromUtf16(copia.tabla)) {}

    ResultadoCierre<TablaCopiada> Copiar(const BaseTerminal& base) {
        const auto avance = cierre_.De(terminal_.nombre, tabla_);
        hechas_ = avance ? avance->detalle.toLongLong() : 0;
        qint64 numero = 0;
        auto recorrida = base.Recorrer(
            copia_, [&](const BaseTerminal::Renglon& renglon) -> ResultadoCierre<void> {
                if (numero++ < hechas_) return {};
                QUIMO_TRY_VOID(Abrir());
                QUIMO_TRY_VOID(Renglon(renglon));
                ++hechas_;
                if (hechas_ % kFilasPorTransaccion == 0) return Asentar(CierrePendiente::kPorHacer);
                return {};
            });
        if (recorrida) {
            QUIMO_TRY_VOID(Abrir());
            QUIMO_TRY_VOID(Asentar(CierrePendiente::kHecho));
            return copiada_;
        }
        // What was copied stays, unless the failure itself made the server undo it.
        if (transaccion_ && SigueAbierta()) {
            QUIMO_TRY_VOID(Asentar(CierrePendiente::kPorHacer));
        }
        return std::move(recorrida).error();
    }

private:
    ResultadoCierre<void> Abrir() {
        if (transaccion_) return {};
        auto abierta = Transaccion::Iniciar(contexto_.ado.Conexion());
        if (!abierta) return DeFallo(abierta.error());
        transaccion_.emplace(std::move(abierta).value());
        return {};
    }

    bool SigueAbierta() {
        const auto cuenta = LeerFilas(contexto_.ado, u"SELECT @@TRANCOUNT AS n"_s);
        return cuenta && !cuenta->isEmpty() && cuenta->first().value(0).toInt() > 0;
    }

    /// Commits the rows copied so far together with how many they are.
    ResultadoCierre<void> Asentar(int estado) {
        QUIMO_INTENTAR_VOID(cierre_.Anotar(contexto_.ado.Conexion(), terminal_.id, terminal_.nombre,
                                           tabla_, {estado, QString::number(hechas_)}));
        QUIMO_INTENTAR_VOID(transaccion_->Confirmar());
        transaccion_.reset();
        return {};
    }

    ResultadoCierre<QString> Condicion(const BaseTerminal::Renglon& renglon) const {
        QString condicion;
        for (const char16_t* columna : copia_.clave) {
            QUIMO_TRY(const QString valor, renglon.Literal(columna, Forma::Numero));
            if (!condicion.isEmpty()) condicion += u" AND "_s;
            condicion += QString::fromUtf16(columna) + u'=' + valor;
        }
        return condicion;
    }

    QString Busqueda(const QString& condicion) const {
        if (!copia_.limitada_al_dia) {
            return u"SELECT * FROM "_s + tabla_ + u" WHERE "_s + condicion;
        }
        return u"SELECT * FROM "_s + tabla_ + u",Comanda WHERE "_s + tabla_ +
               u".ID_Comanda=Comanda.ID_Comanda AND Fecha_Trabajo='"_s + cierre_.Fecha() +
               u"' AND "_s + condicion;
    }

    ResultadoCierre<void> Renglon(const BaseTerminal::Renglon& renglon) {
        ClsAdo& ado = contexto_.ado;
        QUIMO_TRY(const QString condicion, Condicion(renglon));
        foundation::RecordsetPtr central;
        if (!ado.Consultar(central, Busqueda(condicion))) return FalloPendiente(ado);
        if (!central->Vacio()) {
            QString asignaciones;
            for (const CampoCopia& campo : copia_.al_modificar) {
                QUIMO_TRY(const QString valor, renglon.Literal(campo.columna, campo.forma));
                if (!asignaciones.isEmpty()) asignaciones += u',';
                asignaciones += QString::fromUtf16(campo.columna) + u'=' + valor;
            }
            if (!ado.Modificar(nullptr, tabla_, asignaciones, condicion)) {
                return FalloPendiente(ado);
            }
            ++copiada_.modificadas;
            return {};
        }
        QString columnas;
        QString valores;
        for (const CampoCopia& campo : copia_.al_insertar) {
            QUIMO_TRY(const QString valor, renglon.Literal(campo.columna, campo.forma));
            if (!columnas.isEmpty()) {
                columnas += u',';
                valores += u',';
            }
            columnas += QString::fromUtf16(campo.columna);
            valores += valor;
        }
        if (!ado.Insertar(tabla_, columnas, valores)) return FalloPendiente(ado);
        ++copiada_.insertadas;
        return {};
    }

    ContextoCierre& contexto_;
    CierrePendiente& cierre_;
    Terminal terminal_;
    const DefCopia& copia_;
    QString tabla_;
    std::optional<Transaccion> transaccion_;
    qint64 hechas_ = 0;
    TablaCopiada copiada_ = {terminal_.nombre, tabla_};
};

QVector<Terminal> TerminalesPorNumero(const CierrePendiente& cierre) {
    QVector<Terminal> terminales;
    const QHash<QString, int> conocidas = cierre.Terminales();
    for (auto it = conocidas.cbegin(); it != conocidas.cend(); ++it) {
        terminales.append({it.value(), it.key()});
    }
    std::sort(terminales.begin(), terminales.end(), [](const Terminal& a, const Terminal& b) {
        return std::pair(a.id, a.nombre) < std::pair(b.id, b.nombre);
    });
    return terminales;
}

}  // namespace

ResultadoCierre<void> TransferirVentas(ContextoCierre& contexto, CierrePendiente& cierre) {
    for (const Terminal& terminal : TerminalesPorNumero(cierre)) {
        contexto.Progreso(u"Copiando las ventas de "_s + terminal.nombre);
        QUIMO_TRY(const BaseTerminal base,
                  BaseTerminal::Abrir(contexto.CopiaLocal(terminal.nombre), terminal.nombre));
        for (const DefCopia& copia : Copias()) {
            const auto avance = cierre.De(terminal.nombre, QString::fromUtf16(copia.tabla));
            if (!avance || avance->estado == CierrePendiente::kHecho) continue;
            CopiaDeTabla tarea(contexto, cierre, terminal, copia);
            QUIMO_TRY(const TablaCopiada copiada, tarea.Copiar(base));
            contexto.resumen.copiadas.append(copiada);
        }
    }
    QUIMO_INTENTAR_VOID(cierre.Avanzar(contexto.ado.Conexion(), Paso::Distribuir));
    return {};
}

}  // namespace quimo::dayclose
