#include "demo/jornada.h"

#include <algorithm>
#include <iterator>
#include <span>

#include <QStringList>

#include "demo/cobro.h"
#include "demo/pedido.h"
#include "demo/suerte.h"

namespace quimo::demo {

using namespace Qt::StringLiterals;

namespace {

struct Hora {
    int hora = 0;
    int peso = 0;
};
constexpr Hora kHorasSalon[] = {{7, 2},  {8, 7},   {9, 12},  {10, 10}, {11, 6}, {12, 5},
                                {13, 9}, {14, 15}, {15, 16}, {16, 9},  {17, 4}, {18, 4},
                                {19, 9}, {20, 12}, {21, 8},  {22, 3}};
constexpr Hora kHorasBar[] = {{13, 3},  {14, 6},  {15, 6},  {16, 5},  {17, 6}, {18, 9},
                              {19, 13}, {20, 16}, {21, 16}, {22, 11}, {23, 4}};

// Orders of an ordinary day and how the days of the week differ, Monday first, in percent.
constexpr int kComandasSalon = 44;
constexpr int kComandasBar = 28;
constexpr int kSemana[] = {78, 82, 88, 95, 115, 130, 120};

constexpr int kComensales[] = {14, 38, 18, 17, 6, 4, 1, 2};
constexpr int kMesas = 36;

ParteDia ParteDe(const QTime& hora) {
    if (hora < QTime(6, 0) || hora >= QTime(23, 0)) return ParteDia::Madrugada;
    if (hora < QTime(12, 30)) return ParteDia::Manana;
    return hora < QTime(18, 30) ? ParteDia::Tarde : ParteDia::Noche;
}

// FNV-1a: the same on every computer.
std::uint64_t Semilla(const QString& fecha_trabajo, int terminal) {
    std::uint64_t semilla = 14695981039346656037ULL;
    for (const QChar letra : fecha_trabajo + u'/' + QString::number(terminal))
        semilla = (semilla ^ letra.unicode()) * 1099511628211ULL;
    return semilla;
}

class Jornada {
public:
    Jornada(const Catalogo& catalogo, const DiaDeTrabajo& dia, Ritmo ritmo)
        : catalogo_(catalogo),
          dia_(dia),
          ritmo_(ritmo),
          suerte_(Semilla(dia.texto, catalogo.terminal)),
          comedor_(catalogo, suerte_),
          libre_desde_(kMesas) {}

    VentasDia Vender(AlCerrar al_cerrar) {
        VentasDia ventas{.fecha_trabajo = dia_.texto};
        const std::vector<QDateTime> aperturas = Aperturas();
        const std::size_t cuantas = aperturas.size();
        const std::size_t abiertas = al_cerrar == AlCerrar::QuedanAbiertas
                                         ? static_cast<std::size_t>(Dado().Entre(1, 2))
                                         : 0;
        for (std::size_t i = 0; i < cuantas; ++i) {
            if (i == cuantas / 4) suerte_.Insistir();
            // The last order is the one past midnight; those before it may still be open.
            const bool de_medianoche = i + 1 == cuantas;
            const bool abierta = !de_medianoche && i + 1 + abiertas >= cuantas;
            ventas.comandas.push_back(Atender(aperturas[i], de_medianoche, abierta));
        }
        ventas.siguiente_articulo = comedor_.SiguienteArticulo();
        return ventas;
    }

private:
    Azar& Dado() { return suerte_.Dado(); }

    QDateTime Momento(const QTime& hora) const { return {dia_.dia, hora, Qt::UTC}; }

    // In order; the last one is just before or just after midnight.
    std::vector<QDateTime> Aperturas() {
        const std::span<const Hora> horas =
            ritmo_ == Ritmo::Salon ? std::span<const Hora>(kHorasSalon) : kHorasBar;
        std::vector<int> pesos;
        std::ranges::transform(horas, std::back_inserter(pesos), &Hora::peso);
        const int normal =
            (ritmo_ == Ritmo::Salon ? kComandasSalon : kComandasBar) + Dado().Entre(-4, 4);
        const int cuantas = std::max(8, normal * kSemana[dia_.dia.dayOfWeek() - 1] / 100);
        std::vector<QDateTime> aperturas;
        for (int i = 1; i < cuantas; ++i) {
            const int hora = horas[Dado().Pesado(pesos)].hora;
            aperturas.push_back(Momento(QTime(hora, Dado().Entre(0, 59), Dado().Entre(0, 59))));
            // The doors close at half past eleven.
            if (hora == 23) aperturas.back() = aperturas.back().addSecs(-1800);
        }
        std::ranges::sort(aperturas);
        const QDateTime ultima = Momento(QTime(23, 40));
        aperturas.push_back(ultima.addSecs(60 * Dado().Entre(0, 70) + Dado().Entre(0, 59)));
        return aperturas;
    }

