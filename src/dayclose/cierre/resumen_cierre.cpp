#include "dayclose/cierre/resumen_cierre.h"

#include <algorithm>

#include "dayclose/cierre/traspaso.h"
#include "dayclose/terminales/base_terminal.h"
#include "foundation/parametros.h"

using namespace Qt::StringLiterals;

namespace quimo::dayclose {

namespace {

QString Ruta(const ContextoCierre& contexto, const QString& fecha, const QString& terminal,
             const QString& sha256) {
    if (sha256.isEmpty()) return {};
    const auto ruta = contexto.archivo.Buscar(fecha, terminal, sha256);
    return ruta ? *ruta : QString();
}

std::optional<ValoresCifras> CifrasDeArchivo(const QString& ruta, const QString& terminal) {
    if (ruta.isEmpty()) return std::nullopt;
    const auto base = BaseTerminal::Abrir(ruta, terminal);
    if (!base) return std::nullopt;
    auto cifras = base->Contar();
    if (!cifras) return std::nullopt;
    return *cifras;
}

void AgregarContada(ContextoCierre& contexto, const CierrePendiente& cierre,
                    const Terminal& terminal) {
    auto& contadas = contexto.resumen.contadas;
    const bool esta = std::any_of(
        contadas.begin(), contadas.end(),
        [&](const TerminalContada& otra) { return otra.terminal.nombre == terminal.nombre; });
    const auto archivo = cierre.De(terminal.nombre, QString::fromUtf16(CierrePendiente::kArchivo));
    if (esta || !archivo) return;
    const QString ruta = Ruta(contexto, cierre.Fecha(), terminal.nombre, archivo->detalle);
    const auto cifras = CifrasDeArchivo(ruta, terminal.nombre);
    if (cifras) contadas.append({terminal, *cifras});
}

void AgregarSinCopiar(ContextoCierre& contexto, const CierrePendiente& cierre,
                      const Terminal& terminal) {
    const auto apartada =
        cierre.De(terminal.nombre, QString::fromUtf16(CierrePendiente::kApartada));
    TerminalSinCopiar sin;
    sin.terminal = terminal.nombre;
    sin.motivo = cierre.EstaApartada(terminal.nombre);
    if (apartada) sin.archivo = Ruta(contexto, cierre.Fecha(), terminal.nombre, apartada->detalle);
    sin.cifras = CifrasDeArchivo(sin.archivo, terminal.nombre);
    contexto.resumen.sin_copiar.append(sin);
    contexto.resumen.contadas.removeIf(
        [&](const TerminalContada& contada) { return contada.terminal.nombre == terminal.nombre; });
}

QString Motivo(const TerminalSinCopiar& sin) {
    switch (sin.motivo) {
        case Apartada::SinComunicacion:
            return u"no se leyó (falla de comunicación)"_s;
        case Apartada::Omitida:
            return u"se apartó de este cierre"_s;
        case Apartada::Abierta:
            return u"no se leyó (no se cerró)"_s;
        case Apartada::SinArchivo:
            return u"no se leyó (no tiene base de datos)"_s;
        case Apartada::No:
            break;
    }
    return u"no se leyó"_s;
}

QString Linea(const TerminalSinCopiar& sin) {
    QString linea = sin.terminal + u": "_s + Motivo(sin);
    if (sin.archivo.isEmpty()) return linea + u"; su archivo no se pudo traer"_s;
    if (!sin.cifras) return linea + u"; su archivo está en "_s + sin.archivo;
    const auto lugar = static_cast<std::size_t>(Cifra::PXC);
    return linea + u": %1 artículos, %2 en %3"_s.arg(
                       QLocale(u"es_MX"_s).toString(sin.cifras->registros[lugar]),
                       QString::fromStdString(sin.cifras->totales[lugar].AMoneda()), sin.archivo);
}

}  // namespace

void CompletarResumen(ContextoCierre& contexto, const CierrePendiente& cierre) {
    ResumenCierre& resumen = contexto.resumen;
    resumen.copiadas.clear();
    resumen.sin_copiar.clear();
    resumen.hay_perdidas = false;
    for (const Terminal& terminal : TerminalesDe(cierre)) {
        AgregarContada(contexto, cierre, terminal);
        for (const DefCopia& copia : Copias()) {
            const QString tabla = QString::fromUtf16(copia.tabla);
            const auto avance = cierre.De(terminal.nombre, tabla);
            if (!avance || avance->estado != CierrePendiente::kHecho) continue;
            resumen.copiadas.append(CopiaDeDetalle(terminal.nombre, tabla, avance->detalle));
        }
        const auto choque =
            cierre.De(terminal.nombre, QString::fromUtf16(CierrePendiente::kChoque));
        resumen.hay_perdidas = resumen.hay_perdidas || (choque && choque->estado != 0);
        if (cierre.EstaApartada(terminal.nombre) != Apartada::No) {
            AgregarSinCopiar(contexto, cierre, terminal);
        }
    }
    std::sort(resumen.contadas.begin(), resumen.contadas.end(),
              [](const TerminalContada& a, const TerminalContada& b) {
                  return PorNumero(a.terminal, b.terminal);
              });
}

namespace {

/// What is to be done about a terminal whose sales are missing.
QString SalidaDe(const TerminalSinCopiar& sin, bool sin_base) {
    if (!sin.archivo.isEmpty()) {
        return u"Para traer las ventas de %1: quimoctl cerrar ... --traer %2 --terminal %1"_s.arg(
            sin.terminal, sin.archivo);
    }
    const QString donde = u"Las ventas de %1 siguen sólo en la terminal. "_s.arg(sin.terminal);
    if (sin_base) {
        return donde +
               u"Cuando responda, antes de abrirla: quimoctl cerrar ... --enviar %1, que trae "
               u"sus ventas y le manda su base nueva"_s.arg(sin.terminal);
    }
    return donde +
           u"Cuando se pueda leer, copie su Quimo_Terminal.mdb y tráigalo con: quimoctl cerrar "
           u"... --traer ARCHIVO --terminal %1"_s.arg(sin.terminal);
}

}  // namespace

TextoResumen RedactarResumen(const ResumenCierre& resumen) {
    TextoResumen texto;
    texto.titulo = u"Cierre del "_s + foundation::FechaTrabajoVisible(resumen.fecha);
    QStringList dichas;
    for (const TerminalSinCopiar& sin : resumen.sin_copiar) {
        const bool sin_base = resumen.sin_entregar.contains(sin.terminal);
        texto.sin_copiar << Linea(sin);
        if (sin.motivo == Apartada::SinArchivo) continue;
        texto.faltantes << SalidaDe(sin, sin_base);
        if (sin.archivo.isEmpty() && sin_base) dichas << sin.terminal;
    }
    for (const QString& terminal : resumen.sin_entregar) {
        texto.sin_entregar << u"%1 no recibió su base de datos nueva."_s.arg(terminal);
        if (dichas.contains(terminal)) continue;
        const bool copiada = std::any_of(
            resumen.contadas.begin(), resumen.contadas.end(),
            [&](const TerminalContada& contada) { return contada.terminal.nombre == terminal; });
        texto.faltantes
            << u"Mientras %1 no la reciba seguirá vendiendo con la fecha, los precios y los "
               u"números de antes%2. Antes de abrirla: quimoctl cerrar ... --enviar %1"_s.arg(
                   terminal, copiada ? u", y el próximo cierre se detendrá en las "
                                       u"ventas de hoy, que su archivo traerá otra vez"_s
                                     : QString());
    }
    if (resumen.hay_perdidas) {
        texto.faltantes << u"Hay ventas que otra terminal pisó, o que faltan: vea los avisos. Los "
                           u"archivos de todas las terminales están guardados."_s;
    }
    return texto;
}

}  // namespace quimo::dayclose
