#pragma once

#include <cctype>
#include <cstdlib>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quimo::jet::prueba {

/// Enough of JSON to compare a dump with the expected one: numbers by value, objects in any order.
struct Json {
    enum class Tipo { Nulo, Logico, Numero, Texto, Lista, Objeto };
    Tipo tipo = Tipo::Nulo;
    bool logico = false;
    double numero = 0;
    std::string texto = {};
    std::vector<Json> lista = {};
    std::map<std::string, Json> objeto = {};

    bool operator==(const Json&) const = default;
};

class LectorJson {
public:
    explicit LectorJson(std::string_view texto) : texto_(texto) {}
    /// The value, and whether the text was nothing but it.
    std::pair<Json, bool> Leer() {
        Json valor = LeerValor();
        Saltar();
        return {std::move(valor), bien_ && pos_ == texto_.size()};
    }

private:
    void Saltar() {
        while (pos_ < texto_.size() &&
               std::isspace(static_cast<unsigned char>(texto_[pos_])) != 0) {
            ++pos_;
        }
    }
    bool Tomar(std::string_view palabra) {
        Saltar();
        if (texto_.substr(pos_, palabra.size()) != palabra) return false;
        pos_ += palabra.size();
        return true;
    }
    void Exigir(std::string_view palabra) { bien_ = Tomar(palabra) && bien_; }

    std::string LeerTexto() {
        std::string valor;
        while (bien_ && pos_ < texto_.size() && texto_[pos_] != '"') {
            if (texto_[pos_] != '\\') {
                valor.push_back(texto_[pos_++]);
                continue;
            }
            const char c = pos_ + 1 < texto_.size() ? texto_[pos_ + 1] : '?';
            pos_ += 2;
            static constexpr std::string_view kLetras = "nrtbf";
            static constexpr std::string_view kSignos = "\n\r\t\b\f";
            const std::size_t letra = kLetras.find(c);
            if (c == 'u') {
                // Only controls and U+007F are written like this in the expected files.
                const std::string cifras(texto_.substr(pos_, 4));
                valor.push_back(static_cast<char>(std::strtol(cifras.c_str(), nullptr, 16)));
                bien_ = bien_ && cifras.substr(0, 2) == "00" && cifras[2] < '8';
                pos_ += 4;
            } else {
                valor.push_back(letra != std::string_view::npos ? kSignos[letra] : c);
            }
        }
        Exigir("\"");
        return valor;
    }

    Json LeerLista() {
        Json valor{.tipo = Json::Tipo::Lista};
        if (Tomar("]")) return valor;
        do {
            valor.lista.push_back(LeerValor());
        } while (bien_ && Tomar(","));
        Exigir("]");
        return valor;
    }

    Json LeerObjeto() {
        Json valor{.tipo = Json::Tipo::Objeto};
        if (Tomar("}")) return valor;
        do {
            Exigir("\"");
            std::string clave = LeerTexto();
            Exigir(":");
            valor.objeto.emplace(std::move(clave), LeerValor());
        } while (bien_ && Tomar(","));
        Exigir("}");
        return valor;
    }

    Json LeerValor() {
        if (Tomar("null")) return {};
        if (Tomar("true")) return {.tipo = Json::Tipo::Logico, .logico = true};
        if (Tomar("false")) return {.tipo = Json::Tipo::Logico, .logico = false};
        if (Tomar("[")) return LeerLista();
        if (Tomar("{")) return LeerObjeto();
        if (Tomar("\"")) return {.tipo = Json::Tipo::Texto, .texto = LeerTexto()};
        const std::string resto(texto_.substr(pos_, 40));
        char* fin = nullptr;
        const double numero = std::strtod(resto.c_str(), &fin);
        bien_ = bien_ && fin != resto.c_str();
        pos_ += static_cast<std::size_t>(fin - resto.c_str());
        return {.tipo = Json::Tipo::Numero, .numero = numero};
    }

    std::string_view texto_;
    std::size_t pos_ = 0;
    bool bien_ = true;
};

}  // namespace quimo::jet::prueba
