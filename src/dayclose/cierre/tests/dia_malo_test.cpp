#include <gtest/gtest.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>

#include "dayclose/cierre/fin_de_dia.h"
#include "dayclose/cierre/resumen_cierre.h"
#include "dayclose/cierre/trabajo_terminal.h"
#include "restaurante_prueba.h"
#include "terminal_prueba.h"

using namespace Qt::StringLiterals;

namespace quimo::dayclose::pruebas {
namespace {

using foundation::Respuesta;
using Desenlace = FinDeDia::Desenlace;
using Operacion = ShareConFallas::Operacion;
using Pendiente = OpcionesCierre::Pendiente;

const QString kTerminado = u"[i] |Proceso terminado"_s;

/// A close that cannot send BARRA its database.
void FallarAlEnviar(Restaurante& restaurante, int numero) {
    restaurante.share.Poner([numero](Operacion operacion, const QString& remoto) {
        return operacion == Operacion::Llevar && remoto.contains(u"BARRA"_s) ? numero : 0;
    });
    ASSERT_EQ(restaurante.Cerrar(), Desenlace::ConError);
    restaurante.share.Poner({});
    restaurante.Reconectar();
    restaurante.dialogos.Olvidar();
    restaurante.opciones.pendiente = Pendiente::Continuar;
}

/// Writes over a piece of a file that holds no row.
void Danar(const QString& archivo) {
    QByteArray danado = Bytes(archivo);
    for (int i = 0; i < 3000; ++i)
        danado[200000 + i] = static_cast<char>(i * 37);
    PonerBytes(archivo, danado);
}

TEST(DiaMalo, UnSoloCierreALaVez) {
    Restaurante restaurante;
    QDir().rename(restaurante.Raiz() + u"/red/CAJA2"_s, restaurante.Raiz() + u"/CAJA2"_s);
    Restaurante vecino;  // only its dialogs, clock and share are used
    restaurante.dialogos.Responder(u"Falla de comunicación con CAJA2"_s, Respuesta::Ignorar, [&] {
        vecino.Usar(restaurante);
        const QStringList antes = Ventas(vecino);
        for (const Pendiente pendiente : {Pendiente::Preguntar, Pendiente::Continuar}) {
            vecino.opciones.pendiente = pendiente;
            EXPECT_EQ(vecino.Cerrar(), Desenlace::SinEmpezar);
        }
        EXPECT_EQ(vecino.Trabajo().Enviar(u"CAJA1"_s), TrabajoTerminal::Desenlace::SinEmpezar);
        ASSERT_EQ(vecino.dialogos.Mostrados().size(), 3);
        for (const QString& mensaje : vecino.dialogos.Mostrados()) {
            EXPECT_TRUE(mensaje.contains(u"gerente en SERVIDOR"_s)) << mensaje.toStdString();
            EXPECT_TRUE(mensaje.contains(u"01:30"_s)) << mensaje.toStdString();
        }
        EXPECT_EQ(Ventas(vecino), antes);
    });
    EXPECT_EQ(restaurante.Cerrar(), Desenlace::Incompleto);
    // The turn is given back.
    vecino.opciones.pendiente = Pendiente::Continuar;
    vecino.dialogos.Olvidar();
    EXPECT_EQ(vecino.Cerrar(), Desenlace::SinEmpezar);
    EXPECT_EQ(vecino.dialogos.Mostrados(), QStringList{u"[!] |No hay ningún cierre pendiente"_s});
}

TEST(DiaMalo, LoVendidoTrasUnaCaidaAlEnviarSeCopiaAntesDeReemplazar) {
    struct Caso {
        const char* nombre;
        int falla;  ///< kDiscoLleno: before the replacement; with kDespues: after it
        bool vende;
        QString fecha;
    };
    const Caso casos[] = {
        {"antes, sin vender", FalloArchivo::kDiscoLleno, false, {}},
        {"después, sin vender", ShareConFallas::kDespues + FalloArchivo::kDiscoLleno, false, {}},
        {"antes, y vende con la base de ayer", FalloArchivo::kDiscoLleno, true, u"14112026"_s},
        {"después, y vende con la base nueva", ShareConFallas::kDespues + FalloArchivo::kDiscoLleno,
         true, u"15112026"_s},
    };
    for (const Caso& caso : casos) {
        SCOPED_TRACE(caso.nombre);
        Restaurante restaurante;
        const QString barra = restaurante.Terminal(u"BARRA"_s);
        FallarAlEnviar(restaurante, caso.falla);
        const Venta venta{51900, 30999, 95900, caso.fecha};
        if (caso.vende) Vender(barra, venta);
        ASSERT_EQ(restaurante.Cerrar(), Desenlace::Terminado);
        EXPECT_EQ(restaurante.dialogos.Mostrados(), QStringList{kTerminado});
        EXPECT_EQ(OrdenesEn(barra), u"0"_s);
        EXPECT_TRUE(restaurante.Resumen().sin_copiar.isEmpty());
        EXPECT_EQ(restaurante.Resumen().entregadas.size(), 3);
        if (!caso.vende) {
            EsperarDiaCerrado(restaurante);
            continue;
        }
        EsperarVendida(restaurante, venta);
        EXPECT_TRUE(restaurante.Resumen().avisos.join(u'\n').contains(u"siguió vendiendo"_s));
    }
}

TEST(DiaMalo, LoVendidoJustoAntesDelReemplazoNoSePierde) {
    Restaurante restaurante;
    const QString caja = restaurante.Terminal(u"CAJA1"_s);
    const Venta venta{51900, 10999, 95900};
    int veces = 0;
    restaurante.share.antes_de_reemplazar = [&] {
        if (++veces == 1) Vender(caja, venta);
    };
    ASSERT_EQ(restaurante.Cerrar(), Desenlace::Terminado);
    EXPECT_GT(veces, 3);
    EsperarVendida(restaurante, venta);
    EXPECT_EQ(OrdenesEn(caja), u"0"_s);
    EXPECT_EQ(restaurante.Archivados(u"CAJA1"_s).size(), 2);
}

TEST(DiaMalo, ContinuarDaElResumenDeTodoElCierre) {
    Restaurante sereno;
    ASSERT_EQ(sereno.Cerrar(), Desenlace::Terminado);
    const auto texto = [](const ResumenCierre& resumen) {
        QStringList lineas = resumen.entregadas;
        for (const TerminalContada& contada : resumen.contadas) {
            lineas << contada.terminal.nombre;
            for (std::size_t i = 0; i < kCifras; ++i) {
                lineas << QString::number(contada.cifras.registros[i]) +
                              QString::fromStdString(contada.cifras.totales[i].ATexto());
            }
        }
        for (const TablaCopiada& copiada : resumen.copiadas) {
            lineas << copiada.terminal + copiada.tabla +
                          u" %1 %2"_s.arg(copiada.insertadas).arg(copiada.modificadas);
        }
        return lineas;
    };
    for (const QString& donde : {u"CAJA1"_s, u"BARRA"_s}) {
        for (const Operacion cual : {Operacion::Traer, Operacion::Llevar}) {
            Restaurante restaurante;
            restaurante.share.Poner([&](Operacion operacion, const QString& remoto) {
                return operacion == cual && remoto.contains(donde) ? FalloArchivo::kDiscoLleno : 0;
            });
            ASSERT_EQ(restaurante.Cerrar(), Desenlace::ConError);
            restaurante.share.Poner({});
            restaurante.Reconectar();
            restaurante.opciones.pendiente = Pendiente::Continuar;
            ASSERT_EQ(restaurante.Cerrar(), Desenlace::Terminado);
            EXPECT_EQ(texto(restaurante.Resumen()), texto(sereno.Resumen()));
        }
    }
}

TEST(DiaMalo, SinCierrePendienteNoHayQueContinuarNiDescartar) {
    Restaurante restaurante;
    restaurante.opciones.pendiente = Pendiente::Continuar;
    const QStringList antes = Ventas(restaurante);
    EXPECT_EQ(restaurante.Cerrar(), Desenlace::SinEmpezar);
    FinDeDia proceso(restaurante.Ado(), restaurante.share, restaurante.reloj,
                     restaurante.Programa());
    EXPECT_FALSE(proceso.Descartar());
    EXPECT_EQ(restaurante.dialogos.Mostrados(),
              (QStringList{u"[!] |No hay ningún cierre pendiente"_s,
                           u"[!] |No hay ningún cierre pendiente"_s}));
    EXPECT_EQ(Ventas(restaurante), antes);
    EXPECT_EQ(
        restaurante.Valor(u"SELECT Valor_Cad FROM Parametros WHERE ID_Parametro='FECHA_TRABAJO'"_s),
        u"14112026"_s);
    EXPECT_EQ(restaurante.share.Operaciones(), 0);
}

TEST(DiaMalo, DescartarPreguntaDosVecesYDejaTodoGuardado) {
    Restaurante restaurante;
    FallarAlEnviar(restaurante, FalloArchivo::kDiscoLleno);
    const QStringList ventas = Ventas(restaurante);
    FinDeDia proceso(restaurante.Ado(), restaurante.share, restaurante.reloj,
                     restaurante.Programa());
    restaurante.dialogos.ResponderSi({u"14/11/2026"_s, u"descartarlo"_s}, Respuesta::Si);
    restaurante.dialogos.ResponderSi({u"14/11/2026"_s, u"seguro"_s}, Respuesta::No);
    EXPECT_FALSE(proceso.Descartar());
    EXPECT_EQ(restaurante.Valor(u"SELECT COUNT(*) FROM Cierre_Pendiente"_s), u"1"_s);
    restaurante.dialogos.ResponderSi({u"14/11/2026"_s, u"descartarlo"_s}, Respuesta::Si);
    restaurante.dialogos.ResponderSi({u"14/11/2026"_s, u"seguro"_s}, Respuesta::Si);
    EXPECT_TRUE(proceso.Descartar());
    EXPECT_EQ(restaurante.Valor(u"SELECT COUNT(*) FROM Cierre_Pendiente"_s), u"0"_s);
    EXPECT_EQ(restaurante.Valor(u"SELECT COUNT(*) FROM Cierre_Avance"_s), u"0"_s);
    EXPECT_EQ(Ventas(restaurante), ventas);
    EXPECT_EQ(restaurante.Archivados(u"BARRA"_s).size(), 1);
}

TEST(DiaMalo, UnaTerminalAbiertaSeEsperaYNoSeCierraConLoDeAyer) {
    Restaurante restaurante;
    ASSERT_EQ(restaurante.Cerrar(), Desenlace::Terminado);
    const QStringList ventas = Ventas(restaurante);
    int veces = 0;
    restaurante.share.Poner([&](Operacion operacion, const QString& remoto) {
        return operacion != Operacion::Existe && remoto.contains(u"CAJA1"_s) && ++veces > 0
                   ? FalloArchivo::kPermisoDenegado
                   : 0;
    });
    const int eventos = restaurante.dialogos.VecesEventos();
    ASSERT_EQ(restaurante.Cerrar(), Desenlace::Incompleto);
    // Those of the fetching and those of the sending.
    EXPECT_EQ(veces, 2 * ManejadorFallas::kReintentosMax + 2);
    EXPECT_GE(restaurante.dialogos.VecesEventos() - eventos, ManejadorFallas::kReintentosMax);
    EXPECT_EQ(Ventas(restaurante), ventas);
    EXPECT_TRUE(
        LineasFaltantes(restaurante.Resumen()).contains(u"CAJA1: no se leyó (no se cerró)"_s));
}

TEST(DiaMalo, LaEsperaDuraLoQueSeDijo) {
    Restaurante restaurante;
    restaurante.opciones.pausa_ms = 10;
    QElapsedTimer reloj;
    reloj.start();
    restaurante.share.Poner([&](Operacion operacion, const QString& remoto) {
        return operacion == Operacion::Traer && remoto.contains(u"CAJA1"_s) &&
                       reloj.elapsed() < 1500
                   ? FalloArchivo::kPermisoDenegado
                   : 0;
    });
    ASSERT_EQ(restaurante.Cerrar(), Desenlace::Terminado);
    EsperarDiaCerrado(restaurante);
}

TEST(DiaMalo, LoYaCopiadoEnElMismoCierreNoSeActualizaOtraVez) {
    Restaurante restaurante;
    const QString caja2 = restaurante.Terminal(u"CAJA2"_s);
    const QByteArray buena = Bytes(caja2);
    CambiarDato(caja2, u"ProductosXCuenta"_s, u"ID_ProductosXCuenta"_s, 20001, u"ID_Producto"_s,
                std::monostate());
    restaurante.dialogos.ResponderSi({u"CAJA2"_s}, Respuesta::Terminar);
    ASSERT_EQ(restaurante.Cerrar(), Desenlace::ConError);
    // CAJA1 is copied; it sells on, and CAJA2 is put right.
    const Venta venta{51900, 10999, 95900};
    Vender(restaurante.Terminal(u"CAJA1"_s), venta);
    PonerBytes(caja2, buena);
    restaurante.opciones.pendiente = Pendiente::Continuar;
    ASSERT_EQ(restaurante.Cerrar(), Desenlace::Terminado);
    EsperarVendida(restaurante, venta);
    // What the first copy did is counted with what the second one added.
    QStringList cuentas;
    for (const TablaCopiada& copiada : restaurante.Resumen().copiadas) {
        if (copiada.terminal == u"CAJA1"_s && copiada.tabla == u"ProductosXCuenta"_s)
            cuentas << u"%1 %2 %3"_s.arg(copiada.insertadas)
                           .arg(copiada.modificadas)
                           .arg(copiada.iguales);
    }
    EXPECT_EQ(cuentas, QStringList{u"535 49 583"_s});
}

TEST(DiaMalo, SeDetieneEnCualquierPuntoSeguroYContinuaIgual) {
    for (int punto = 1;; punto += 1 + punto / 3) {
        SCOPED_TRACE(punto);
        Restaurante restaurante;
        int vez = 0;
        restaurante.opciones.detener = [&] { return ++vez == punto; };
        const Desenlace primero = restaurante.Cerrar();
        if (primero == Desenlace::Terminado) {
            EXPECT_GT(punto, 10);
            return;
        }
        ASSERT_EQ(primero, Desenlace::Detenido);
        ASSERT_EQ(restaurante.dialogos.Mostrados().size(), 1);
        EXPECT_TRUE(restaurante.dialogos.Mostrados().first().contains(u"--continuar"_s));
        restaurante.Reconectar();
        restaurante.opciones.detener = {};
        restaurante.opciones.pendiente = Pendiente::Continuar;
        ASSERT_EQ(restaurante.Cerrar(), Desenlace::Terminado);
        EsperarDiaCerrado(restaurante);
        if (::testing::Test::HasFailure()) return;
    }
}

TEST(DiaMalo, LasLetrasQueUnIndiceNoGuardaSeReemplazanYSeDicen) {
    Restaurante restaurante;
    restaurante.Mandar(u"UPDATE Producto SET Nombre_Cuenta='Taco ★' WHERE ID_Producto=202"_s);
    // An accent in two code points is one letter.
    restaurante.Mandar(u"UPDATE Producto SET Nombre_Cuenta='Caf"_s +
                       u"e\u0301' WHERE ID_Producto=201"_s);
    ASSERT_EQ(restaurante.Cerrar(), Desenlace::Terminado);
    const QString avisos = restaurante.Resumen().avisos.join(u'\n');
    EXPECT_EQ(restaurante.Resumen().avisos.size(), 1) << avisos.toStdString();
    EXPECT_TRUE(avisos.contains(u"202"_s) && avisos.contains(u'★')) << avisos.toStdString();
}

TEST(DiaMalo, LaPlantillaSeRevisaAntesDeMoverLaFecha) {
    const QString rutas[] = {u"falta"_s, u"basura"_s, u"sin tablas"_s};
    for (const QString& caso : rutas) {
        Restaurante restaurante;
        const QString plantilla = restaurante.Programa() + u"/Plantilla.mdb"_s;
        if (caso == u"falta"_s) QFile::remove(plantilla);
        if (caso == u"basura"_s) PonerBytes(plantilla, QByteArray(8192, 'x'));
        if (caso == u"sin tablas"_s) {
            QFile::remove(plantilla);
            auto vacia = jet::BaseDatos::Crear(plantilla.toStdString());
            ASSERT_TRUE(vacia && vacia->Guardar());
        }
        ASSERT_EQ(restaurante.Cerrar(), Desenlace::ConError) << caso.toStdString();
        EXPECT_EQ(restaurante.Valor(
                      u"SELECT Valor_Cad FROM Parametros WHERE ID_Parametro='FECHA_TRABAJO'"_s),
                  u"14112026"_s);
        EXPECT_EQ(restaurante.share.Operaciones(), 0);
        EXPECT_TRUE(restaurante.dialogos.Mostrados().first().contains(
            u"No quedó ningún cierre pendiente"_s));
    }
}

TEST(DiaMalo, UnArchivoDanadoQueSeLeeEnteroSePuedeUsar) {
    for (const Respuesta respuesta : {Respuesta::Si, Respuesta::No}) {
        Restaurante restaurante;
        const QString caja = restaurante.Terminal(u"CAJA2"_s);
        Danar(caja);
        const QByteArray danado = Bytes(caja);
        restaurante.dialogos.ResponderSi({u"CAJA2"_s, u"Se leyeron completos 1959 renglones"_s},
                                         respuesta);
        if (respuesta == Respuesta::No) {
            restaurante.dialogos.ResponderSi({u"3343"_s, u"CAJA2"_s}, Respuesta::Apartar);
        }
        ASSERT_EQ(restaurante.Cerrar(),
                  respuesta == Respuesta::Si ? Desenlace::Terminado : Desenlace::Incompleto);
        EXPECT_EQ(Bytes(restaurante.EnArchivo(u"CAJA2"_s, 1)), danado) << "the original is kept";
        EXPECT_EQ(QDir(restaurante.Programa() + u"/CAJA2"_s).entryList({u"*.reparada"_s}),
                  QStringList());
        if (respuesta == Respuesta::No) continue;
        EsperarDiaCerrado(restaurante);
        EXPECT_EQ(restaurante.Archivados(u"CAJA2"_s).size(), 2);
    }
}

// What lies at the terminal is still the damaged file: neither a new sale nor a second question.
TEST(DiaMalo, ElCierreQueUsoUnaCopiaReparadaContinuaConElla) {
    for (const QString& falla_en :
         {u"INSERT INTO Comanda"_s, u"INSERT INTO Pago"_s, u"UPDATE Parametros SET Valor_Num"_s}) {
        SCOPED_TRACE(falla_en.toStdString());
        Restaurante restaurante;
        Danar(restaurante.Terminal(u"CAJA2"_s));
        restaurante.dialogos.ResponderSi({u"CAJA2"_s, u"Se leyeron completos 1959 renglones"_s},
                                         Respuesta::Si);
        restaurante.cinta = std::make_shared<quimo::pruebas::Cinta>();
        restaurante.cinta->falla = [&](const QString& sentencia) -> std::optional<data::FalloSql> {
            if (!sentencia.startsWith(falla_en)) return std::nullopt;
            return quimo::pruebas::ConexionRota();
        };
        restaurante.Reconectar();
        ASSERT_EQ(restaurante.Cerrar(), Desenlace::ConError);
        EXPECT_EQ(Bytes(restaurante.EnArchivo(u"CAJA2"_s, 2) + u".sha256"_s).left(64),
                  restaurante
                      .Valor(u"SELECT Detalle FROM Cierre_Avance WHERE Nombre_Term='CAJA2' AND "
                             u"Tabla='*archivo'"_s)
                      .toLatin1());
        restaurante.cinta->falla = {};
        restaurante.Reconectar();
        restaurante.dialogos.Olvidar();
        restaurante.opciones.pendiente = Pendiente::Continuar;
        ASSERT_EQ(restaurante.Cerrar(), Desenlace::Terminado);
        EXPECT_EQ(restaurante.dialogos.Mostrados(), QStringList{kTerminado});
        EXPECT_EQ(restaurante.Archivados(u"CAJA2"_s).size(), 2);
        EXPECT_FALSE(restaurante.Resumen().avisos.join(u'\n').contains(u"siguió vendiendo"_s));
        EsperarDiaCerrado(restaurante);
    }
}

TEST(DiaMalo, UnPagoQueNoCabeSeDiceConSuLugar) {
    Restaurante restaurante;
    const QString caja = restaurante.Terminal(u"CAJA2"_s);
    for (const int pago : {98001, 98002}) {
        Vender(caja, {pago, 20000 + pago, pago});
        CambiarDato(caja, u"Pago"_s, u"ID_Pago"_s, pago, u"Monto_Pago"_s,
                    *base::Dinero::DeTexto("922337203685477.0000"));
    }
    restaurante.dialogos.ResponderSi({u"CAJA2"_s, u"Pago"_s, u"Monto_Pago"_s}, Respuesta::Apartar);
    EXPECT_EQ(restaurante.Cerrar(), Desenlace::Incompleto);
}

TEST(DiaMalo, DosTerminalesConElMismoNumeroDePagoSeDicenAntesDeCopiar) {
    for (const Respuesta respuesta : {Respuesta::Aceptar, Respuesta::Cancelar}) {
        Restaurante restaurante;
        CambiarDato(restaurante.Terminal(u"CAJA1"_s), u"Pago"_s, u"ID_Pago"_s, 94302, u"ID_Pago"_s,
                    94303);
        restaurante.dialogos.ResponderSi({u"94303"_s, u"CAJA1"_s, u"Pago"_s}, respuesta);
        const QStringList antes = Ventas(restaurante);
        const Desenlace desenlace = restaurante.Cerrar();
        if (respuesta == Respuesta::Cancelar) {
            EXPECT_EQ(desenlace, Desenlace::Abortado);
            EXPECT_EQ(Ventas(restaurante), antes);
        } else {
            EXPECT_EQ(desenlace, Desenlace::Incompleto);
        }
    }
}

}  // namespace
}  // namespace quimo::dayclose::pruebas
