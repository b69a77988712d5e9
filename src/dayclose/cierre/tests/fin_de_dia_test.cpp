#include "dayclose/cierre/fin_de_dia.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

#include "restaurante_prueba.h"

using namespace Qt::StringLiterals;

namespace quimo::dayclose::pruebas {
namespace {

using foundation::Respuesta;
using Desenlace = FinDeDia::Desenlace;
using Operacion = ShareConFallas::Operacion;

const QString kTerminado = u"[i] |Proceso terminado"_s;
const QString kPregunta = u"El cierre del 14/11/2026 no terminó. ¿Desea continuarlo?"_s;

QString Fecha(Restaurante& restaurante) {
    return restaurante.Valor(
        u"SELECT Valor_Cad FROM Parametros WHERE ID_Parametro='FECHA_TRABAJO'"_s);
}

TEST(FinDeDia, CierraElDiaYCerrarloOtraVezNoCambiaVentas) {
    Restaurante restaurante;
    const QByteArray vendido = Bytes(restaurante.Terminal(u"CAJA1"_s));
    ASSERT_EQ(restaurante.Cerrar(), Desenlace::Terminado);
    EXPECT_EQ(restaurante.dialogos.Mostrados(), QStringList{kTerminado});
    EsperarDiaCerrado(restaurante);
    EXPECT_EQ(restaurante.Archivados(u"CAJA1"_s), QStringList{u"Quimo_Terminal-1.mdb"_s});
    EXPECT_EQ(Bytes(restaurante.Programa() + u"/archivo/14112026/CAJA1/Quimo_Terminal-1.mdb"_s),
              vendido);

    const QStringList ventas = Ventas(restaurante);
    restaurante.Mandar(
        u"UPDATE Parametros SET Valor_Cad='14112026' WHERE ID_Parametro='FECHA_TRABAJO'"_s);
    ASSERT_EQ(restaurante.Cerrar(), Desenlace::Terminado);
    EXPECT_EQ(Ventas(restaurante), ventas);
    EXPECT_EQ(restaurante.Archivados(u"CAJA1"_s),
              (QStringList{u"Quimo_Terminal-1.mdb"_s, u"Quimo_Terminal-2.mdb"_s}));
    EXPECT_EQ(Bytes(restaurante.Programa() + u"/archivo/14112026/CAJA1/Quimo_Terminal-1.mdb"_s),
              vendido);
}

TEST(FinDeDia, LaOrdenAbiertaSeActualizaConCierreAMedianoche) {
    Restaurante restaurante;
    // The same file comes again, as when the close is repeated with the terminals as they were.
    const QString caja = restaurante.Terminal(u"CAJA1"_s);
    const QByteArray vendido = Bytes(caja);
    ASSERT_EQ(restaurante.Cerrar(), Desenlace::Terminado);
    EXPECT_EQ(restaurante.Valor(u"SELECT Fecha_Cierre FROM Comanda WHERE ID_Comanda=50937"_s),
              u"14/11/2026 11:34:15"_s);
    PonerBytes(caja, vendido);
    restaurante.Mandar(
        u"UPDATE Parametros SET Valor_Cad='14112026' WHERE ID_Parametro='FECHA_TRABAJO'"_s);
    restaurante.Mandar(
        u"UPDATE ProductosXCuenta SET ID_Paquete=7 WHERE ID_ProductosXCuenta=10001"_s);
    ASSERT_EQ(restaurante.Cerrar(), Desenlace::Terminado);
    EXPECT_EQ(restaurante.Valor(u"SELECT Fecha_Cierre FROM Comanda WHERE ID_Comanda=50937"_s),
              u"14/11/2026"_s);
    EXPECT_EQ(restaurante.Valor(
                  u"SELECT ID_Paquete FROM ProductosXCuenta WHERE ID_ProductosXCuenta=10001"_s),
              u"7"_s);
}

TEST(FinDeDia, SinTerminalesActivasSoloAvanzaYCuenta) {
    Restaurante restaurante;
    restaurante.Mandar(u"UPDATE Terminal SET Estado_Terminal='D'"_s);
    ASSERT_EQ(restaurante.Cerrar(), Desenlace::Terminado);
    EXPECT_EQ(Fecha(restaurante), u"15112026"_s);
    EXPECT_TRUE(restaurante.Resumen().contadas.isEmpty());
    EXPECT_TRUE(QFile::exists(restaurante.Programa() + u"/Quimo_Terminal.mdb"_s));
    EXPECT_EQ(restaurante.share.Operaciones(), 0);
}

struct CasoFalla {
    const char* nombre = nullptr;
    Respuesta respuesta;
    Desenlace desenlace;
    QStringList contadas;
    QStringList mostrados;
};

TEST(FinDeDia, UnaTerminalInalcanzableSePregunta) {
    const CasoFalla casos[] = {
        {"anular", Respuesta::Abortar, Desenlace::Abortado, {u"CAJA1"_s}, {u"[i] |Abortado"_s}},
        {"omitir",
         Respuesta::Ignorar,
         Desenlace::Incompleto,
         {u"CAJA1"_s, u"BARRA"_s},
         {u"[x] Error fin día|Error de comunicación con terminales:\nCAJA2 Nombre o número de "
          u"archivo incorrecto: \\\\CAJA2\\quimo\\Quimo_Terminal.mdb"_s,
          kTerminado}},
        // The share is back for the retry, but the terminal stays marked as skipped.
        {"reintentar",
         Respuesta::Reintentar,
         Desenlace::Incompleto,
         {u"CAJA1"_s, u"BARRA"_s},
         {kTerminado}},
    };
    for (const CasoFalla& caso : casos) {
        Restaurante restaurante;
        const QString casa = restaurante.Raiz() + u"/red/CAJA2"_s;
        ASSERT_TRUE(QDir().rename(casa, casa + u"-apagada"_s));
        restaurante.dialogos.Responder(u"Falla de comunicación con CAJA2"_s, caso.respuesta, [&] {
            if (caso.respuesta == Respuesta::Reintentar) QDir().rename(casa + u"-apagada"_s, casa);
        });
        EXPECT_EQ(restaurante.Cerrar(), caso.desenlace) << caso.nombre;
        QStringList contadas;
        for (const TerminalContada& contada : restaurante.Resumen().contadas) {
            contadas << contada.terminal.nombre;
        }
        EXPECT_EQ(contadas, caso.contadas) << caso.nombre;
        EXPECT_EQ(restaurante.dialogos.Mostrados(), caso.mostrados) << caso.nombre;
        EXPECT_EQ(Fecha(restaurante), u"15112026"_s) << caso.nombre;
        // Its sales were not copied, but what was replaced is in the archive.
        if (caso.respuesta == Respuesta::Reintentar) {
            EXPECT_EQ(restaurante.Archivados(u"CAJA2"_s).size(), 1) << caso.nombre;
        }
    }
}

TEST(FinDeDia, LoQueVuelveParaElEnvioSeArchivaAntesDeReemplazarse) {
    Restaurante restaurante;
    const QByteArray vendido = Bytes(restaurante.Terminal(u"BARRA"_s));
    bool reuniendo = true;
    restaurante.share.Poner([&](Operacion, const QString& remoto) {
        return reuniendo && remoto.contains(u"BARRA"_s) ? FalloArchivo::kRutaNoEncontrada : 0;
    });
    restaurante.dialogos.Responder(u"Falla de comunicación con BARRA"_s, Respuesta::Ignorar,
                                   [&] { reuniendo = false; });
    ASSERT_EQ(restaurante.Cerrar(), Desenlace::Incompleto);
    EXPECT_EQ(Bytes(restaurante.Programa() + u"/archivo/14112026/BARRA/Quimo_Terminal-1.mdb"_s),
              vendido);
    EXPECT_EQ(DiferenciasDeTerminal(restaurante.Terminal(u"CAJA1"_s), u"CAJA1"_s), QStringList());
    EXPECT_EQ(restaurante.Resumen().sin_copiar.size(), 1);
}

TEST(FinDeDia, ElArchivoAbiertoSeReintentaHastaElLimite) {
    Restaurante restaurante;
    int veces = 0;
    restaurante.share.Poner([&](Operacion operacion, const QString& remoto) {
        return operacion == Operacion::Traer && remoto.contains(u"CAJA1"_s) && ++veces <= 1500
                   ? FalloArchivo::kPermisoDenegado
                   : 0;
    });
    ASSERT_EQ(restaurante.Cerrar(), Desenlace::Terminado);
    EsperarDiaCerrado(restaurante);

    Restaurante otro;
    otro.share.Poner([&](Operacion operacion, const QString& remoto) {
        return operacion == Operacion::Llevar && remoto.contains(u"BARRA"_s)
                   ? FalloArchivo::kPermisoDenegado
                   : 0;
    });
    ASSERT_EQ(otro.Cerrar(), Desenlace::Incompleto);
    EXPECT_EQ(otro.dialogos.Mostrados(),
              (QStringList{u"[x] |La terminal BARRA no se cerro"_s, kTerminado}));
    EXPECT_EQ(DiferenciasCentrales(otro), QStringList());
}

TEST(FinDeDia, ContinuarTrasCadaFallaTerminaComoUnCierreSinFallas) {
    // Every operation on a share fails once with a full disk, which ends the close.
    for (int punto = 1;; ++punto) {
        Restaurante restaurante;
        int operacion = 0;
        restaurante.share.Poner([&](Operacion, const QString&) {
            return ++operacion == punto ? FalloArchivo::kDiscoLleno : 0;
        });
        const Desenlace primero = restaurante.Cerrar();
        if (primero == Desenlace::Terminado) {
            EXPECT_GT(punto, 9);
            break;
        }
        ASSERT_EQ(primero, Desenlace::ConError);
        ASSERT_LT(punto, 60);
        restaurante.Reconectar();
        restaurante.dialogos.Olvidar();
        restaurante.dialogos.Responder(kPregunta, Respuesta::Si);
        ASSERT_EQ(restaurante.Cerrar(), Desenlace::Terminado) << punto;
        EXPECT_EQ(restaurante.dialogos.Mostrados(), QStringList{kTerminado}) << punto;
        EsperarDiaCerrado(restaurante);
        if (::testing::Test::HasFailure()) return;
    }
}

TEST(FinDeDia, LaTerminalYaEntregadaNoSeReemplazaAlContinuar) {
    Restaurante restaurante;
    restaurante.share.Poner([&](Operacion operacion, const QString& remoto) {
        return operacion == Operacion::Llevar && remoto.contains(u"BARRA"_s)
                   ? FalloArchivo::kDiscoLleno
                   : 0;
    });
    ASSERT_EQ(restaurante.Cerrar(), Desenlace::ConError);
    // The next day's sales begin on a terminal that has its new database.
    const QString caja = restaurante.Terminal(u"CAJA1"_s);
    QFile archivo(caja);
    ASSERT_TRUE(archivo.open(QIODevice::Append));
    ASSERT_EQ(archivo.write(QByteArray(4096, '\0')), 4096);
    archivo.close();
    const QByteArray vendiendo = Bytes(caja);
    restaurante.share.Poner({});
    restaurante.dialogos.Responder(kPregunta, Respuesta::Si);
    ASSERT_EQ(restaurante.Cerrar(), Desenlace::Terminado);
    EXPECT_EQ(Bytes(caja), vendiendo);
    EXPECT_EQ(restaurante.Resumen().entregadas.size(), 3);
}

TEST(FinDeDia, NoContinuarEmpiezaUnCierreNuevo) {
    Restaurante restaurante;
    restaurante.share.Poner([](Operacion, const QString&) { return FalloArchivo::kDiscoLleno; });
    ASSERT_EQ(restaurante.Cerrar(), Desenlace::ConError);
    restaurante.share.Poner({});
    const QStringList seguro = {u"14/11/2026"_s, u"seguro"_s};
    restaurante.dialogos.Responder(kPregunta, Respuesta::No);
    restaurante.dialogos.ResponderSi(seguro, Respuesta::No);
    ASSERT_EQ(restaurante.Cerrar(), Desenlace::SinEmpezar);
    EXPECT_EQ(Fecha(restaurante), u"15112026"_s);
    restaurante.dialogos.Responder(kPregunta, Respuesta::No);
    restaurante.dialogos.ResponderSi(seguro, Respuesta::Si);
    // The date moved on with the close that failed; the new one closes the next day, and the
    // terminals' orders are of the 14th.
    restaurante.dialogos.ResponderSi({u"14/11/2026"_s, u"CAJA1"_s}, Respuesta::Aceptar);
    restaurante.dialogos.ResponderSi({u"PRIMARY KEY"_s}, Respuesta::Terminar);
    ASSERT_EQ(restaurante.Cerrar(), Desenlace::ConError);
    EXPECT_EQ(Fecha(restaurante), u"16112026"_s);
}

struct CasoMalo {
    const char* nombre = nullptr;
    std::function<void(Restaurante&)> preparar;
    QString mensaje;    ///< what the shown text contains
    int preguntas = 0;  ///< of a terminal's file: told in a question, after the offer to mend it
};

void Reescribir(const QString& ruta, const std::function<void(QByteArray&)>& cambio) {
    QByteArray bytes = Bytes(ruta);
    cambio(bytes);
    PonerBytes(ruta, bytes);
}

TEST(FinDeDia, LaEntradaMalaTerminaConMensajeYSinNadaAMedias) {
    const auto en_caja2 = [](const std::function<void(QByteArray&)>& cambio) {
        return [cambio](Restaurante& r) { Reescribir(r.Terminal(u"CAJA2"_s), cambio); };
    };
    const CasoMalo casos[] = {
        {"cortado", en_caja2([](QByteArray& b) { b.truncate(300000); }), u"CAJA2"_s, 1},
        {"bytes cambiados en medio", en_caja2([](QByteArray& b) {
             for (int i = 0; i < 3000; ++i)
                 b[200000 + i] = static_cast<char>(i * 37);
         }),
         u"CAJA2"_s, 2},
        {"vacío", en_caja2([](QByteArray& b) { b.clear(); }), u"CAJA2"_s, 1},
        {"otra cosa", en_caja2([](QByteArray& b) { b.fill('x'); }), u"CAJA2"_s, 1},
        {"cifrado", en_caja2([](QByteArray& b) { b[0x3E] = static_cast<char>(b[0x3E] ^ 0x5A); }),
         u"CAJA2"_s, 1},
        {"Jet 3", en_caja2([](QByteArray& b) { b[0x14] = 0; }), u"CAJA2"_s, 1},
        {"posterior", en_caja2([](QByteArray& b) { b[0x14] = 2; }), u"CAJA2"_s, 1},
        {"sin plantilla", [](Restaurante& r) { QFile::remove(r.Programa() + u"/Plantilla.mdb"_s); },
         u"No se encontró el archivo"_s},
        {"fecha mala",
         [](Restaurante& r) {
             r.Mandar(
                 u"UPDATE Parametros SET Valor_Cad='14/11/26' WHERE "
                 u"ID_Parametro='FECHA_TRABAJO'"_s);
         },
         u"FECHA_TRABAJO"_s},
        {"sin directorio",
         [](Restaurante& r) {
             r.Mandar(u"DELETE FROM Parametros WHERE ID_Parametro='DIRTERMBD'"_s);
         },
         u"DIRTERMBD"_s},
    };
    for (const CasoMalo& caso : casos) {
        Restaurante restaurante;
        caso.preparar(restaurante);
        QHash<QString, QByteArray> antes;
        for (const QString& nombre : {u"CAJA1"_s, u"CAJA2"_s, u"BARRA"_s}) {
            antes.insert(nombre, Bytes(restaurante.Terminal(nombre)));
        }
        SCOPED_TRACE(caso.nombre);
        if (caso.preguntas > 1) {
            restaurante.dialogos.ResponderSi({caso.mensaje, u"renglones"_s}, Respuesta::No);
        }
        if (caso.preguntas > 0) {
            restaurante.dialogos.ResponderSi({caso.mensaje, u"apartar"_s}, Respuesta::Terminar);
        }
        EXPECT_EQ(restaurante.Cerrar(), Desenlace::ConError);
        const QStringList mostrados = restaurante.dialogos.Mostrados();
        ASSERT_EQ(mostrados.size(), 1);
        EXPECT_TRUE(mostrados.first().contains(caso.preguntas > 0 ? u"pendiente"_s : caso.mensaje))
            << mostrados.first().toStdString();
        for (auto it = antes.cbegin(); it != antes.cend(); ++it) {
            EXPECT_EQ(Bytes(restaurante.Terminal(it.key())), it.value()) << caso.nombre;
        }
    }
}

TEST(FinDeDia, UnaFechaMalaNoVaciaLasColas) {
    Restaurante restaurante;
    restaurante.Mandar(
        u"UPDATE Parametros SET Valor_Cad='1411202X' WHERE ID_Parametro='FECHA_TRABAJO'"_s);
    const QString cola = restaurante.Valor(u"SELECT COUNT(*) FROM Transacciones"_s);
    ASSERT_EQ(restaurante.Cerrar(), Desenlace::ConError);
    EXPECT_EQ(restaurante.Valor(u"SELECT COUNT(*) FROM Transacciones"_s), cola);
    EXPECT_EQ(restaurante.Valor(u"SELECT COUNT(*) FROM Cierre_Pendiente"_s), u"0"_s);
}

}  // namespace
}  // namespace quimo::dayclose::pruebas
