#include "demo/cobro.h"

#include <algorithm>

#include <QString>

namespace quimo::demo {

using namespace Qt::StringLiterals;
using base::Dinero;

namespace {

bool SinOferta(const Articulo& articulo, const Catalogo& catalogo) {
    return !articulo.paquete && !articulo.promocion && articulo.venta > Dinero() &&
           !catalogo.productos.at(articulo.producto).paquete;
}

// What the courtesy takes off the price; nothing when it does not apply to the item.
Dinero MontoDeCortesia(const TipoDeCortesia& tipo, const Articulo& articulo, Azar& azar) {
    if (tipo.por_articulo &&
        std::ranges::find(tipo.productos, articulo.producto) == tipo.productos.end())
        return {};
    Dinero monto;
    if (tipo.tipo == u'P') {
        // Percent to ten-thousandths of the price.
        monto = articulo.venta.Fraccion(tipo.cantidad.Diezmilesimas() / 100).ACentavos();
    } else if (tipo.tipo == u'A') {
        monto = articulo.venta.Fraccion(1000L * azar.Entre(2, 8)).ACentavos();
    } else {
        monto = tipo.cantidad;
    }
    return std::clamp(monto, Dinero(), std::min(std::max(tipo.maximo, Dinero()), articulo.venta));
}

std::vector<CortesiaDada> CortesiasPosibles(const Articulo& articulo, const Catalogo& catalogo,
                                            Azar& azar) {
    std::vector<CortesiaDada> posibles;
    for (const TipoDeCortesia& tipo : catalogo.cortesias) {
        const Dinero monto = MontoDeCortesia(tipo, articulo, azar);
        if (monto > Dinero()) posibles.push_back({tipo.id, monto});
    }
    return posibles;
}

int PesoDeClase(QChar clase) {
    if (clase == u'E') return 42;
    if (clase == u'T') return 30;
    if (clase == u'D') return 20;
    return clase == u'C' ? 1 : 4;
}

const TipoDePago& ElegirPago(const Catalogo& catalogo, Azar& azar) {
    std::vector<int> pesos;
    QString vistas;
    for (const TipoDePago& tipo : catalogo.pagos) {
        // The first of a class is the usual one: pesos before dollars.
        pesos.push_back(vistas.contains(tipo.clase) ? 2 : PesoDeClase(tipo.clase));
        vistas += tipo.clase;
    }
    return catalogo.pagos[azar.Pesado(pesos)];
}

const TipoDePago* PrimeroDeClase(const Catalogo& catalogo, QStringView clases) {
    const auto hallado = std::ranges::find_if(
        catalogo.pagos, [&](const TipoDePago& tipo) { return clases.contains(tipo.clase); });
    return hallado == catalogo.pagos.end() ? nullptr : &*hallado;
}

QString Referencia(QChar clase, Azar& azar) {
    if (clase == u'E') return {};
    if (clase == u'C') return u"Cheque núm. %1"_s.arg(azar.Entre(1000, 9999));
    if (clase == u'T' || clase == u'D') {
        return u"**** %1 aut. %2"_s.arg(azar.Entre(0, 9999), 4, 10, QChar(u'0'))
            .arg(azar.Entre(0, 999999), 6, 10, QChar(u'0'));
    }
    return u"SPEI rastreo %1"_s.arg(azar.Entre(1000000, 9999999));
}

std::optional<Dinero> Propina(QChar clase, Dinero monto, Suerte& suerte) {
    if (suerte.Toca(Rasgo::PropinaNula, 6)) return {};
    if (suerte.Toca(Rasgo::SinPropina, clase == u'E' ? 25 : 6)) return Dinero();
    constexpr int kDiezmilesimas[] = {500, 1000, 1000, 1000, 1200, 1500};
    return monto.Fraccion(suerte.Dado().Uno(kDiezmilesimas)).ACentavos();
}

PagoHecho Pago(const TipoDePago& tipo, Dinero monto, const QDateTime& momento, Suerte& suerte) {
    PagoHecho pago;
    pago.tipo = tipo.id;
    pago.monto = monto;
    pago.propina = Propina(tipo.clase, monto, suerte);
    pago.referencia = Referencia(tipo.clase, suerte.Dado());
    pago.momento = momento;
    return pago;
}

}  // namespace

void AnularYObsequiar(CuentaVendida& cuenta, const QDateTime& apertura, const Catalogo& catalogo,
                      Suerte& suerte) {
    Azar& azar = suerte.Dado();
    for (Articulo& articulo : cuenta.articulos) {
        if (!SinOferta(articulo, catalogo)) continue;
        const bool anulable = cuenta.articulos.size() > 1 && !catalogo.anulaciones.empty() &&
                              !catalogo.responsables.empty();
        if (anulable && suerte.Toca(Rasgo::Anulacion, 2)) {
            articulo.anulacion = Anulacion{.tipo = azar.Uno(catalogo.anulaciones),
                                           .empleado = azar.Uno(catalogo.responsables),
                                           .hora = apertura.addSecs(azar.Entre(60, 600))};
            articulo.preparado = azar.Porciento(50);
            continue;
        }
        const auto cortesias = CortesiasPosibles(articulo, catalogo, azar);
        if (!cortesias.empty() && suerte.Toca(Rasgo::Cortesia, 2))
            articulo.cortesia = azar.Uno(cortesias);
    }
}

void Pagar(CuentaVendida& cuenta, const QDateTime& momento, const Catalogo& catalogo,
           Suerte& suerte) {
    cuenta.pagada = true;
    const Dinero resto = cuenta.Total();
    if (resto <= Dinero()) return;
    const TipoDePago* efectivo = PrimeroDeClase(catalogo, u"E");
    const TipoDePago* tarjeta = PrimeroDeClase(catalogo, u"TD");
    if (efectivo != nullptr && tarjeta != nullptr && resto > Dinero::DeEntero(150) &&
        suerte.Toca(Rasgo::PagoMixto, 5)) {
        const Dinero parte = Dinero::DeEntero(50 * suerte.Dado().Entre(1, 2));
        cuenta.pagos.push_back(Pago(*efectivo, parte, momento, suerte));
        cuenta.pagos.push_back(Pago(*tarjeta, resto - parte, momento.addSecs(40), suerte));
        return;
    }
    cuenta.pagos.push_back(Pago(ElegirPago(catalogo, suerte.Dado()), resto, momento, suerte));
}

}  // namespace quimo::demo
