#include "dayclose/cierre/contexto_cierre.h"

#include <algorithm>
#include <utility>

#include "data/consultar.h"
#include "dayclose/cierre/explicacion.h"

using namespace Qt::StringLiterals;

namespace quimo::dayclose {

using data::Fila;
using foundation::Botones;
using foundation::Icono;
using foundation::Respuesta;

ContextoCierre ContextoCierre::De(foundation::ClsAdo& ado, TerminalShare& share,
                                  const data::Reloj& reloj, const QString& carpeta,
                                  const OpcionesCierre& opciones) {
    return {ado,
            share,
            reloj,
            carpeta,
            opciones,
            ArchivoVentas(carpeta + u"/archivo"_s),
            ManejadorFallas(ado.Dialogo(), opciones.pausa_ms, opciones.detener)};
}

QString ContextoCierre::Remoto(const QString& terminal) const {
    return u"\\\\"_s + terminal + u'\\' + directorio + u"\\Quimo_Terminal.mdb"_s;
}

QString ContextoCierre::CopiaLocal(const QString& terminal) const {
    return CarpetaLocal(terminal) + u"/Quimo_Terminal.mdb"_s;
}

ResultadoCierre<void> ContextoCierre::PuntoSeguro() const {
    if (opciones.detener && opciones.detener()) return Detenido();
    return turno == nullptr ? ResultadoCierre<void>() : turno->Mantener(reloj.Ahora());
}

bool PorNumero(const Terminal& una, const Terminal& otra) {
    return std::pair(una.id, una.nombre) < std::pair(otra.id, otra.nombre);
}

QVector<Terminal> TerminalesDe(const CierrePendiente& cierre) {
    QVector<Terminal> terminales;
    const QHash<QString, int> conocidas = cierre.Terminales();
    for (auto it = conocidas.cbegin(); it != conocidas.cend(); ++it) {
        terminales.append({it.value(), it.key()});
    }
    std::sort(terminales.begin(), terminales.end(), PorNumero);
    return terminales;
}

bool EsNombreDeEquipo(const QString& nombre) {
    return !nombre.isEmpty() && !nombre.startsWith(u'.') && !nombre.contains(u'/') &&
           !nombre.contains(u'\\') && !nombre.contains(u'\0');
}

bool OfrecerApartar(foundation::ClsAdo& ado, Interrupcion& fallo) {
    if (fallo.motivo != Interrupcion::Motivo::Error || fallo.terminal.isEmpty()) return false;
    QString texto = QString::number(static_cast<qint32>(fallo.numero)) + u' ' + fallo.descripcion;
    texto +=
        u"\n\n"_s + (fallo.detalle.isEmpty() ? SalidaSinTerminal(fallo.terminal) : fallo.detalle);
    texto += u"\n\n¿Desea terminar aquí, o apartar la terminal "_s + fallo.terminal +
             u" y cerrar el día sin ella?"_s;
    fallo.dicha = true;
    return ado.Dialogo().Preguntar(texto, Botones::TerminarApartar, Icono::Critico) ==
           Respuesta::Apartar;
}

Interrupcion FalloPendiente(const foundation::ClsAdo& ado) {
    QUIMO_CHECK(ado.Pendiente().has_value());
    return *ado.Pendiente();
}

ResultadoCierre<QVector<Terminal>> TodasLasTerminales(foundation::ClsAdo& ado) {
    QUIMO_TRY(
        const QVector<Fila> filas,
        data::Consultar(
            ado.Conexion(),
            u"SELECT ID_Terminal,Nombre_Terminal,ID_Menu FROM Terminal ORDER BY ID_Terminal"_s));
    QVector<Terminal> terminales;
    for (const Fila& fila : filas) {
        terminales.append({fila[0].toInt(), fila[1].toString(), fila[2].toInt()});
    }
    return terminales;
}

ResultadoCierre<void> RecordarOtraVez(foundation::ClsAdo& ado, CierrePendiente& cierre) {
    QUIMO_TRY(auto guardado, CierrePendiente::Leer(ado.Conexion()));
    if (!guardado || guardado->Inicio() != cierre.Inicio()) {
        return Interrupcion{Interrupcion::Motivo::Error, kErrorArchivo,
                            u"El cierre ya no está pendiente: otro programa lo terminó."_s};
    }
    cierre = *std::move(guardado);
    return {};
}

ResultadoCierre<void> Apartar(foundation::ClsAdo& ado, CierrePendiente& cierre,
                              const Terminal& terminal, Apartada motivo, const QString& sha256) {
    QUIMO_TRY(auto transaccion, data::Transaccion::Iniciar(ado.Conexion()));
    QUIMO_TRY_VOID(cierre.Anotar(transaccion, terminal.id, terminal.nombre,
                                 QString::fromUtf16(CierrePendiente::kApartada),
                                 {static_cast<int>(motivo), sha256}));
    QUIMO_TRY_VOID(transaccion.Confirmar());
    return {};
}

}  // namespace quimo::dayclose
