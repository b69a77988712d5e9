#include "tsql/lectura/lexer.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "tsql/valores/decimales.h"
#include "tsql/valores/texto.h"

namespace quimo::tsql {

namespace {

constexpr bool EsCifra(char c) { return c >= '0' && c <= '9'; }
constexpr bool EsInicio(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == '#' ||
           static_cast<unsigned char>(c) >= 0x80;
}
/// Which of the 256 bytes may stand inside a name. Most of a text is names.
constexpr std::array<bool, 256> kDeNombre = [] {
    std::array<bool, 256> tabla{};
    for (std::size_t i = 0; i < tabla.size(); ++i) {
        const char c = static_cast<char>(i);
        tabla[i] = EsInicio(c) || EsCifra(c) || c == '@' || c == '$';
    }
    return tabla;
}();
bool EsDeNombre(char c) { return kDeNombre[static_cast<unsigned char>(c)]; }
/// Two signs that are one: <> <= >= != !< !> += -= *= /= %=
bool EsDoble(char primero, char segundo) {
    if (segundo == '=') return std::string_view("<>!+-*/%").find(primero) != std::string_view::npos;
    if (segundo == '>') return primero == '<' || primero == '!';
    return segundo == '<' && primero == '!';
}
bool EsBlanco(char c) { return c == ' ' || (c >= '\t' && c <= '\r') || c == '\0'; }

int Hex(char c) {
    if (EsCifra(c)) return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

constexpr std::size_t kCifrasCortas = 9;

class Cortador {
public:
    enum class Tokens { No, Si };

    Cortador(std::string_view texto, Lexico& lexico, Tokens tokens)
        : texto_(texto), lexico_(lexico), con_tokens_(tokens == Tokens::Si) {
        lexico_.tokens.clear();
        lexico_.literales.clear();
        lexico_.parametros = 0;
        lexico_.forma.clear();
        lexico_.forma.reserve(texto.size());
        if (con_tokens_) lexico_.tokens.reserve(texto.size() / 4 + 8);
        lexico_.literales.reserve(texto.size() / 16 + 4);
    }

    base::Result<void, ErrorSql> Cortar() {
        if (texto_.size() > kTextoMaximo) return DemasiadoAnidado();
        while (true) {
            QUIMO_TRY_VOID(SaltarBlancos());
            if (i_ >= texto_.size()) break;
            QUIMO_TRY_VOID(Uno());
        }
        lexico_.forma.append(texto_.substr(copiado_));
        Agregar(Token::Clase::Fin, i_, i_);
        return {};
    }

private:
    char En(std::size_t i) const { return i < texto_.size() ? texto_[i] : '\0'; }

    void Agregar(Token::Clase clase, std::size_t desde, std::size_t hasta) {
        if (!con_tokens_) return;
        lexico_.tokens.push_back({clase, texto_.substr(desde, hasta - desde), desde, hasta, -1});
    }

    base::Result<void, ErrorSql> SaltarBlancos() {
        while (i_ < texto_.size()) {
            if (EsBlanco(texto_[i_])) {
                ++i_;
            } else if (texto_[i_] == '-' && En(i_ + 1) == '-') {
                while (i_ < texto_.size() && texto_[i_] != '\n')
                    ++i_;
            } else if (texto_[i_] == '/' && En(i_ + 1) == '*') {
                int nivel = 0;
                do {
                    if (i_ + 1 >= texto_.size()) return ComentarioSinCerrar();
                    if (texto_[i_] == '/' && texto_[i_ + 1] == '*') {
                        ++nivel;
                        i_ += 2;
                    } else if (texto_[i_] == '*' && texto_[i_ + 1] == '/') {
                        --nivel;
                        i_ += 2;
                    } else {
                        ++i_;
                    }
                } while (nivel > 0);
            } else {
                break;
            }
        }
        return {};
    }

    base::Result<void, ErrorSql> Uno() {
        const char c = texto_[i_];
        if (c == '\'') return Cadena(false);
        if ((c == 'N' || c == 'n') && En(i_ + 1) == '\'') {
            ++i_;
            return Cadena(true);
        }
        if (c == '[' || c == '"') return Delimitado();
        if (c == '0' && (En(i_ + 1) == 'x' || En(i_ + 1) == 'X')) return Binario();
        if (EsCifra(c) || (c == '.' && EsCifra(En(i_ + 1)))) return Numero();
        if (c == '$' && (EsCifra(En(i_ + 1)) || En(i_ + 1) == '.')) return Dinero();
        if (EsInicio(c)) {
            Palabra(Token::Clase::Palabra, 1);
        } else if (c == '@') {
            const bool global = En(i_ + 1) == '@';
            Palabra(global ? Token::Clase::Global : Token::Clase::Variable, global ? 2 : 1);
        } else if (c == '?') {
            Agregar(Token::Clase::Parametro, i_, i_ + 1);
            if (con_tokens_) lexico_.tokens.back().literal = lexico_.parametros;
            ++lexico_.parametros;
            ++i_;
        } else {
            return Signo();
        }
        return {};
    }

    void Palabra(Token::Clase clase, std::size_t prefijo) {
        std::size_t fin = i_ + prefijo;
        while (fin < texto_.size() && EsDeNombre(texto_[fin]))
            ++fin;
        Agregar(clase, i_, fin);
        i_ = fin;
    }

    base::Result<void, ErrorSql> Signo() {
        constexpr std::string_view kSimples = "+-*/%=<>(),.;&|^~:";
        const bool doble = EsDoble(texto_[i_], En(i_ + 1));
        if (!doble && kSimples.find(texto_[i_]) == std::string_view::npos) {
            return SintaxisIncorrecta(std::string(texto_.substr(i_, 1)), Lugar(texto_, i_));
        }
        Agregar(Token::Clase::Signo, i_, i_ + (doble ? 2 : 1));
        i_ += doble ? 2 : 1;
        return {};
    }

    base::Result<void, ErrorSql> Delimitado() {
        const char cierre = texto_[i_] == '[' ? ']' : '"';
        std::size_t fin = i_ + 1;
        while (true) {
            if (fin >= texto_.size()) return TextoSinCerrar(std::string(texto_.substr(i_ + 1)));
            if (texto_[fin] == cierre) {
                if (En(fin + 1) != cierre) break;
                ++fin;
            }
            ++fin;
        }
        Agregar(Token::Clase::Delimitado, i_ + 1, fin);
        if (con_tokens_) {
            lexico_.tokens.back().desde = i_;
            lexico_.tokens.back().hasta = fin + 1;
        }
        i_ = fin + 1;
        return {};
    }

    base::Result<void, ErrorSql> Cadena(bool nacional) {
        const std::size_t inicio = nacional ? i_ - 1 : i_;
        std::string valor;
        std::size_t k = i_ + 1;
        while (true) {
            const auto fin = texto_.find('\'', k);
            if (fin == std::string_view::npos) {
                return TextoSinCerrar(std::string(texto_.substr(i_ + 1)));
            }
            valor.append(texto_.substr(k, fin - k));
            k = fin + 1;
            if (En(k) != '\'') break;
            valor.push_back('\'');
            ++k;
        }
        const int largo = std::max(1, ContarCaracteres(valor));
        const Clase clase = nacional ? Clase::NVarChar : Clase::VarChar;
        const int maximo = nacional ? kLongitudMaxima / 2 : kLongitudMaxima;
        const Tipo tipo = TipoTexto(clase, largo > maximo ? -1 : largo);
        return Poner(inicio, k, {tipo, Valor::DeTexto(std::move(valor))});
    }

    base::Result<void, ErrorSql> Binario() {
        std::size_t fin = i_ + 2;
        std::string bytes;
        while (Hex(En(fin)) >= 0)
            ++fin;
        std::size_t k = i_ + 2;
        if ((fin - k) % 2 == 1) bytes.push_back(static_cast<char>(Hex(texto_[k++])));
        for (; k < fin; k += 2) {
            bytes.push_back(static_cast<char>(Hex(texto_[k]) * 16 + Hex(texto_[k + 1])));
        }
        const int largo = std::max(1, static_cast<int>(bytes.size()));
        const Tipo tipo = TipoTexto(Clase::VarBinary, largo > kLongitudMaxima ? -1 : largo);
        return Poner(i_, fin, {tipo, Valor::DeBytes(std::move(bytes))});
    }

    base::Result<void, ErrorSql> Numero() {
        std::size_t fin = i_;
        // Most numbers are short and whole.
        std::int32_t corto = 0;
        while (fin - i_ < kCifrasCortas && EsCifra(En(fin)))
            corto = corto * 10 + (texto_[fin++] - '0');
        if (!EsCifra(En(fin)) && En(fin) != '.' && En(fin) != 'e' && En(fin) != 'E' && fin > i_) {
            return Poner(i_, fin, Exacto({corto, 0}, false));
        }
        fin = i_;
        bool punto = false;
        bool exponente = false;
        while (EsCifra(En(fin)) || (En(fin) == '.' && !punto))
            punto |= texto_[fin++] == '.';
        if (En(fin) == 'e' || En(fin) == 'E') {
            std::size_t k = fin + 1;
            if (En(k) == '+' || En(k) == '-') ++k;
            while (EsCifra(En(k)))
                ++k;
            exponente = true;
            fin = k;
        }
        const std::string_view cifras = texto_.substr(i_, fin - i_);
        Literal literal;
        if (exponente) {
            double real = 0;
            const auto lectura =
                std::from_chars(cifras.data(), cifras.data() + cifras.size(), real);
            if (lectura.ec == std::errc::result_out_of_range) {
                return RealFueraDeRango(std::string(cifras));
            }
            literal = {TipoReal(), Valor::DeReal(real)};
        } else {
            const auto numero = base::Decimal::DeTexto(cifras);
            if (!numero) return NumeroFueraDeRango(std::string(cifras));
            literal = Exacto(*numero, punto);
        }
        return Poner(i_, fin, std::move(literal));
    }

    static Literal Exacto(const base::Decimal& numero, bool punto) {
        constexpr Int128 kEnteroMaximo = 2147483647;
        const int cifras = std::max({ContarCifras(numero.digitos), numero.escala, 1});
        Tipo tipo = TipoNumerico(cifras, numero.escala);
        if (!punto && numero.digitos <= kEnteroMaximo) {
            tipo = TipoEntero(Clase::Int);
            tipo.precision = cifras;
        }
        return {tipo, Valor::De(numero.digitos)};
    }

    base::Result<void, ErrorSql> Dinero() {
        std::size_t fin = i_ + 1;
        while (EsCifra(En(fin)) || En(fin) == '.')
            ++fin;
        const auto numero = LeerDecimal(texto_.substr(i_, fin - i_), true);
        const auto digitos =
            numero ? CambiarEscala(numero->digitos, numero->escala, 4) : std::nullopt;
        if (!digitos || ContarCifras(*digitos) > kDigitosNativos) return MonedaMalEscrita();
        return Poner(i_, fin, {TipoMoneda(), Valor::De(*digitos)});
    }

    base::Result<void, ErrorSql> Poner(std::size_t desde, std::size_t hasta, Literal literal) {
        Agregar(Token::Clase::Literal, desde, hasta);
        if (con_tokens_) {
            lexico_.tokens.back().literal = static_cast<int>(lexico_.literales.size());
        }
        std::string& forma = lexico_.forma;
        forma.append(texto_.substr(copiado_, desde - copiado_));
        // Class and scale as one character each, out of the way of those that texts have.
        const bool ancho = literal.tipo.longitud < 0 || literal.tipo.EsAncho();
        const std::array<char, 4> marca = {
            '\1', static_cast<char>('A' + static_cast<int>(literal.tipo.clase)),
            static_cast<char>('0' + literal.tipo.escala), ancho ? '+' : '-'};
        forma.append(marca.data(), marca.size());
        copiado_ = hasta;
        lexico_.literales.push_back(std::move(literal));
        i_ = hasta;
        return {};
    }

    std::string_view texto_;
    Lexico& lexico_;
    bool con_tokens_;
    std::size_t i_ = 0;
    std::size_t copiado_ = 0;
};

}  // namespace

base::Result<void, ErrorSql> AnalizarForma(std::string_view texto, Lexico& lexico) {
    return Cortador(texto, lexico, Cortador::Tokens::No).Cortar();
}

Resultado<Lexico> Analizar(std::string_view texto) {
    Lexico lexico;
    QUIMO_TRY_VOID(Cortador(texto, lexico, Cortador::Tokens::Si).Cortar());
    return lexico;
}

std::string Lugar(std::string_view texto, std::size_t posicion) {
    const auto antes = texto.substr(0, posicion);
    const auto linea = std::count(antes.begin(), antes.end(), '\n') + 1;
    const auto salto = antes.rfind('\n');
    const auto columna =
        ContarCaracteres(salto == std::string_view::npos ? antes : antes.substr(salto + 1));
    return " (line " + std::to_string(linea) + ", column " + std::to_string(columna + 1) + ")";
}

}  // namespace quimo::tsql
