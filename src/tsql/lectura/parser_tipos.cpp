#include <algorithm>

#include "tsql/lectura/parser_interno.h"
#include "tsql/valores/texto.h"

namespace quimo::tsql {

Resultado<Tipo> ParserExpresiones::LeerTipo(bool en_conversion) {
    if (cursor_.EsPalabra("DOUBLE") && cursor_.EsPalabra("PRECISION", 1)) cursor_.Avanzar();
    const bool nacional = cursor_.Aceptar("NATIONAL");
    if (!cursor_.HayNombre()) return cursor_.Sintaxis();
    const std::string nombre(cursor_.Actual().texto);
    const auto clase = MismoNombre(nombre, "PRECISION") ? Clase::Float : ClasePorNombre(nombre);
    if (!clase) return TipoDesconocido(nombre);
    cursor_.Avanzar();
    Clase elegida = *clase;
    if (cursor_.Aceptar("VARYING") && elegida == Clase::Char) elegida = Clase::VarChar;
    if (nacional) elegida = elegida == Clase::Char ? Clase::NChar : Clase::NVarChar;
    return ConLongitud(elegida, en_conversion);
}

Resultado<Tipo> ParserExpresiones::ConLongitud(Clase clase, bool en_conversion) {
    Tipo tipo{clase};
    std::vector<std::int64_t> numeros;
    bool maximo = false;
    if (cursor_.Aceptar("(")) {
        maximo = cursor_.Aceptar("MAX");
        while (!maximo) {
            QUIMO_TRY(const std::int64_t numero, cursor_.EnteroFijo());
            numeros.push_back(numero);
            if (numeros.size() == 2 || !cursor_.Aceptar(",")) break;
        }
        QUIMO_TRY_VOID(cursor_.Exigir(")"));
    }
    if (tipo.EsEntero()) tipo = TipoEntero(clase);
    if (tipo.EsMoneda()) tipo = clase == Clase::Money ? TipoMoneda() : Tipo{clase, 0, 10, 4};
    if (clase == Clase::Numeric) {
        tipo = TipoNumerico(18, 0);
        if (!numeros.empty()) {
            if (numeros[0] > kDigitosMaximos) return PrecisionExcesiva(std::to_string(numeros[0]));
            tipo.precision = static_cast<int>(numeros[0]);
            tipo.escala =
                numeros.size() > 1 ? static_cast<int>(std::min<std::int64_t>(numeros[1], 99)) : 0;
        }
        if (tipo.escala > tipo.precision || tipo.precision < 1) {
            return EscalaExcesiva(std::to_string(tipo.escala), std::to_string(tipo.precision));
        }
    }
    if (clase == Clase::Float && !numeros.empty() && numeros[0] <= 24) tipo.clase = Clase::Real;
    const bool de_largo = (tipo.EsTexto() && clase != Clase::Text && clase != Clase::NText) ||
                          clase == Clase::Binary || clase == Clase::VarBinary;
    if (de_largo) {
        const int limite = tipo.EsNacional() ? kLongitudMaxima / 2 : kLongitudMaxima;
        tipo.longitud = maximo ? -1 : en_conversion ? 30 : 1;
        if (!numeros.empty()) {
            if (numeros[0] < 1 || numeros[0] > limite)
                return cursor_.SintaxisEn(cursor_.Indice() - 2);
            tipo.longitud = static_cast<int>(numeros[0]);
        }
    } else if (clase == Clase::Text || clase == Clase::NText || clase == Clase::Image) {
        tipo.longitud = -1;
    }
    return tipo;
}

}  // namespace quimo::tsql
