#include "support/conexion_espia.h"

using namespace Qt::StringLiterals;

namespace quimo::pruebas {

using data::FalloSql;

namespace {

class ConexionEspia final : public data::SqlConnection {
public:
    ConexionEspia(std::unique_ptr<SqlConnection> dentro, std::shared_ptr<Cinta> cinta)
        : dentro_(std::move(dentro)), cinta_(std::move(cinta)) {}

    data::RespuestaSql Ejecutar(const QString& tsql, const QVector<QVariant>& parametros) override {
        cinta_->sentencias << tsql;
        if (cinta_->falla) {
            if (auto fallo = cinta_->falla(tsql)) return {{}, {}, std::move(fallo)};
        }
        return dentro_->Ejecutar(tsql, parametros);
    }
    base::Result<void, FalloSql> Iniciar() override { return dentro_->Iniciar(); }
    base::Result<void, FalloSql> Confirmar() override {
        if (cinta_->al_confirmar) {
            if (auto fallo = cinta_->al_confirmar(*dentro_)) return *std::move(fallo);
        }
        return dentro_->Confirmar();
    }
    base::Result<void, FalloSql> Revertir() override { return dentro_->Revertir(); }
    bool EnTransaccion() const override { return dentro_->EnTransaccion(); }
    std::uint64_t TransaccionActual() const override { return dentro_->TransaccionActual(); }
    base::Result<data::DefinicionTabla, FalloSql> Describir(const QString& tabla) override {
        return dentro_->Describir(tabla);
    }
    bool Abierta() const override { return dentro_->Abierta(); }
    void Cerrar() override { dentro_->Cerrar(); }

private:
    std::unique_ptr<SqlConnection> dentro_;
    std::shared_ptr<Cinta> cinta_;
};

}  // namespace

QStringList Cinta::Tomar(const QStringList& principios) {
    QStringList tomadas;
    for (const QString& sentencia : std::as_const(sentencias)) {
        for (const QString& principio : principios) {
            if (sentencia.startsWith(principio)) tomadas << sentencia;
        }
    }
    sentencias.clear();
    return tomadas;
}

data::Conector ConEspia(data::Conector conector, std::shared_ptr<Cinta> cinta) {
    return
        [conector = std::move(conector), cinta = std::move(cinta)](const data::DatosConexion& datos)
            -> base::Result<std::unique_ptr<data::SqlConnection>, FalloSql> {
            QUIMO_TRY(std::unique_ptr<data::SqlConnection> abierta, conector(datos));
            return std::unique_ptr<data::SqlConnection>(
                std::make_unique<ConexionEspia>(std::move(abierta), cinta));
        };
}

FalloSql ConexionRota() {
    return {FalloSql::kConexionPerdida,
            {data::ErrorProveedor{u"08S01"_s, 0, u"prueba"_s, u"link failure"_s}}};
}

}  // namespace quimo::pruebas
