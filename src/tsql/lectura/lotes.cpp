#include "tsql/lectura/lotes.h"

#include "tsql/valores/texto.h"

namespace quimo::tsql {

namespace {

bool EsBlanco(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

std::string_view SinBlancos(std::string_view texto) {
    while (!texto.empty() && EsBlanco(texto.front()))
        texto.remove_prefix(1);
    while (!texto.empty() && EsBlanco(texto.back()))
        texto.remove_suffix(1);
    return texto;
}

/// What is open at the end of a line: 0, a closing sign, or '*' for a comment.
class Abierto {
public:
    bool Nada() const { return signo_ == 0; }

    void Seguir(std::string_view linea) {
        for (std::size_t i = 0; i < linea.size(); ++i) {
            const std::string_view dos = linea.substr(i, 2);
            if (signo_ == '*') {
                if (dos == "*/" || dos == "/*") {
                    nivel_ += dos == "/*" ? 1 : -1;
                    ++i;
                    if (nivel_ == 0) signo_ = 0;
                }
            } else if (signo_ != 0) {
                if (linea[i] == signo_) signo_ = 0;  // a doubled sign closes and opens again
            } else if (dos == "--") {
                return;
            } else if (dos == "/*") {
                signo_ = '*';
                nivel_ = 1;
                ++i;
            } else if (linea[i] == '\'' || linea[i] == '"') {
                signo_ = linea[i];
            } else if (linea[i] == '[') {
                signo_ = ']';
            }
        }
    }

private:
    char signo_ = 0;
    int nivel_ = 0;
};

}  // namespace

std::vector<std::string> PartirLotes(std::string_view guion) {
    std::vector<std::string> lotes;
    std::string lote;
    Abierto abierto;
    const auto cerrar = [&] {
        if (!SinBlancos(lote).empty()) lotes.push_back(lote);
        lote.clear();
    };
    while (!guion.empty()) {
        const auto salto = guion.find('\n');
        const std::string_view linea = guion.substr(0, salto);
        guion.remove_prefix(salto == std::string_view::npos ? guion.size() : salto + 1);
        if (abierto.Nada() && MismoNombre(SinBlancos(linea), "GO")) {
            cerrar();
            continue;
        }
        abierto.Seguir(linea);
        lote.append(linea).push_back('\n');
    }
    cerrar();
    return lotes;
}

}  // namespace quimo::tsql
