#include "foundation/reglas_campo.h"

using namespace Qt::StringLiterals;

namespace quimo::foundation {

namespace {

constexpr int kGrupos = 4;
constexpr int kGrupoMax = 255;

bool EsDigito(QChar letra) { return letra >= u'0' && letra <= u'9'; }

bool EsLetraSinAcento(QChar letra) {
    return (letra >= u'A' && letra <= u'Z') || (letra >= u'a' && letra <= u'z');
}

}  // namespace

ReglasCampo::ReglasCampo(const QString& etiqueta)
    : numerico_(etiqueta.contains(u"Numerico"_s, Qt::CaseInsensitive)),
      mayusculas_(etiqueta.contains(u"Mayusculas"_s, Qt::CaseInsensitive)),
      no_vacio_(etiqueta.contains(u"NoVacio"_s, Qt::CaseInsensitive)),
      no_signos_(etiqueta.contains(u"NoSignos"_s, Qt::CaseInsensitive)),
      ip_(etiqueta.contains(u"IP"_s, Qt::CaseInsensitive)) {}

std::optional<QChar> ReglasCampo::Filtrar(QChar letra) const {
    if (letra == u'\b') return letra;
    if (ip_) {
        if (EsDigito(letra) || letra == u'.') return letra;
        return std::nullopt;
    }
    if (mayusculas_) letra = letra.toUpper();
    if (numerico_ && !EsDigito(letra) && letra != u'.') return std::nullopt;
    if (no_signos_ && !EsLetraSinAcento(letra) && !EsDigito(letra) && letra != u' ') {
        return std::nullopt;
    }
    return letra;
}

QString ReglasCampo::Filtrar(const QString& texto) const {
    QString filtrado;
    for (const QChar letra : texto) {
        if (const auto queda = Filtrar(letra)) filtrado += *queda;
    }
    return filtrado;
}

ReglasCampo::Salida ReglasCampo::AlSalir(const QString& texto) const {
    if (texto.isEmpty()) {
        return {no_vacio_ ? u"Este campo no puede estar vacío"_s : QString(), false};
    }
    if (!ip_ || EsDireccionIp(texto)) return {};
    return {u"La direcciòn IP no es válida"_s, true};
}

bool EsDireccionIp(const QString& texto) {
    int grupos = 1;
    int valor = 0;
    bool vacio = true;
    for (const QChar letra : texto) {
        if (letra == u'.') {
            ++grupos;
            valor = 0;
            vacio = true;
            continue;
        }
        vacio = false;
        if (EsDigito(letra)) valor = valor * 10 + letra.digitValue();
        if (valor > kGrupoMax) return false;
    }
    return grupos == kGrupos && !vacio;
}

}  // namespace quimo::foundation
