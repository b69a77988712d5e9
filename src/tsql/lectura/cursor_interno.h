#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tsql/lectura/parser.h"

namespace quimo::tsql {

using Hecho = base::Result<void, ErrorSql>;

/// Goes over the tokens of one text, and keeps what the whole text yields.
class Cursor {
public:
    static constexpr int kNivelesMaximos = 120;

    Cursor(std::string_view texto, Lexico lexico, Constantes constantes);
    Cursor(const Cursor&) = delete;
    Cursor& operator=(const Cursor&) = delete;

    /// Counts one level of nesting while it lives.
    class Nivel {
    public:
        explicit Nivel(Cursor& cursor) : niveles_(cursor.niveles_) { ++niveles_; }
        Nivel(const Nivel&) = delete;
        Nivel& operator=(const Nivel&) = delete;
        ~Nivel() { --niveles_; }

    private:
        int& niveles_;
    };
    /// Depth is limited, so that no text can exhaust the stack.
    Hecho Profundo() const;

    const Token& Actual() const { return tokens_[i_]; }
    const Token& En(std::size_t indice) const { return tokens_[indice]; }
    std::size_t Indice() const { return i_; }
    bool Fin() const { return Actual().clase == Token::Clase::Fin; }
    bool EsClase(Token::Clase clase) const { return Actual().clase == clase; }
    bool EsPalabra(std::string_view palabra, std::size_t adelante = 0) const;
    bool EsSigno(std::string_view signo, std::size_t adelante = 0) const;
    bool HayNombre(std::size_t adelante = 0) const;
    bool EmpiezaConsulta(std::size_t adelante = 0) const;
    /// Nothing was read before this statement, and it stands in no other.
    bool EsPrimeraSentencia() const { return lote_.sentencias.empty() && niveles_ <= 1; }

    void Avanzar(std::size_t cuantos = 1) { i_ += cuantos; }
    void IrAlFin() { i_ = tokens_.size() - 1; }
    bool Aceptar(std::string_view palabra_o_signo);
    Hecho Exigir(std::string_view palabra_o_signo);
    ErrorSql Sintaxis() const { return SintaxisEn(i_); }
    ErrorSql SintaxisEn(std::size_t token) const;

    Resultado<std::string> Nombre();
    Resultado<NombreObjeto> Objeto();
    /// A table, or a variable that is one.
    Resultado<NombreObjeto> ObjetoOVariable();
    /// @name in lower case, left behind.
    std::string Variable();
    Resultado<std::vector<std::string>> ListaDeNombres();
    Resultado<std::int64_t> EnteroFijo();
    /// A constant that names something: its text belongs to the tree's form.
    Resultado<std::string> TextoFijo();
    /// += and the like, or =: the operator before the = sign, which is left behind.
    Resultado<std::string> SignoDeAsignacion();
    const Literal& LiteralActual() const;
    bool EsTextoConstante() const;

    /// The text as it was written, from a token to the end of the last one that was read.
    std::string Desde(std::size_t primer_token) const;
    std::string TextoDesde(std::size_t token) const {
        return std::string(texto_.substr(tokens_[token].desde));
    }
    Constantes ModoDeConstantes() const { return constantes_; }
    Lote& EnCurso() { return lote_; }
    Lote Terminar();

private:
    const Token& Mirar(std::size_t cuantos) const {
        return tokens_[std::min(i_ + cuantos, tokens_.size() - 1)];
    }

    std::string_view texto_;
    std::vector<Token> tokens_;
    std::size_t i_ = 0;
    int niveles_ = 0;
    Constantes constantes_;
    Lote lote_;
};

}  // namespace quimo::tsql
