#pragma once

#include <list>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "data/embebido/base_sqlite.h"
#include "tsql/traduccion/traductor.h"

namespace quimo::data::embebido {

/// A translated statement, ready to run while the definitions that it stands on are the same.
struct PlanListo {
    tsql::Plan plan;
    Preparada sentencia;
    std::int64_t version = 0;
    std::int64_t version_modulos = 0;
    std::int64_t opciones = 0;
    bool en_uso = false;
};

/// A text that was read, with the plans of its statements. Kept for the next text of its form.
struct LoteListo {
    tsql::Lote lote;
    tsql::ModuloPtr modulo;  ///< of a procedure or function: owns the statements
    std::vector<tsql::Tipo> tipos_parametros;
    std::unordered_map<const void*, PlanListo> planes;
    bool en_uso = false;
};

/// A text on loan to whoever runs it: nobody else is given it while this lives.
class LotePrestado {
public:
    explicit LotePrestado(std::shared_ptr<LoteListo> lote) : lote_(std::move(lote)) {
        lote_->en_uso = true;
    }
    LotePrestado(const LotePrestado&) = delete;
    LotePrestado& operator=(const LotePrestado&) = delete;
    LotePrestado(LotePrestado&&) noexcept = default;
    LotePrestado& operator=(LotePrestado&&) = delete;
    ~LotePrestado() {
        if (lote_) lote_->en_uso = false;
    }

    LoteListo& operator*() const { return *lote_; }
    LoteListo* operator->() const { return lote_.get(); }

private:
    std::shared_ptr<LoteListo> lote_;
};

/// The texts that a session has read, so that the next of the same form, or the next call of the
/// same procedure, finds its statements read and translated. The oldest give way.
class TextosLeidos {
public:
    /// A text of this form that was read before and serves these constants too; a new one
    /// otherwise.
    Resultado<LotePrestado> Leer(const std::string& texto,
                                 const std::vector<tsql::Tipo>& tipos_parametros);
    /// The body of a procedure or function. One inside itself gets plans of its own.
    LotePrestado LoteDe(const tsql::ModuloPtr& modulo);
    void Olvidar();

private:
    struct Recordado {
        std::string clave;
        std::shared_ptr<LoteListo> lote;
    };
    /// Nothing when this very text was not read before, or is not free.
    std::shared_ptr<LoteListo> LeidoAsi(const std::string& texto,
                                        const std::vector<tsql::Tipo>& tipos);
    static bool Sirve(const LoteListo& listo, const std::vector<tsql::Literal>& literales);
    void RecordarTexto(const std::shared_ptr<LoteListo>& lote);
    void Recordar(const std::string& clave, const std::shared_ptr<LoteListo>& lote);

    tsql::Lexico lexico_;  ///< of the text at hand; kept for its memory
    std::list<Recordado> recordados_;
    std::unordered_multimap<std::string, std::list<Recordado>::iterator> por_forma_;
    std::unordered_map<std::string, std::weak_ptr<LoteListo>> por_texto_;
    std::map<const tsql::CrearModulo*, std::shared_ptr<LoteListo>> modulos_;
};

}  // namespace quimo::data::embebido
