// Page 0.

#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <string_view>

#include "jet/catalogo.h"

namespace quimo::jet {

namespace {

using Bloque = std::array<std::uint8_t, 128>;

constexpr std::size_t kPosBloque = 0x18;
constexpr std::size_t kPosFirma = 0x04;
constexpr std::size_t kPosVersion = 0x14;
constexpr std::size_t kPosUsuarios = 0xE00;
// Offsets inside the block.
constexpr std::size_t kEnPaginas = 0x20 - kPosBloque;
constexpr std::size_t kEnPaginaDeCodigos = 0x3C - kPosBloque;
constexpr std::size_t kEnCifrado = 0x3E - kPosBloque;
constexpr std::size_t kEnContrasena = 0x42 - kPosBloque;
constexpr std::size_t kLargoContrasena = 40;
constexpr std::size_t kEnPalabra = 0x6A - kPosBloque;
constexpr std::size_t kEnOrden = 0x6E - kPosBloque;
constexpr std::size_t kEnSello = 0x72 - kPosBloque;

constexpr std::string_view kFirma = "Standard Jet DB";
constexpr std::array<std::uint8_t, 4> kInicio = {0x00, 0x01, 0x00, 0x00};
constexpr std::array<std::uint8_t, 8> kTrasBloque = {0x54, 0x06, 0, 0, 0x34, 0x2E, 0x30, 0};
constexpr std::array<std::uint8_t, 8> kInicioBloque = {0, 1, 0, 0, 1, 1, 0, 0};
// A stamp, a word and the owner ids of crear_base.cpp that go together.
constexpr std::array<std::uint8_t, 8> kSello = {0x3E, 0x85, 0xD3, 0x3B, 0x3E, 0xAB, 0xE4, 0x40};
constexpr std::array<std::uint8_t, 2> kPalabra = {0x1C, 0x26};
constexpr std::array<std::uint8_t, 4> kSinContrasena = {0x59, 0xA5, 0x00, 0x00};

constexpr Bloque kMascara = {
    0xB5, 0x6F, 0x03, 0x62, 0x61, 0x08, 0xC2, 0x55, 0xEB, 0xA9, 0x67, 0x72, 0x43, 0x3F, 0x00, 0x9C,
    0x7A, 0x9F, 0x90, 0xFF, 0x80, 0x9A, 0x31, 0xC5, 0x79, 0xBA, 0xED, 0x30, 0xBC, 0xDF, 0xCC, 0x9D,
    0x63, 0xD9, 0xE4, 0xC3, 0x7B, 0x42, 0xFB, 0x8A, 0xBC, 0x4E, 0x86, 0xFB, 0xEC, 0x37, 0x5D, 0x44,
    0x9C, 0xFA, 0xC6, 0x5E, 0x28, 0xE6, 0x13, 0xB6, 0x8A, 0x60, 0x54, 0x94, 0x7B, 0x36, 0xF5, 0x72,
    0xDF, 0xB1, 0x77, 0xF4, 0x13, 0x43, 0xCF, 0xAF, 0xB1, 0x33, 0x34, 0x61, 0x79, 0x5B, 0x92, 0xB5,
    0x7C, 0x2A, 0x05, 0xF1, 0x7C, 0x99, 0x01, 0x1B, 0x98, 0xFD, 0x12, 0x4F, 0x4A, 0x94, 0x6C, 0x3E,
    0x60, 0x26, 0x5F, 0x95, 0xF8, 0xD0, 0x89, 0x24, 0x85, 0x67, 0xC6, 0x1F, 0x27, 0x44, 0xD2, 0xEE,
    0xCF, 0x65, 0xED, 0xFF, 0x07, 0xC7, 0x46, 0xA1, 0x78, 0x16, 0x0C, 0xED, 0xE9, 0x2D, 0x62, 0xD4,
};

bool TieneFirma(const Pagina& pagina, std::string_view firma) {
    const std::uint8_t* p = pagina.data() + kPosFirma;
    return std::memcmp(p, firma.data(), firma.size()) == 0 && p[firma.size()] == 0;
}

Error NoEs(const Almacen& almacen, const std::string& que) {
    return {Error::Codigo::NoSoportado, "El archivo " + almacen.Ruta() + " " + que + "."};
}

}  // namespace

std::array<std::uint8_t, 128> BloqueEnClaro(const Pagina& cabecera) {
    Bloque bloque{};
    for (std::size_t i = 0; i < bloque.size(); ++i) {
        bloque.at(i) =
            static_cast<std::uint8_t>(cabecera.bytes.at(kPosBloque + i) ^ kMascara.at(i));
    }
    return bloque;
}

OrdenTexto OrdenDeCabecera(const Pagina& cabecera) {
    const Bloque bloque = BloqueEnClaro(cabecera);
    return {U16(bloque.data() + kEnOrden), bloque.at(kEnOrden + 3)};
}

Result<void> ComprobarCabecera(Almacen& almacen) {
    QUIMO_TRY_VOID(ComprobarFormato(almacen));
    if (almacen.Sobrante() != 0) return almacen.Danado("está cortado a media página");
    return {};
}

Result<void> ComprobarFormato(Almacen& almacen) {
    QUIMO_TRY(const PaginaLeida pagina, almacen.Leer(0));
    if (TieneFirma(*pagina, "Standard ACE DB") || TieneFirma(*pagina, "MSISAM Database")) {
        return NoEs(almacen, "es de un formato posterior (accdb), que no se lee");
    }
    if (!TieneFirma(*pagina, kFirma) ||
        std::memcmp(pagina->data(), kInicio.data(), kInicio.size()) != 0) {
        return Error{Error::Codigo::Formato,
                     "El archivo " + almacen.Ruta() + " no es una base de datos mdb."};
    }
    const std::uint32_t version = U32(pagina->data() + kPosVersion);
    if (version == 0)
        return NoEs(almacen, "es de un formato anterior (Access 97, Jet 3), que no se lee");
    if (version != 1)
        return NoEs(almacen, "es de un formato posterior al de Access 2003, que no se lee");
    const Bloque bloque = BloqueEnClaro(*pagina);
    if (U32(bloque.data() + kEnCifrado) != 0) return NoEs(almacen, "está cifrado y no se lee");
    const auto sello = std::bit_cast<double>(U64(bloque.data() + kEnSello));
    if (!(std::fabs(sello) < 2147483648.0))
        return almacen.Danado("su fecha de creación no es posible");
    std::array<std::uint8_t, 4> clave{};
    PonerU32(clave.data(), static_cast<std::uint32_t>(static_cast<std::int32_t>(sello)));
    for (std::size_t i = 0; i < kLargoContrasena; ++i) {
        if (bloque.at(kEnContrasena + i) != clave.at(i % clave.size())) {
            return NoEs(almacen, "tiene contraseña y no se lee");
        }
    }
    return {};
}

Pagina CabeceraNueva() {
    Bloque bloque{};
    const auto poner = [&bloque](std::size_t desde, const auto& bytes) {
        std::memcpy(bloque.data() + desde, bytes.data(), bytes.size());
    };
    poner(0, kInicioBloque);
    for (std::uint32_t i = 0; i < 4; ++i) {
        PonerU32(bloque.data() + kEnPaginas + std::size_t{4} * i, kPaginaCatalogo + i);
    }
    PonerU16(bloque.data() + kEnPaginaDeCodigos, 1252);
    for (std::size_t i = 0; i < kLargoContrasena; i += kSinContrasena.size()) {
        poner(kEnContrasena + i, kSinContrasena);
    }
    poner(kEnPalabra, kPalabra);
    PonerU16(bloque.data() + kEnOrden, kOrdenGeneral);
    poner(kEnSello, kSello);

    Pagina pagina;
    std::uint8_t* p = pagina.data();
    std::memcpy(p, kInicio.data(), kInicio.size());
    std::memcpy(p + kPosFirma, kFirma.data(), kFirma.size());
    PonerU32(p + kPosVersion, 1);
    for (std::size_t i = 0; i < bloque.size(); ++i) {
        p[kPosBloque + i] = static_cast<std::uint8_t>(bloque.at(i) ^ kMascara.at(i));
    }
    std::memcpy(p + kPosBloque + bloque.size(), kTrasBloque.data(), kTrasBloque.size());
    for (std::size_t i = kPosUsuarios; i < kTamPagina; i += 2)
        PonerU16(p + i, 0x0100);
    PonerU16(p + kPosUsuarios, 0x0101);
    return pagina;
}

}  // namespace quimo::jet
