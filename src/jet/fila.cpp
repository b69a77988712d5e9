#include "jet/fila.h"

#include <bit>
#include <cstring>

#include "base/check.h"
#include "jet/pagina_datos.h"
#include "jet/texto.h"

namespace quimo::jet {

namespace {

constexpr int kSaltosMax = 16;
constexpr base::Int128 kMagnitudMax = [] {
    base::Int128 v = 1;
    for (int i = 0; i < base::Decimal::kDigitosMax; ++i)
        v *= 10;
    return v;
}();

std::optional<base::Decimal> LeerDecimal(const std::uint8_t* p, int escala) {
    __extension__ unsigned __int128 magnitud = 0;
    for (int i = 0; i < 4; ++i)
        magnitud = magnitud << 32 | U32(p + 1 + 4 * i);
    const auto digitos = static_cast<base::Int128>(magnitud);
    if (digitos < 0 || digitos >= kMagnitudMax) return std::nullopt;
    return base::Decimal{(p[0] & 0x80) != 0 ? -digitos : digitos, escala};
}

Guid LeerGuid(const std::uint8_t* p) {
    return Guid{{p[3], p[2], p[1], p[0], p[5], p[4], p[7], p[6], p[8], p[9], p[10], p[11], p[12],
                 p[13], p[14], p[15]}};
}

template <typename T>
T& Como(Valor& destino) {
    if (T* actual = std::get_if<T>(&destino)) return *actual;
    return destino.emplace<T>();
}

Error ValorDanado(const Lectura& lectura, const Esquema& esquema, std::size_t columna) {
    return lectura.almacen.Danado("un valor de " + NombrarColumna(esquema, columna) +
                                  " no se puede leer");
}

/// Types of one size. False when the bytes are no value of the type.
bool LeerDeTamanoFijo(const DefColumna& def, const std::uint8_t* p, Valor& destino) {
    switch (def.tipo) {
        case TipoColumna::Byte:
            destino = std::int32_t{p[0]};
            return true;
        case TipoColumna::Entero:
            destino = std::int32_t{static_cast<std::int16_t>(U16(p))};
            return true;
        case TipoColumna::Largo:
            destino = static_cast<std::int32_t>(U32(p));
            return true;
        case TipoColumna::Moneda:
            destino = base::Dinero::DeDiezmilesimas(static_cast<std::int64_t>(U64(p)));
            return true;
        case TipoColumna::Simple:
            destino = std::bit_cast<float>(U32(p));
            return true;
        case TipoColumna::Doble:
            destino = std::bit_cast<double>(U64(p));
            return true;
        case TipoColumna::Fecha:
            destino = Fecha{std::bit_cast<double>(U64(p))};
            return true;
        case TipoColumna::Guid:
            destino = LeerGuid(p);
            return true;
        case TipoColumna::Numerico: {
            const auto decimal = LeerDecimal(p, def.escala);
            if (decimal) destino = *decimal;
            return decimal.has_value();
        }
        case TipoColumna::Logico:
        case TipoColumna::Binario:
        case TipoColumna::Texto:
        case TipoColumna::Ole:
        case TipoColumna::Memo:
        case TipoColumna::Bloque:
            break;
    }
    Como<Binario>(destino).assign(p, p + TamanoFijo(def.tipo));
    return true;
}

}  // namespace

std::optional<VistaFila> VistaFila::De(const Esquema& esquema,
                                       std::span<const std::uint8_t> bytes) {
    VistaFila vista;
    vista.bytes_ = bytes;
    const std::size_t largo = bytes.size();
    if (largo < 3) return std::nullopt;
    vista.columnas_ = U16(bytes.data());
    const std::size_t mascara = (vista.columnas_ + 7) / 8;
    if (vista.columnas_ == 0 || vista.columnas_ > esquema.ranuras_columna || 2 + mascara > largo) {
        return std::nullopt;
    }
    vista.mascara_ = bytes.data() + largo - mascara;
    vista.fin_fija_ = largo - mascara;
    if (esquema.ranuras_variables == 0) return vista;
    if (2 + mascara + 4 > largo) return std::nullopt;
    vista.v_ = bytes.data() + largo - mascara - 2;
    vista.variables_ = U16(vista.v_);
    const std::size_t tabla = 4 + 2 * vista.variables_;
    if (vista.variables_ > esquema.ranuras_variables || 2 + mascara + tabla > largo) {
        return std::nullopt;
    }
    // The fixed part ends where the first variable value begins (or the end mark, without any).
    const std::size_t primero = U16(vista.v_ - 2);
    vista.fin_fija_ = largo - mascara - tabla;
    if (primero < 2 || primero > vista.fin_fija_) return std::nullopt;
    vista.fin_fija_ = primero;
    return vista;
}

std::optional<std::span<const std::uint8_t>> VistaFila::Bytes(const ColumnaFisica& columna) const {
    if (columna.fija) {
        const std::size_t desde = 2 + std::size_t{columna.desplazamiento};
        if (desde + columna.bytes > fin_fija_) return std::nullopt;
        return bytes_.subspan(desde, columna.bytes);
    }
    if (columna.ranura_variable >= variables_) return std::nullopt;
    const std::uint8_t* p = v_ - 2 - 2 * std::size_t{columna.ranura_variable};
    const std::size_t desde = U16(p);
    const std::size_t hasta = U16(p - 2);
    const auto limite = static_cast<std::size_t>(v_ - bytes_.data()) - 2 - 2 * variables_;
    if (desde < fin_fija_ || hasta < desde || hasta > limite) return std::nullopt;
    return bytes_.subspan(desde, hasta - desde);
}

bool VistaFila::PosicionesSanas() const {
    if (v_ == nullptr) return true;
    const auto limite = static_cast<std::size_t>(v_ - bytes_.data()) - 2 - 2 * variables_;
    std::size_t anterior = fin_fija_;
    for (std::size_t i = 0; i <= variables_; ++i) {  // the last one is the end mark
        const std::size_t posicion = U16(v_ - 2 - 2 * i);
        if (posicion < anterior) return false;
        anterior = posicion;
    }
    return anterior <= limite;
}

Result<void> LeerValor(Lectura& lectura, const Esquema& esquema, const VistaFila& vista,
                       std::size_t columna, Valor& destino) {
    const DefColumna& def = esquema.tabla.columnas[columna];
    const ColumnaFisica& fisica = esquema.fisicas[columna];
    const bool bit = vista.Bit(fisica);
    if (def.tipo == TipoColumna::Logico) {
        destino = bit;
        return {};
    }
    if (!bit || (!fisica.fija && fisica.ranura_variable >= vista.Variables())) {
        destino = std::monostate{};
        return {};
    }
    const auto bytes = vista.Bytes(fisica);
    if (!bytes) return ValorDanado(lectura, esquema, columna);
    if (const std::size_t fijo = TamanoFijo(def.tipo); fijo != 0) {
        if (bytes->size() != fijo || !LeerDeTamanoFijo(def, bytes->data(), destino)) {
            return ValorDanado(lectura, esquema, columna);
        }
        return {};
    }
    if (EsLargo(def.tipo) && !bytes->empty()) {
        QUIMO_TRY_VOID(LeerLargo(lectura.almacen, *bytes, lectura.presupuesto, lectura.largo));
        if (def.tipo == TipoColumna::Memo) {
            DescifrarTexto(lectura.largo, Como<std::u16string>(destino));
        } else {
            Como<Binario>(destino).assign(lectura.largo.begin(), lectura.largo.end());
        }
        return {};
    }
    if (EsTexto(def.tipo)) {
        DescifrarTexto(*bytes, Como<std::u16string>(destino));
    } else {
        Como<Binario>(destino).assign(bytes->begin(), bytes->end());
    }
    return {};
}

Result<void> LeerValores(Lectura& lectura, const Esquema& esquema,
                         std::span<const std::uint8_t> bytes, Fila& destino) {
    const auto vista = VistaFila::De(esquema, bytes);
    if (!vista || !lectura.presupuesto.Gastar(bytes.size())) {
        return lectura.almacen.Danado("una fila de la tabla " + esquema.tabla.nombre +
                                      " no se puede leer");
    }
    destino.resize(esquema.fisicas.size());
    for (std::size_t i = 0; i < destino.size(); ++i) {
        QUIMO_TRY_VOID(LeerValor(lectura, esquema, *vista, i, destino[i]));
    }
    return {};
}

Result<FilaCruda> SeguirFila(Almacen& almacen, const Esquema& esquema, Puntero lugar,
                             std::vector<Puntero>* paso) {
    QUIMO_TRY(FilaCruda fila, LeerFilaCruda(almacen, lugar));
    for (int salto = 0; (fila.ranura.banderas & kRanuraMovida) != 0; ++salto) {
        if (fila.ranura.Borrada() || fila.ranura.Largo() < 4 || salto == kSaltosMax) break;
        const Puntero destino = Puntero::Leer(fila.Bytes().data());
        QUIMO_TRY(fila, LeerFilaCruda(almacen, destino));
        if (paso != nullptr) paso->push_back(destino);
        // Moved content lies in a hidden slot; another moved one may stand in between.
        if (!fila.ranura.Oculta() && !fila.ranura.Movida()) break;
    }
    const bool llego =
        fila.lugar == lugar ? fila.ranura.banderas == 0 : fila.ranura.banderas == kRanuraOculta;
    if (!llego || Dueno(*fila.pagina) != esquema.pagina) {
        return almacen.Danado("la fila de la " + lugar.ATexto() + ", de la tabla " +
                              esquema.tabla.nombre + " no lleva a su contenido");
    }
    return fila;
}

Result<FilaCruda> AbrirFila(Almacen& almacen, const Esquema& esquema, IdFila id,
                            std::vector<Puntero>* paso) {
    QUIMO_TRY(const PaginaLeida pagina, almacen.Leer(id.pagina));
    const auto ranura = LeerRanura(*pagina, id.fila);
    if (!EsDeDatos(*pagina) || Dueno(*pagina) != esquema.pagina || !ranura || ranura->Oculta()) {
        return Error{Error::Codigo::NoEncontrado,
                     "La tabla " + esquema.tabla.nombre + " no tiene esa fila.",
                     Puntero{id.pagina, id.fila}.ATexto()};
    }
    return SeguirFila(almacen, esquema, {id.pagina, id.fila}, paso);
}

void DescifrarTexto(std::span<const std::uint8_t> bytes, std::u16string& destino) {
    if (bytes.size() < 2 || bytes[0] != 0xFF || bytes[1] != 0xFE) {
        destino.resize(bytes.size() / 2);
        const std::uint8_t* p = bytes.data();
        for (char16_t& c : destino) {
            c = static_cast<char16_t>(U16(p));
            p += 2;
        }
        return;
    }
    destino.clear();
    bytes = bytes.subspan(2);
    bool doble = false;
    while (true) {
        const auto* cero =
            bytes.empty()
                ? nullptr
                : static_cast<const std::uint8_t*>(std::memchr(bytes.data(), 0, bytes.size()));
        const auto tramo =
            cero == nullptr ? bytes : bytes.first(static_cast<std::size_t>(cero - bytes.data()));
        const std::size_t antes = destino.size();
        destino.resize(antes + (doble ? tramo.size() / 2 : tramo.size()));
        for (std::size_t i = antes; i < destino.size(); ++i) {
            const std::size_t k = i - antes;
            destino[i] = static_cast<char16_t>(doble ? U16(tramo.data() + 2 * k) : tramo[k]);
        }
        if (cero == nullptr) return;
        bytes = bytes.subspan(tramo.size() + 1);
        doble = !doble;
    }
}

void Canonizar(const Esquema& esquema, std::size_t columna, const Celda& celda, Valor& valor) {
    const DefColumna& def = esquema.tabla.columnas[columna];
    if (def.tipo == TipoColumna::Logico) {
        valor = celda.tiene_valor;
    } else if (celda.tiene_valor && TamanoFijo(def.tipo) != 0) {
        QUIMO_CHECK(celda.bytes.size() == TamanoFijo(def.tipo));
        QUIMO_CHECK(LeerDeTamanoFijo(def, celda.bytes.data(), valor));
    }
}

std::string Mostrar(const Valor& valor) {
    constexpr std::size_t kMuestra = 40;
    if (EsNulo(valor)) return "(vacío)";
    if (const auto* n = std::get_if<std::int32_t>(&valor)) return std::to_string(*n);
    if (const auto* d = std::get_if<base::Dinero>(&valor)) return d->ATexto();
    if (const auto* d = std::get_if<base::Decimal>(&valor)) return d->ATexto();
    if (const auto* g = std::get_if<Guid>(&valor)) return g->ATexto();
    if (const auto* t = std::get_if<std::u16string>(&valor)) {
        return "«" + AUtf8(std::u16string_view(*t).substr(0, kMuestra)) + "»";
    }
    return "…";
}

std::string NombrarColumna(const Esquema& esquema, std::size_t columna) {
    return "la columna " + esquema.tabla.columnas[columna].nombre + " de la tabla " +
           esquema.tabla.nombre;
}

}  // namespace quimo::jet