    ComandaVendida Atender(const QDateTime& apertura, bool de_medianoche, bool abierta) {
        ComandaVendida comanda;
        comanda.empleado = Dado().Uno(catalogo_.meseros);
        comanda.apertura = apertura;
        const QDateTime cierre =
            apertura.addSecs(60 * Duracion(de_medianoche) + Dado().Entre(0, 59));
        if (!abierta) comanda.cierre = cierre;
        const int comensales = Sentar(comanda, cierre);
        auto lotes = comedor_.Pedir(ParteDe(apertura.time()), comensales, ritmo_ == Ritmo::Bar);
        Repartir(comanda, std::move(lotes), comensales);
        for (CuentaVendida& cuenta : comanda.cuentas) {
            if (abierta) {
                for (Articulo& articulo : cuenta.articulos)
                    articulo.preparado = Dado().Porciento(60);
            }
            AnularYObsequiar(cuenta, apertura, catalogo_, suerte_);
            cuenta.impresiones = abierta ? Dado().Entre(0, 1) : Dado().Entre(10, 23) / 10;
            if (!abierta) Pagar(cuenta, cierre.addSecs(-Dado().Entre(45, 240)), catalogo_, suerte_);
        }
        return comanda;
    }

    // In minutes.
    int Duracion(bool de_medianoche) {
        if (de_medianoche) return Dado().Entre(30, 75);
        return ritmo_ == Ritmo::Salon ? Dado().Entre(28, 95) : Dado().Entre(25, 120);
    }

    // Who sits where; returns for how many is ordered.
    int Sentar(ComandaVendida& comanda, const QDateTime& hasta) {
        const int comensales = static_cast<int>(Dado().Pesado(kComensales)) + 1;
        const int destino = Dado().Entre(1, 100);
        if (ritmo_ == Ritmo::Salon && destino <= 5) {
            comanda.tipo = u"DOMICILIO"_s;
            return std::min(comensales, 4);
        }
        if (ritmo_ == Ritmo::Salon && destino <= 15) {
            comanda.tipo = u"LLEVAR"_s;
            comanda.huespedes = 1;
            return std::min(comensales, 3);
        }
        comanda.tipo = u"MESA"_s;
        comanda.mesa = MesaLibre(comanda.apertura, hasta);
        comanda.huespedes = comensales;
        return comensales;
    }

    // Each terminal serves tables of its own: 101, 102, ... for terminal 1.
    int MesaLibre(const QDateTime& desde, const QDateTime& hasta) {
        auto mesa = static_cast<std::size_t>(Dado().Entre(0, kMesas - 1));
        for (int i = 0; i < kMesas; ++i) {
            QDateTime& libre = libre_desde_[mesa];
            if (!libre.isValid() || libre <= desde) {
                libre = hasta;
                break;
            }
            mesa = (mesa + 1) % libre_desde_.size();
        }
        return catalogo_.terminal * 100 + static_cast<int>(mesa) + 1;
    }

    // Puts the items on one check or several; none stays empty.
    void Repartir(ComandaVendida& comanda, std::vector<Lote> lotes, int comensales) {
        std::size_t cuantas = 1;
        if (comensales > 1 && lotes.size() > 2 && suerte_.Toca(Rasgo::CuentaDividida, 9)) {
            cuantas = std::min({lotes.size(), static_cast<std::size_t>(comensales),
                                static_cast<std::size_t>(Dado().Entre(2, 4))});
        }
        comanda.cuentas.resize(cuantas);
        for (std::size_t i = 0; i < lotes.size(); ++i) {
            const std::size_t cual =
                i < cuantas
                    ? i
                    : static_cast<std::size_t>(Dado().Entre(0, static_cast<int>(cuantas) - 1));
            std::vector<Articulo>& articulos = comanda.cuentas[cual].articulos;
            std::ranges::move(lotes[i], std::back_inserter(articulos));
        }
    }

    const Catalogo& catalogo_;
    DiaDeTrabajo dia_;
    Ritmo ritmo_;
    Suerte suerte_;
    Comedor comedor_;
    std::vector<QDateTime> libre_desde_;
};

}  // namespace

std::optional<DiaDeTrabajo> LeerFechaTrabajo(const QString& texto) {
    const auto es_cifra = [](QChar letra) { return letra >= u'0' && letra <= u'9'; };
    if (texto.size() != 8 || !std::ranges::all_of(texto, es_cifra)) return {};
    const int dia = texto.left(2).toInt();
    const int mes = texto.mid(2, 2).toInt();
    const int ano = texto.right(4).toInt();
    if (dia < 1 || dia > 31 || mes < 1 || ano < 1900) return {};
    // Month 13 is the January of the year that the text tells, 14 its February.
    const QDate primero(ano, (mes - 1) % 12 + 1, 1);
    return DiaDeTrabajo{texto, primero.addYears(std::max(0, (mes - 13) / 12)).addDays(dia - 1)};
}

VentasDia SimularJornada(const Catalogo& catalogo, const DiaDeTrabajo& dia, Ritmo ritmo,
                         AlCerrar al_cerrar) {
    return Jornada(catalogo, dia, ritmo).Vender(al_cerrar);
}

}  // namespace quimo::demo
