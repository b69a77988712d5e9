#pragma once

#include <memory>

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "catalog/editores/editores.h"
#include "catalog/sesion/editor_sesion.h"
#include "data/valores.h"
#include "foundation/conector.h"
#include "support/central_prueba.h"
#include "support/conexion_espia.h"
#include "support/dialogos_guion.h"

namespace quimo::pruebas {

/// Catalogue editors over the recorded restaurant, with a scripted user and every statement on
/// tape.
class CatalogoTest : public testing::Test {
protected:
    void SetUp() override {
        QString servidor = QStringLiteral("embebido");
        QString archivo = carpeta_.filePath(QStringLiteral("central.db"));
        QString nadie;
        ASSERT_TRUE(CopiarRestaurante(archivo));
        ASSERT_TRUE(ado_.Conectar(servidor, archivo, nadie, nadie));
    }

    std::unique_ptr<catalog::EditorSesion> Abrir(const catalog::EditorDef& def) {
        auto sesion = std::make_unique<catalog::EditorSesion>(def, ado_);
        EXPECT_TRUE(sesion->Abrir());
        cinta_->sentencias.clear();
        return sesion;
    }
    /// Something that another user does meanwhile.
    void Otro(const QString& sentencia) {
        const auto respuesta = ado_.Conexion().Ejecutar(sentencia);
        EXPECT_FALSE(respuesta.fallo.has_value())
            << (respuesta.fallo ? respuesta.fallo->Descripcion().toStdString() : "");
    }
    /// The rows of a query as "a|b;c|d".
    QString Filas(const QString& consulta) {
        data::RecordsetPtr filas;
        EXPECT_TRUE(ado_.Consultar(filas, consulta)) << consulta.toStdString();
        QStringList lineas;
        for (const data::Fila& fila : filas->Filas()) {
            QStringList celdas;
            for (const QVariant& valor : fila)
                celdas << (valor.isValid() ? data::TextoDeValor(valor) : QStringLiteral("NULL"));
            lineas << celdas.join(u'|');
        }
        return lineas.join(u';');
    }
    QString Filas(const char16_t* consulta) { return Filas(QString::fromUtf16(consulta)); }
    static void Escribir(catalog::EditorSesion& sesion, QStringView control,
                         const char16_t* texto) {
        const qsizetype campo = sesion.Campos().IndiceDe(control);
        ASSERT_GE(campo, 0);
        sesion.Escribir(campo, QString::fromUtf16(texto));
    }
    static void Elegir(catalog::EditorSesion& sesion, QStringView control, const char16_t* texto) {
        const qsizetype campo = sesion.Campos().IndiceDe(control);
        const qsizetype entrada =
            sesion.Campos().Entradas(campo).indexOf(QString::fromUtf16(texto));
        ASSERT_GE(entrada, 0);
        sesion.Elegir(campo, static_cast<int>(entrada));
    }
    static QString Valor(const catalog::EditorSesion& sesion, QStringView control) {
        return sesion.Campos().Valor(sesion.Campos().IndiceDe(control));
    }
    /// What has been shown since the last time, without icon and title, joined by ";".
    QString Mostrado() {
        QStringList textos;
        for (const QString& mensaje : dialogos_.Mostrados())
            textos << mensaje.section(u'|', 1);
        dialogos_.Olvidar();
        return textos.join(u';');
    }
    /// The parts of the entries that the operation log has got, each entry joined by its tabs.
    QStringList Bitacora() const {
        QFile archivo(carpeta_.filePath(QStringLiteral("log")));
        QStringList entradas;
        if (!archivo.open(QIODevice::ReadOnly)) return entradas;
        for (const QString& linea : QString::fromUtf8(archivo.readAll()).split(u'\n')) {
            if (!linea.isEmpty()) entradas << linea.section(u'\t', 5).trimmed();
        }
        return entradas.mid(1);  // after "Iniciando"
    }

    QTemporaryDir carpeta_;
    RelojFijo reloj_;
    DialogosGuion dialogos_;
    foundation::ClsBitacora bitacora_{
        {.PArchivoLog = carpeta_.filePath(QStringLiteral("log")), .PMsgBox = false},
        dialogos_,
        reloj_};
    std::shared_ptr<Cinta> cinta_ = std::make_shared<Cinta>();
    foundation::ClsAdo ado_{ConEspia(foundation::CrearConector(reloj_), cinta_), dialogos_,
                            bitacora_};
};

}  // namespace quimo::pruebas
