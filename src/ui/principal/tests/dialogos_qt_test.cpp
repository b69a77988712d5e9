#include "ui/controles/dialogos_qt.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QInputDialog>
#include <QLineEdit>
#include <QMessageBox>

#include "support/cajas_guion.h"

namespace quimo::ui {
namespace {

using namespace Qt::StringLiterals;
using foundation::Botones;
using foundation::Icono;
using foundation::Respuesta;

TEST(DialogosQtTest, LasCajasLlevanIconoTituloYTexto) {
    DialogosQt dialogos;
    pruebas::CajasGuion cajas;
    dialogos.Avisar(u"uno"_s, Icono::Critico, u"Login"_s);
    dialogos.Avisar(u"dos <b>&</b>"_s, Icono::Exclamacion);
    dialogos.Avisar(u"tres"_s, Icono::Informacion, u"Servidor Quimo"_s);
    dialogos.Avisar(u"cuatro"_s, Icono::Ninguno);
    EXPECT_EQ(cajas.Tomar(), (QStringList{u"[x] Login|uno"_s, u"[!] QUIMO|dos <b>&</b>"_s,
                                          u"[i] Servidor Quimo|tres"_s, u"[-] QUIMO|cuatro"_s}));
}

TEST(DialogosQtTest, UnTextoMuyLargoSePuedeLeer) {
    DialogosQt dialogos;
    pruebas::CajasGuion cajas;
    dialogos.Avisar(QString(10000, u'x'), Icono::Critico);
    EXPECT_LT(cajas.Tomar().value(0).size(), 1000);
}

TEST(DialogosQtTest, CadaBotonEstaEnEspanolYDaSuRespuesta) {
    DialogosQt dialogos;
    pruebas::CajasGuion cajas;
    const struct {
        Botones botones;
        QVector<std::pair<QString, Respuesta>> respuestas;
    } casos[] = {
        {Botones::Aceptar, {{u"Aceptar"_s, Respuesta::Aceptar}}},
        {Botones::SiNo, {{u"Sí"_s, Respuesta::Si}, {u"No"_s, Respuesta::No}}},
        {Botones::AceptarCancelar,
         {{u"Aceptar"_s, Respuesta::Aceptar}, {u"Cancelar"_s, Respuesta::Cancelar}}},
        {Botones::SiNoCancelar, {{u"No"_s, Respuesta::No}, {u"Cancelar"_s, Respuesta::Cancelar}}},
        {Botones::AbortarReintentarIgnorar,
         {{u"Anular"_s, Respuesta::Abortar},
          {u"Reintentar"_s, Respuesta::Reintentar},
          {u"Omitir"_s, Respuesta::Ignorar}}},
    };
    for (const auto& caso : casos) {
        for (const auto& [boton, respuesta] : caso.respuestas) {
            cajas.Responder(boton);
            EXPECT_EQ(dialogos.Preguntar(u"¿Seguro?"_s, caso.botones, Icono::Pregunta), respuesta)
                << boton.toStdString();
        }
    }
}

TEST(DialogosQtTest, SePideUnTextoYElPunteroOcupadoSeAnida) {
    DialogosQt dialogos;
    pruebas::CajasGuion cajas;
    bool aceptar = true;
    cajas.ante_otra = [&aceptar](QWidget& ventana) {
        auto* const dialogo = qobject_cast<QInputDialog*>(&ventana);
        ASSERT_NE(dialogo, nullptr);
        EXPECT_EQ(dialogo->cancelButtonText(), u"&Cancelar"_s);
        dialogo->setTextValue(u"escrito"_s);
        dialogo->done(aceptar ? QDialog::Accepted : QDialog::Rejected);
    };
    EXPECT_EQ(dialogos.PedirTexto(u"¿Qué?"_s, QString()), u"escrito"_s);
    aceptar = false;
    EXPECT_FALSE(dialogos.PedirTexto(u"¿Qué?"_s, QString()));

    dialogos.Ocupado(true);
    dialogos.Ocupado(true);
    dialogos.Avisar(u"en medio"_s, Icono::Informacion);
    dialogos.Ocupado(false);
    ASSERT_NE(QApplication::overrideCursor(), nullptr);
    EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
    dialogos.Ocupado(false);
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

}  // namespace
}  // namespace quimo::ui
