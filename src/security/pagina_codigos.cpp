#include "security/pagina_codigos.h"

#include <algorithm>
#include <array>
#include <optional>

namespace quimo::security {

namespace {

// The page is Latin-1 but for these: bytes 0x80 to 0x9F.
constexpr char16_t kPrimero = 0x80;
constexpr std::array<char16_t, 32> kAltos = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

std::optional<char> Byte(QChar letra) {
    const char16_t codigo = letra.unicode();
    if (codigo < kPrimero || (codigo >= kPrimero + kAltos.size() && codigo <= 0xFF)) {
        return static_cast<char>(codigo);
    }
    const auto* const lugar = std::find(kAltos.begin(), kAltos.end(), codigo);
    if (lugar == kAltos.end()) return std::nullopt;
    return static_cast<char>(kPrimero + (lugar - kAltos.begin()));
}

}  // namespace

QByteArray APagina(const QString& texto) {
    QByteArray bytes;
    bytes.reserve(texto.size());
    for (const QChar letra : texto)
        bytes += Byte(letra).value_or('?');
    return bytes;
}

QString DePagina(const QByteArray& bytes) {
    QString texto;
    texto.reserve(bytes.size());
    for (const char byte : bytes) {
        const auto codigo = static_cast<unsigned char>(byte);
        const bool alto = codigo >= kPrimero && codigo < kPrimero + kAltos.size();
        texto += QChar(alto ? kAltos[codigo - kPrimero] : char16_t{codigo});
    }
    return texto;
}

bool CabeEnPagina(const QString& texto) {
    return std::all_of(texto.begin(), texto.end(),
                       [](QChar letra) { return Byte(letra).has_value(); });
}

}  // namespace quimo::security
