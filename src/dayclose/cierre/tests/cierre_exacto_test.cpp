// What a close remembers of itself, and when: a disturbance between any two of its steps leaves
// neither a row without its note nor a note without its row.

#include <cerrno>
#include <functional>

#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <QDir>
#include <QFile>

#include "dayclose/cierre/colisiones.h"
#include "dayclose/cierre/traspaso.h"
#include "dayclose/terminales/archivos.h"
#include "dayclose/terminales/parametros_terminal.h"
#include "dayclose/terminales/plantilla.h"
#include "restaurante_prueba.h"
#include "terminal_prueba.h"

namespace {

/// Asked with the file that is to be made durable; an errno other than 0 refuses it.
std::function<int(const QString& ruta)>& AlAsentar() {
    static std::function<int(const QString&)> pregunta;
    return pregunta;
}

}  // namespace

/// Stands before the system's own.
extern "C" int fsync(int fd) {
    const QString ruta = QFile::symLinkTarget(QStringLiteral("/proc/self/fd/%1").arg(fd));
    const int error = AlAsentar() ? AlAsentar()(ruta) : 0;
    if (error == 0) return static_cast<int>(::syscall(SYS_fsync, fd));
    errno = error;
    return -1;
}

using namespace Qt::StringLiterals;

namespace quimo::dayclose::pruebas {
namespace {

using data::FalloSql;
using foundation::Respuesta;
using Desenlace = FinDeDia::Desenlace;
using Operacion = ShareConFallas::Operacion;
using Pendiente = OpcionesCierre::Pendiente;

const QString kTerminado = u"[i] |Proceso terminado"_s;

void Fallar(Restaurante& restaurante, Operacion cual, const QString& terminal, int numero) {
    restaurante.share.Poner([=](Operacion operacion, const QString& remoto) {
        return operacion == cual && remoto.contains(terminal) ? numero : 0;
    });
}

/// The next close goes on with the one that stopped, and nothing fails any more.
void Continuar(Restaurante& restaurante) {
    restaurante.share.Poner({});
    if (restaurante.cinta) *restaurante.cinta = {};
    restaurante.Reconectar();
    restaurante.dialogos.Olvidar();
    restaurante.opciones.pendiente = Pendiente::Continuar;
}

void ConEspia(Restaurante& restaurante) {
    restaurante.cinta = std::make_shared<quimo::pruebas::Cinta>();
    restaurante.Reconectar();
}

ParametrosTerminal Parametros(const QString& archivo) {
    const auto base = jet::BaseDatos::Abrir(archivo.toStdString());
    EXPECT_TRUE(base);
    const auto leidos = LeerParametrosTerminal(*base);
    EXPECT_TRUE(leidos);
    return *leidos;
}

/// Gives a counter in a terminal's own file another value.
void PonerFolio(const QString& archivo, const char16_t* clave, double valor) {
    auto base = jet::BaseDatos::Abrir(archivo.toStdString(), jet::Modo::Escritura);
    ASSERT_TRUE(base);
    auto tabla = base->AbrirTabla("Parametros");
    ASSERT_TRUE(tabla);
    const std::size_t llave = tabla->Columna("ID_Parametro").value();
    auto cursor = tabla->Recorrer();
    ASSERT_TRUE(cursor);
    do {
        const auto hay = cursor->Siguiente();
        ASSERT_TRUE(hay && *hay);
    } while (cursor->Valores()[llave] != jet::Valor(std::u16string(clave)));
    const jet::Cambio cambio{tabla->Columna("Valor_Num").value(), valor};
    ASSERT_TRUE(tabla->Actualizar(cursor->Id(), std::span(&cambio, 1)));
    ASSERT_TRUE(base->Guardar());
}

QString Ordenes(const QString& archivo) {
    const auto base = jet::BaseDatos::Abrir(archivo.toStdString());
    const auto tabla = base->AbrirTabla("Comanda");
    return tabla ? QString::number(*tabla->Cuantas()) : QString();
}

QString Pendientes(Restaurante& restaurante) {
    return restaurante.Valor(u"SELECT COUNT(*) FROM Cierre_Pendiente"_s);
}

/// A close whose first copy cannot be noted.
void FallarAlAnotar(Restaurante& restaurante) {
    ConEspia(restaurante);
    bool copiando = false;
    restaurante.cinta->falla = [&](const QString& sentencia) -> std::optional<FalloSql> {
        copiando = copiando || sentencia.startsWith(u"INSERT INTO Pago"_s);
        if (!copiando || !sentencia.contains(u"Cierre_Avance"_s)) return std::nullopt;
        return FalloSql{FalloSql::kSentencia, {{u"42000"_s, 1105, u"prueba"_s, u"no se pudo"_s}}};
    };
    EXPECT_EQ(restaurante.Cerrar(), Desenlace::ConError);
    EXPECT_TRUE(copiando);
}

TEST(CierreExacto, LasFilasYSuAvanceSeGuardanJuntos) {
    Restaurante restaurante;
    const QStringList antes = Ventas(restaurante);
    FallarAlAnotar(restaurante);
    Continuar(restaurante);
    EXPECT_EQ(Ventas(restaurante), antes) << "rows whose progress could not be noted do not stay";
    ASSERT_EQ(restaurante.Cerrar(), Desenlace::Terminado);
    EsperarDiaCerrado(restaurante);
}

/// The last commit's answer is lost: what the tables remember tells whether it was done.
TEST(CierreExacto, LaRespuestaPerdidaDelUltimoPasoSeAverigua) {
    for (const bool hecho : {true, false}) {
        SCOPED_TRACE(hecho);
        Restaurante restaurante;
        ConEspia(restaurante);
        auto& cinta = *restaurante.cinta;
        cinta.al_confirmar = [&](data::SqlConnection& dentro) -> std::optional<FalloSql> {
            if (cinta.sentencias.last() != u"DELETE FROM Cierre_Pendiente"_s) return std::nullopt;
            EXPECT_TRUE(hecho ? dentro.Confirmar() : dentro.Revertir());
            return quimo::pruebas::ConexionRota();
        };
        EXPECT_EQ(restaurante.Cerrar(), hecho ? Desenlace::Terminado : Desenlace::ConError);
        EXPECT_EQ(Pendientes(restaurante), hecho ? u"0"_s : u"1"_s);
        if (!hecho) {
            Continuar(restaurante);
            ASSERT_EQ(restaurante.Cerrar(), Desenlace::Terminado);
        }
        EsperarDiaCerrado(restaurante);
    }
}

TEST(CierreExacto, QuienPierdeElTurnoNoSigue) {
    Restaurante restaurante;
    restaurante.share.Poner([&](Operacion operacion, const QString& remoto) {
        if (operacion == Operacion::Traer && remoto.contains(u"CAJA2"_s)) {
            restaurante.Mandar(
                u"EXEC sp_releaseapplock @Resource='QUIMO cierre',@LockOwner='Session'"_s);
            restaurante.reloj.Poner(restaurante.reloj.Ahora().addSecs(30));
        }
        EXPECT_FALSE(remoto.contains(u"BARRA"_s));
        return 0;
    });
    EXPECT_EQ(restaurante.Cerrar(), Desenlace::ConError);
    ASSERT_EQ(restaurante.dialogos.Mostrados().size(), 1);
    EXPECT_TRUE(restaurante.dialogos.Mostrados().first().contains(u"el turno del cierre"_s));
    EXPECT_EQ(Pendientes(restaurante), u"1"_s);
}

TEST(CierreExacto, LoQueUnIntentoAnteriorNoPudoLeerSeLeeAlContinuar) {
    Restaurante restaurante;
    restaurante.share.Poner([](Operacion operacion, const QString& remoto) -> int {
        if (remoto.contains(u"CAJA1"_s)) return FalloArchivo::kRutaNoEncontrada;
        return operacion == Operacion::Traer && remoto.contains(u"BARRA"_s)
                   ? FalloArchivo::kDiscoLleno
                   : 0;
    });
    restaurante.dialogos.Responder(u"Falla de comunicación con CAJA1"_s, Respuesta::Ignorar);
    ASSERT_EQ(restaurante.Cerrar(), Desenlace::ConError);
    Continuar(restaurante);
    ASSERT_EQ(restaurante.Cerrar(), Desenlace::Terminado);
    EXPECT_TRUE(restaurante.Resumen().sin_copiar.isEmpty());
    EsperarDiaCerrado(restaurante);
}

TEST(CierreExacto, LaBaseEnviadaSeConoceAunqueSeCaigaAlEnviarla) {
    Restaurante restaurante;
    Fallar(restaurante, Operacion::Llevar, u"BARRA"_s,
           ShareConFallas::kDespues + FalloArchivo::kDiscoLleno);
    ASSERT_EQ(restaurante.Cerrar(), Desenlace::ConError);
    Continuar(restaurante);
    restaurante.share.Poner([](Operacion operacion, const QString&) {
        EXPECT_NE(static_cast<int>(operacion), static_cast<int>(Operacion::Llevar));
        return 0;
    });
    ASSERT_EQ(restaurante.Cerrar(), Desenlace::Terminado);
    EXPECT_EQ(restaurante.Resumen().avisos, QStringList());
    EXPECT_EQ(restaurante.Archivados(u"BARRA"_s).size(), 1);
    EsperarDiaCerrado(restaurante);
}

/// A terminal sold after a failure: from its new database, whose counters went on from the new
/// day's numbers, or from the old one, whose counters the close replaces.
TEST(CierreExacto, LosContadoresDeLaBaseNuevaNoRetroceden) {
    for (const bool entregada : {true, false}) {
        SCOPED_TRACE(entregada);
        Restaurante restaurante;
        const QString barra = restaurante.Terminal(u"BARRA"_s);
        const qint64 articulos = [&] {
            const auto base = BaseTerminal::Abrir(barra, u"BARRA"_s);
            return base->Contar()->registros[static_cast<std::size_t>(Cifra::PXC)];
        }();
        Fallar(restaurante, Operacion::Llevar, u"BARRA"_s,
               entregada ? ShareConFallas::kDespues + FalloArchivo::kDiscoLleno
                         : FalloArchivo::kDiscoLleno);
        ASSERT_EQ(restaurante.Cerrar(), Desenlace::ConError);
        const ParametrosTerminal antes = Parametros(barra);
        Vender(barra, {51900, 30999, 95900, entregada ? u"15112026"_s : u"14112026"_s});
        if (!entregada) {
            // The recorded file says nothing of itself.
            AgregarFila(barra, u"Parametros"_s,
                        {{u"ID_Parametro"_s, std::u16string(u"FECHA_TRABAJO")},
                         {u"Valor_Cad"_s, std::u16string(u"14112026")}});
            for (const char16_t* folio : {u"FOLIOCOMANDA", u"FOLIOPAGO"})
                AgregarFila(barra, u"Parametros"_s, {{u"ID_Parametro"_s, std::u16string(folio)}});
        }
        PonerFolio(barra, u"FOLIOCOMANDA", 98000);
        PonerFolio(barra, u"FOLIOPAGO", 99000);
        Continuar(restaurante);
        ASSERT_EQ(restaurante.Cerrar(), Desenlace::Terminado);
        const ParametrosTerminal despues = Parametros(barra);
        EXPECT_EQ(despues.fecha_trabajo, u"15112026"_s);
        const ParametrosTerminal caja = Parametros(restaurante.Terminal(u"CAJA1"_s));
        EXPECT_EQ(despues.folio_comanda, entregada ? 98000 : caja.folio_comanda);
        EXPECT_EQ(despues.folio_pago, entregada ? 99000 : caja.folio_pago);
        if (entregada) {
            EXPECT_EQ(antes.folio_pago, caja.folio_pago);
        }
        // What is told of the day is its own file, not what was sold after it.
        ASSERT_EQ(restaurante.Resumen().contadas.size(), 3);
        EXPECT_EQ(restaurante.Resumen()
                      .contadas[2]
                      .cifras.registros[static_cast<std::size_t>(Cifra::PXC)],
                  entregada ? articulos : articulos + 1);
    }
}

TEST(CierreExacto, EnviarConservaLosContadoresDeLaTerminal) {
    Restaurante restaurante;
    ASSERT_EQ(restaurante.Cerrar(), Desenlace::Terminado);
    const QString caja = restaurante.Terminal(u"CAJA2"_s);
    PonerFolio(caja, u"FOLIOPAGO", 99000);
    ASSERT_EQ(restaurante.Trabajo().Enviar(u"CAJA2"_s), TrabajoTerminal::Desenlace::Hecho);
    EXPECT_EQ(Parametros(caja).folio_pago, 99000);
    EXPECT_EQ(Parametros(caja).folio_comanda, 51171);
    EXPECT_EQ(QDir(restaurante.Programa() + u"/CAJA2"_s).entryList(QDir::Files), QStringList());
}

TEST(CierreExacto, ElCierreNuevoNoSabeNadaDelQueSeDejo) {
    Restaurante restaurante;
    Fallar(restaurante, Operacion::Llevar, u"BARRA"_s, FalloArchivo::kDiscoLleno);
    ASSERT_EQ(restaurante.Cerrar(), Desenlace::ConError);
    const QStringList antes = Ventas(restaurante);
    const QString caja = restaurante.Terminal(u"CAJA1"_s);
    Vender(caja, {51900, 10999, 95900, u"15112026"_s});
    restaurante.share.Poner([&](Operacion, const QString&) {
        EXPECT_EQ(Pendientes(restaurante), u"1"_s);
        EXPECT_EQ(restaurante.Valor(u"SELECT Fecha_Cierre FROM Cierre_Pendiente"_s), u"15112026"_s);
        for (const QString& nombre : {u"CAJA2"_s, u"BARRA"_s}) {
            EXPECT_FALSE(
                QFile::exists(restaurante.Programa() + u'/' + nombre + u"/Quimo_Terminal.mdb"_s))
                << "yesterday's copy would be taken for a terminal's sales";
        }
        return 0;
    });
    restaurante.opciones.omitir = {u"BARRA"_s, u"CAJA2"_s};
    restaurante.dialogos.Responder(u"El cierre del 14/11/2026 no terminó. ¿Desea continuarlo?"_s,
                                   Respuesta::No);
    restaurante.dialogos.ResponderSi({u"14/11/2026"_s, u"seguro"_s}, Respuesta::Si);
    ASSERT_EQ(restaurante.Cerrar(), Desenlace::Incompleto);
    EXPECT_EQ(restaurante.Resumen().fecha, u"15112026"_s);
    EXPECT_EQ(restaurante.Resumen().entregadas, QStringList{u"CAJA1"_s});
    EXPECT_EQ(restaurante.Resumen().copiadas.size(), 4) << "order, check, item and payment";
    EXPECT_EQ(Ordenes(caja), u"0"_s);
    EXPECT_EQ(Ventas(restaurante).size(), antes.size() + 4);
    EXPECT_EQ(Pendientes(restaurante), u"0"_s);
    EXPECT_EQ(restaurante.Valor(u"SELECT COUNT(*) FROM Cierre_Avance"_s), u"0"_s);
}

TEST(CierreExacto, LaCopiaLocalQueYaNoEsLaContadaSeRepone) {
    Restaurante restaurante;
    FallarAlAnotar(restaurante);
    PonerBytes(restaurante.Programa() + u"/CAJA1/Quimo_Terminal.mdb"_s,
               Bytes(restaurante.Programa() + u"/Plantilla.mdb"_s));
    QFile::remove(restaurante.Programa() + u"/CAJA2/Quimo_Terminal.mdb"_s);
    Continuar(restaurante);
    ASSERT_EQ(restaurante.Cerrar(), Desenlace::Terminado);
    EsperarDiaCerrado(restaurante);
}

TEST(CierreExacto, LoYaCopiadoNoSeApartaAlContinuar) {
    Restaurante restaurante;
    Fallar(restaurante, Operacion::Llevar, u"CAJA1"_s, FalloArchivo::kDiscoLleno);
    ASSERT_EQ(restaurante.Cerrar(), Desenlace::ConError);
    Continuar(restaurante);
    restaurante.opciones.omitir = {u"BARRA"_s};
    ASSERT_EQ(restaurante.Cerrar(), Desenlace::Terminado);
    EsperarDiaCerrado(restaurante);
}

/// Only what the row itself is at fault of is told as the terminal's.
TEST(CierreExacto, SoloLoQueEsDelRenglonEsDeLaTerminal) {
    Restaurante restaurante;
    struct Caso {
        QString sqlstate;
        int nativo;
        bool de_la_terminal;
    };
    const Caso casos[] = {{u"22001"_s, 8152, true}, {u"22003"_s, 8115, true},
                          {u"23000"_s, 515, true},  {u"42000"_s, 1105, false},
                          {u"08S01"_s, 0, false},   {u"40001"_s, 1205, false}};
    for (const Caso& caso : casos) {
        const FalloSql fallo{FalloSql::kSentencia,
                             {{caso.sqlstate, caso.nativo, u"prueba"_s, u"rechazado"_s}}};
        const RenglonRechazado renglon{u"CAJA9"_s, u"Pago"_s, {}, u"ID_Pago=1"_s, fallo};
        const Interrupcion dicha =
            ExplicarFalla(restaurante.Ado().Conexion(), {fallo, renglon}, u"CAJA2"_s);
        EXPECT_EQ(dicha.terminal, caso.de_la_terminal ? u"CAJA2"_s : QString())
            << caso.sqlstate.toStdString();
        EXPECT_EQ(dicha.detalle.contains(u"Terminal CAJA2, tabla Pago"_s), caso.de_la_terminal);
    }
}

TEST(CierreExacto, LasFechasDeUnArchivoVanPorDia) {
    Restaurante restaurante;
    const QString caja = restaurante.Terminal(u"CAJA1"_s);
    int orden = 52000;
    for (const char16_t* fecha : {u"01122026", u"30112026", u"02012027", u"14112025"}) {
        AgregarFila(caja, u"Comanda"_s,
                    {{u"ID_Comanda"_s, ++orden}, {u"Fecha_Trabajo"_s, std::u16string(fecha)}});
    }
    const auto base = jet::BaseDatos::Abrir(caja.toStdString());
    ASSERT_TRUE(base);
    const auto fechas = FechasDeOrdenes(*base);
    ASSERT_TRUE(fechas);
    EXPECT_EQ(*fechas, (QStringList{u"14112025"_s, u"14112026"_s, u"30112026"_s, u"01122026"_s,
                                    u"02012027"_s}));
}

/// In a file without keys, as a repair may leave one.
TEST(CierreExacto, LaClaveRepetidaEnUnArchivoPierdeUnRenglon) {
    QTemporaryDir carpeta;
    const QString archivo = carpeta.filePath(u"sin-claves.mdb"_s);
    {
        auto base = jet::BaseDatos::Crear(archivo.toStdString());
        ASSERT_TRUE(base);
        for (const TablaPlantilla& tabla : TablasPlantilla()) {
            jet::DefTabla definicion = Definicion(tabla);
            definicion.indices.clear();
            ASSERT_TRUE(base->CrearTabla(definicion));
        }
        ASSERT_TRUE(base->Guardar());
    }
    Vender(archivo, {51900, 10999, 95900});
    for (const char* monto : {"1.0000", "2.0000"}) {
        AgregarFila(archivo, u"Pago"_s,
                    {{u"ID_Pago"_s, 95901},
                     {u"ID_comanda"_s, 51900},
                     {u"Num_Cuenta"_s, 1},
                     {u"Monto_Pago"_s, *base::Dinero::DeTexto(monto)}});
    }
    const auto hallazgos = BuscarColisiones({{u"CAJA1"_s, 1, archivo}}, u"14112026"_s);
    ASSERT_TRUE(hallazgos) << hallazgos.error().descripcion.toStdString();
    ASSERT_EQ(hallazgos->size(), 1);
    EXPECT_TRUE(hallazgos->first().se_pierde);
    EXPECT_TRUE(hallazgos->first().texto.contains(u"ID_Pago=95901"_s))
        << hallazgos->first().texto.toStdString();
}

/// A file counts as written once the disk has it: contents first, then its name.
TEST(CierreExacto, LoEscritoEstaEnElDiscoAntesDeTenerSuNombre) {
    QTemporaryDir carpeta;
    const QString origen = carpeta.filePath(u"origen"_s);
    const QString destino = carpeta.filePath(u"destino"_s);
    for (const int falla : {0, 1, 2}) {
        PonerBytes(origen, "nuevo");
        PonerBytes(destino, "viejo");
        QStringList asentados;
        AlAsentar() = [&](const QString& ruta) {
            asentados << ruta.section(u'/', -1) + u' ' + QString::fromLatin1(Bytes(destino));
            return asentados.size() == falla ? EIO : 0;
        };
        const auto copiado = CopiarEntero(origen, destino);
        AlAsentar() = {};
        EXPECT_EQ(copiado.has_value(), falla == 0) << falla;
        const QStringList esperados = {u"destino.parcial viejo"_s,
                                       carpeta.path().section(u'/', -1) + u" nuevo"_s};
        EXPECT_EQ(asentados, falla == 1 ? esperados.mid(0, 1) : esperados);
        EXPECT_EQ(Bytes(destino), falla == 1 ? "viejo" : "nuevo");
        EXPECT_FALSE(QFile::exists(destino + u".parcial"_s));
    }
}

}  // namespace
}  // namespace quimo::dayclose::pruebas
