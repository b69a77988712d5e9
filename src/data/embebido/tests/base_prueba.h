#pragma once

#include <memory>

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "data/embebido/conexion_embebida.h"
#include "tsql/lectura/lotes.h"

namespace quimo::data {

/// A clock that stands still, at first at 14/11/2026 21:36:08.
class RelojFijo final : public Reloj {
public:
    QDateTime Ahora() const override { return ahora_; }
    void Pasar(int segundos) { ahora_ = ahora_.addSecs(segundos); }

private:
    QDateTime ahora_{QDate(2026, 11, 14), QTime(21, 36, 8), Qt::UTC};
};

inline QString LeerTexto(const QString& archivo) {
    QFile f(archivo);
    EXPECT_TRUE(f.open(QIODevice::ReadOnly)) << archivo.toStdString();
    return QString::fromUtf8(f.readAll());
}

/// A new database in a folder of its own.
class BasePrueba {
public:
    BasePrueba() { conexion_ = Otra(true); }

    SqlConnection& operator*() { return *conexion_; }
    SqlConnection* operator->() { return conexion_.get(); }
    QString Archivo() const { return carpeta_.filePath(QStringLiteral("central.db")); }

    std::unique_ptr<SqlConnection> Otra(bool crear = false) {
        auto abierta = AbrirEmbebida(Archivo(), reloj_, crear);
        EXPECT_TRUE(abierta.has_value());
        if (!abierta) return nullptr;
        return std::move(abierta).value();
    }
    RelojFijo& ElReloj() { return reloj_; }
    void Reabrir() {
        conexion_.reset();
        conexion_ = Otra();
    }

    /// Runs a script whose texts are cut by lines that hold only GO.
    void Guion(const QString& archivo) {
        ASSERT_TRUE(conexion_->Iniciar().has_value());
        for (const std::string& lote : tsql::PartirLotes(LeerTexto(archivo).toStdString())) {
            Bien(QString::fromStdString(lote));
        }
        ASSERT_TRUE(conexion_->Confirmar().has_value());
    }
    /// Runs a script with one statement a line.
    void Lineas(const QString& archivo) {
        ASSERT_TRUE(conexion_->Iniciar().has_value());
        for (const QString& linea : LeerTexto(archivo).split(QLatin1Char('\n')))
            Bien(linea);
        ASSERT_TRUE(conexion_->Confirmar().has_value());
    }
    RespuestaSql Bien(const QString& tsql, const QVector<QVariant>& parametros = {}) {
        RespuestaSql respuesta = conexion_->Ejecutar(tsql, parametros);
        EXPECT_FALSE(respuesta.fallo.has_value())
            << tsql.toStdString() << "\n"
            << (respuesta.fallo ? respuesta.fallo->Descripcion().toStdString() : "");
        return respuesta;
    }
    /// Native number of the failure; 0 without one.
    int Falla(const QString& tsql, const QVector<QVariant>& parametros = {}) {
        const RespuestaSql respuesta = conexion_->Ejecutar(tsql, parametros);
        return respuesta.fallo ? respuesta.fallo->Nativo() : 0;
    }
    /// The one value that a query yields.
    QVariant Uno(const QString& tsql, const QVector<QVariant>& parametros = {}) {
        for (const ResultadoSql& resultado : Bien(tsql, parametros).resultados) {
            if (resultado.conjunto && !resultado.conjunto->filas.isEmpty()) {
                return resultado.conjunto->filas[0][0];
            }
        }
        return {};
    }

private:
    QTemporaryDir carpeta_;
    RelojFijo reloj_;
    std::unique_ptr<SqlConnection> conexion_;
};

/// A value as text: NULL, numbers with their decimals, dates as 2026-11-14T21:36:08.000.
QString ATexto(const QVariant& valor);

}  // namespace quimo::data
