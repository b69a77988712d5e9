#include "data/embebido/textos_leidos.h"

namespace quimo::data::embebido {

namespace {

constexpr std::size_t kLotesRecordados = 512;

bool MismoValor(const Valor& a, const Valor& b) {
    return a.forma == b.forma && a.exacto == b.exacto && a.texto == b.texto && !(a.real < b.real) &&
           !(b.real < a.real);
}

}  // namespace

void TextosLeidos::Olvidar() {
    por_forma_.clear();
    por_texto_.clear();
    recordados_.clear();
    modulos_.clear();
}

bool TextosLeidos::Sirve(const LoteListo& listo, const std::vector<tsql::Literal>& literales) {
    if (listo.en_uso || listo.lote.literales.size() != literales.size()) return false;
    for (std::size_t i = 0; i < literales.size(); ++i) {
        const tsql::Literal& suya = listo.lote.literales[i];
        const bool fija = listo.lote.fijos[i];
        if (fija && !MismoValor(suya.valor, literales[i].valor)) return false;
        if ((fija || listo.lote.tipos_fijos[i]) && !(suya.tipo == literales[i].tipo)) return false;
    }
    return true;
}

void TextosLeidos::Recordar(const std::string& clave, const std::shared_ptr<LoteListo>& lote) {
    recordados_.push_front({clave, lote});
    por_forma_.emplace(clave, recordados_.begin());
    while (recordados_.size() > kLotesRecordados) {
        const auto ultimo = std::prev(recordados_.end());
        const auto [desde, hasta] = por_forma_.equal_range(ultimo->clave);
        for (auto i = desde; i != hasta; ++i) {
            if (i->second == ultimo) {
                por_forma_.erase(i);
                break;
            }
        }
        recordados_.erase(ultimo);
    }
}

Resultado<LotePrestado> TextosLeidos::Leer(const std::string& texto,
                                           const std::vector<tsql::Tipo>& tipos) {
    if (auto listo = LeidoAsi(texto, tipos)) return LotePrestado(std::move(listo));
    QUIMO_TRY_VOID(tsql::AnalizarForma(texto, lexico_));
    std::string& clave = lexico_.forma;
    for (const tsql::Tipo& tipo : tipos)
        clave += '\2' + std::to_string(tsql::Empaquetar(tipo));
    const auto [desde, hasta] = por_forma_.equal_range(clave);
    for (auto i = desde; i != hasta; ++i) {
        const auto recordado = i->second;
        if (!Sirve(*recordado->lote, lexico_.literales)) continue;
        recordados_.splice(recordados_.begin(), recordados_, recordado);
        // Only what comes a second time: the rows of a close are as many texts, each met once.
        if (recordado->lote->lote.texto == texto) RecordarTexto(recordado->lote);
        recordado->lote->lote.literales.swap(lexico_.literales);
        recordado->lote->lote.texto = texto;
        return LotePrestado(recordado->lote);
    }
    auto listo = std::make_shared<LoteListo>();
    QUIMO_TRY(tsql::Lexico lexico, tsql::Analizar(texto));
    QUIMO_TRY(listo->lote, tsql::LeerLote(texto, std::move(lexico), tsql::Constantes::PorPosicion));
    listo->tipos_parametros = tipos;
    Recordar(clave, listo);
    return LotePrestado(std::move(listo));
}

void TextosLeidos::RecordarTexto(const std::shared_ptr<LoteListo>& lote) {
    constexpr std::size_t kTextoMaximo = 4096;
    if (lote->lote.texto.size() > kTextoMaximo) return;
    if (por_texto_.size() >= 2 * kLotesRecordados) por_texto_.clear();
    por_texto_.insert_or_assign(lote->lote.texto, lote);
}

/// The very text again: nothing of it needs to be looked at, not even its constants.
std::shared_ptr<LoteListo> TextosLeidos::LeidoAsi(const std::string& texto,
                                                  const std::vector<tsql::Tipo>& tipos) {
    const auto leido = por_texto_.find(texto);
    if (leido == por_texto_.end()) return nullptr;
    auto listo = leido->second.lock();
    // Another text of the same form may have put its own constants there since.
    if (!listo || listo->en_uso || listo->lote.texto != texto || listo->tipos_parametros != tipos)
        return nullptr;
    return listo;
}

LotePrestado TextosLeidos::LoteDe(const tsql::ModuloPtr& modulo) {
    auto& recordado = modulos_[modulo.get()];
    if (recordado && !recordado->en_uso) return LotePrestado(recordado);
    auto nuevo = std::make_shared<LoteListo>();
    nuevo->modulo = modulo;
    if (!recordado) recordado = nuevo;
    return LotePrestado(std::move(nuevo));
}

}  // namespace quimo::data::embebido
