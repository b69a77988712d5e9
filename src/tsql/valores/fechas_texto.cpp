#include <array>
#include <charconv>
#include <utility>
#include <vector>

#include "tsql/valores/fechas.h"
#include "tsql/valores/texto.h"

namespace quimo::tsql {

namespace {

constexpr auto kMesesCortos = std::to_array<std::string_view>(
    {"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"});
constexpr std::size_t kPiezasMax = 24;

/// A run of digits, a word, or one sign of a date's text.
struct Pieza {
    enum class Clase { Numero, Palabra, Signo };
    Clase clase = Clase::Signo;
    std::string_view texto = {};
    int numero = 0;
    bool tras_blanco = false;
};

bool EsCifra(char c) { return c >= '0' && c <= '9'; }
bool EsLetra(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

std::optional<std::vector<Pieza>> Partir(std::string_view texto) {
    std::vector<Pieza> piezas;
    bool blanco = false;
    for (std::size_t i = 0; i < texto.size();) {
        if (texto[i] == ' ' || texto[i] == '\t') {
            blanco = true;
            ++i;
            continue;
        }
        std::size_t fin = i + 1;
        Pieza pieza;
        if (EsCifra(texto[i])) {
            pieza.clase = Pieza::Clase::Numero;
            while (fin < texto.size() && EsCifra(texto[fin]))
                ++fin;
        } else if (EsLetra(texto[i])) {
            pieza.clase = Pieza::Clase::Palabra;
            while (fin < texto.size() && EsLetra(texto[fin]))
                ++fin;
        }
        pieza.texto = texto.substr(i, fin - i);
        pieza.tras_blanco = blanco;
        if (pieza.clase == Pieza::Clase::Numero) {
            if (pieza.texto.size() > 9) return std::nullopt;
            std::from_chars(pieza.texto.data(), pieza.texto.data() + pieza.texto.size(),
                            pieza.numero);
        }
        piezas.push_back(pieza);
        if (piezas.size() > kPiezasMax) return std::nullopt;
        blanco = false;
        i = fin;
    }
    return piezas;
}

int AnioCompleto(const Pieza& pieza) {
    if (pieza.texto.size() > 2) return pieza.numero;
    return pieza.numero < 50 ? 2000 + pieza.numero : 1900 + pieza.numero;
}

int MesDeNombre(std::string_view palabra) {
    if (palabra.size() < 3) return 0;
    for (std::size_t i = 0; i < kMesesCortos.size(); ++i) {
        const std::int64_t ms = AMilisegundos({2000, static_cast<int>(i) + 1, 1});
        if (MismoNombre(palabra, kMesesCortos[i]) ||
            MismoNombre(palabra, NombreParte(ParteFecha::Mes, ms))) {
            return static_cast<int>(i) + 1;
        }
    }
    return 0;
}

/// Reads the pieces of one text from left to right.
class Lector {
public:
    Lector(const std::vector<Pieza>& piezas, OrdenFecha orden) : piezas_(piezas), orden_(orden) {}

    /// False when the text has not the form of a date.
    bool Leer(FechaHora& fecha) {
        if (piezas_.empty()) return true;
        if (!EsHora() && !LeerDia(fecha)) return false;
        if (i_ < piezas_.size() && MismoNombre(piezas_[i_].texto, "T")) ++i_;
        if (i_ < piezas_.size() && !LeerHora(fecha)) return false;
        if (i_ < piezas_.size() && MismoNombre(piezas_[i_].texto, "Z")) ++i_;
        return i_ == piezas_.size();
    }

private:
    bool Signo(std::size_t i, char c) const {
        return i < piezas_.size() && piezas_[i].clase == Pieza::Clase::Signo &&
               piezas_[i].texto[0] == c;
    }
    bool Separador(std::size_t i) const { return Signo(i, '/') || Signo(i, '-') || Signo(i, '.'); }
    bool Numero(std::size_t i) const {
        return i < piezas_.size() && piezas_[i].clase == Pieza::Clase::Numero;
    }
    bool EsTarde(std::size_t i) const {
        return i < piezas_.size() &&
               (MismoNombre(piezas_[i].texto, "PM") || MismoNombre(piezas_[i].texto, "AM"));
    }
    bool EsHora() const { return Numero(i_) && (Signo(i_ + 1, ':') || EsTarde(i_ + 1)); }

    bool LeerDia(FechaHora& fecha) {
        for (std::size_t k = i_; k < piezas_.size() && k < i_ + 4; ++k) {
            if (MesDeNombre(piezas_[k].texto) != 0) return LeerConNombre(fecha);
        }
        if (!Numero(i_)) return false;
        if (!Separador(i_ + 1)) return LeerSeguido(fecha);
        if (!Numero(i_ + 2) || !Separador(i_ + 3) || !Numero(i_ + 4)) return false;
        const std::array<Pieza, 3> p = {piezas_[i_], piezas_[i_ + 2], piezas_[i_ + 4]};
        i_ += 5;
        return Repartir(p, fecha);
    }

    bool Repartir(const std::array<Pieza, 3>& p, FechaHora& fecha) {
        std::size_t anio = orden_ == OrdenFecha::Amd ? 0 : 2;
        std::size_t dia = orden_ == OrdenFecha::Dma ? 0 : orden_ == OrdenFecha::Mda ? 1 : 2;
        std::size_t mes = 3 - anio - dia;
        if (p[0].texto.size() == 4 && orden_ != OrdenFecha::Amd) {
            // A year in front leaves the other two in the connection's order. With a T before the
            // time it is the ISO form, which no setting changes.
            const bool iso = i_ < piezas_.size() && MismoNombre(piezas_[i_].texto, "T");
            anio = 0;
            dia = orden_ == OrdenFecha::Dma && !iso ? 1 : 2;
            mes = 3 - dia;
        } else if (p[2].texto.size() == 4 && orden_ == OrdenFecha::Amd) {
            anio = 2;
            dia = 1;
            mes = 0;
        }
        if (p[dia].texto.size() > 2 || p[mes].texto.size() > 2) return false;
        const auto cifras = p[anio].texto.size();
        if (cifras != 4 && cifras > 2) return false;
        fecha.anio = AnioCompleto(p[anio]);
        fecha.mes = p[mes].numero;
        fecha.dia = p[dia].numero;
        return true;
    }

    bool LeerSeguido(FechaHora& fecha) {
        const Pieza& p = piezas_[i_++];
        if (p.texto.size() == 4) {
            fecha.anio = p.numero;
            return true;
        }
        if (p.texto.size() != 8 && p.texto.size() != 6) return false;
        fecha.dia = p.numero % 100;
        fecha.mes = p.numero / 100 % 100;
        fecha.anio = p.numero / 10000;
        if (p.texto.size() == 6) fecha.anio += fecha.anio < 50 ? 2000 : 1900;
        return true;
    }

    bool LeerConNombre(FechaHora& fecha) {
        std::vector<Pieza> numeros;
        bool con_mes = false;
        while (i_ < piezas_.size() && !EsHora()) {
            const Pieza& p = piezas_[i_];
            if (p.clase == Pieza::Clase::Numero && numeros.size() < 2) {
                numeros.push_back(p);
            } else if (p.clase == Pieza::Clase::Palabra && !con_mes) {
                fecha.mes = MesDeNombre(p.texto);
                con_mes = true;
                if (fecha.mes == 0) return false;
            } else if (p.clase == Pieza::Clase::Signo && (p.texto == "," || Separador(i_))) {
                // between the parts
            } else {
                break;
            }
            ++i_;
        }
        if (!con_mes || numeros.empty()) return false;
        std::size_t anio = numeros[0].texto.size() == 4 ? 0 : 1;
        if (numeros.size() == 1 && anio == 1) return false;
        fecha.anio = AnioCompleto(numeros[anio]);
        fecha.dia = numeros.size() == 1 ? 1 : numeros[1 - anio].numero;
        return true;
    }

    bool LeerHora(FechaHora& fecha) {
        if (!EsHora()) return false;
        fecha.hora = piezas_[i_++].numero;
        if (Signo(i_, ':')) {
            if (!Numero(i_ + 1)) return false;
            fecha.minuto = piezas_[i_ + 1].numero;
            i_ += 2;
            if (Signo(i_, ':')) {
                if (!Numero(i_ + 1)) return false;
                fecha.segundo = piezas_[i_ + 1].numero;
                i_ += 2;
                if (!LeerFraccion(fecha)) return false;
            }
        }
        if (!EsTarde(i_)) return true;
        const bool tarde = MismoNombre(piezas_[i_++].texto, "PM");
        if (fecha.hora > 12 || (fecha.hora == 0 && tarde)) return fecha.hora > 12 && tarde;
        fecha.hora = fecha.hora % 12 + (tarde ? 12 : 0);
        return true;
    }

    bool LeerFraccion(FechaHora& fecha) {
        if (!Signo(i_, '.') && !Signo(i_, ':')) return true;
        if (!Numero(i_ + 1) || piezas_[i_ + 1].texto.size() > 3) return false;
        const Pieza& p = piezas_[i_ + 1];
        fecha.milisegundo = p.numero;
        if (Signo(i_, '.')) {
            for (auto k = p.texto.size(); k < 3; ++k)
                fecha.milisegundo *= 10;
        }
        i_ += 2;
        return true;
    }

    const std::vector<Pieza>& piezas_;
    OrdenFecha orden_;
    std::size_t i_ = 0;
};

std::string Cifras(int numero, std::size_t ancho, char relleno = '0') {
    std::string texto = std::to_string(numero);
    if (texto.size() < ancho) texto.insert(0, ancho - texto.size(), relleno);
    return texto;
}
std::string Dos(int numero) { return Cifras(numero, 2); }

std::string Hora(const FechaHora& f) {
    return Dos(f.hora) + ":" + Dos(f.minuto) + ":" + Dos(f.segundo);
}
std::string Milisegundos(const FechaHora& f) { return Cifras(f.milisegundo, 3); }
std::string HoraDe12(const FechaHora& f) {
    return Cifras(f.hora % 12 == 0 ? 12 : f.hora % 12, 2, ' ') + ":" + Dos(f.minuto);
}
std::string Mitad(const FechaHora& f) { return f.hora < 12 ? "AM" : "PM"; }
std::string MesCorto(const FechaHora& f) {
    return std::string(kMesesCortos[static_cast<std::size_t>(f.mes - 1)]);
}

std::optional<std::string> SoloDia(const FechaHora& f, int estilo) {
    const std::string a = estilo >= 100 ? Cifras(f.anio, 4) : Dos(f.anio % 100);
    const std::string m = Dos(f.mes);
    const std::string d = Dos(f.dia);
    const int base = estilo % 100;
    if (estilo < 0 || estilo > 112) return std::nullopt;
    if (base == 1) return m + "/" + d + "/" + a;
    if (base == 2) return a + "." + m + "." + d;
    if (base == 3) return d + "/" + m + "/" + a;
    if (base == 4) return d + "." + m + "." + a;
    if (base == 5) return d + "-" + m + "-" + a;
    if (base == 6) return d + " " + MesCorto(f) + " " + a;
    if (base == 7) return MesCorto(f) + " " + d + ", " + a;
    if (base == 10) return m + "-" + d + "-" + a;
    if (base == 11) return a + "/" + m + "/" + d;
    if (base == 12) return a + m + d;
    return std::nullopt;
}

}  // namespace

LecturaFecha LeerFecha(std::string_view texto, OrdenFecha orden) {
    const auto piezas = Partir(texto);
    FechaHora fecha;
    if (!piezas || !Lector(*piezas, orden).Leer(fecha)) return {0, FalloFecha::Forma};
    if (!EsValida(fecha)) return {0, FalloFecha::Rango};
    return {RedondearFecha(AMilisegundos(fecha)), std::nullopt};
}

OrdenFecha OrdenDeEstilo(int estilo, OrdenFecha orden) {
    constexpr std::array kDma = {3, 4, 5, 6, 13, 103, 104, 105, 106, 113};
    constexpr std::array kMda = {1, 10, 101, 110, 7, 107, 9, 109, 100};
    constexpr std::array kAmd = {2, 11, 12, 102, 111, 112, 20, 21, 120, 121, 126};
    for (const int e : kDma) {
        if (e == estilo) return OrdenFecha::Dma;
    }
    for (const int e : kMda) {
        if (e == estilo) return OrdenFecha::Mda;
    }
    for (const int e : kAmd) {
        if (e == estilo) return OrdenFecha::Amd;
    }
    return orden;
}

std::optional<std::string> FormatearFecha(std::int64_t ms, int estilo) {
    const FechaHora f = AFechaHora(ms);
    const std::string dia_mes =
        MesCorto(f) + " " + Cifras(f.dia, 2, ' ') + " " + Cifras(f.anio, 4) + " ";
    const std::string iso = Cifras(f.anio, 4) + "-" + Dos(f.mes) + "-" + Dos(f.dia);
    if (estilo == 0 || estilo == 100) return dia_mes + HoraDe12(f) + Mitad(f);
    if (estilo == 9 || estilo == 109) {
        return dia_mes + HoraDe12(f) + ":" + Dos(f.segundo) + ":" + Milisegundos(f) + Mitad(f);
    }
    if (estilo == 8 || estilo == 24 || estilo == 108) return Hora(f);
    if (estilo == 13 || estilo == 113) {
        return Dos(f.dia) + " " + MesCorto(f) + " " + Cifras(f.anio, 4) + " " + Hora(f) + ":" +
               Milisegundos(f);
    }
    if (estilo == 14 || estilo == 114) return Hora(f) + ":" + Milisegundos(f);
    if (estilo == 20 || estilo == 120) return iso + " " + Hora(f);
    if (estilo == 21 || estilo == 25 || estilo == 121) {
        return iso + " " + Hora(f) + "." + Milisegundos(f);
    }
    if (estilo == 126) {
        return iso + "T" + Hora(f) + (f.milisegundo == 0 ? "" : "." + Milisegundos(f));
    }
    return SoloDia(f, estilo);
}

}  // namespace quimo::tsql
