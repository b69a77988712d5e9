#include "demo/demo.h"

#include <algorithm>
#include <filesystem>
#include <vector>

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include "data/esquema.h"
#include "data/transaccion.h"
#include "dayclose/cierre/base_nueva.h"
#include "dayclose/terminales/archivos.h"
#include "dayclose/terminales/plantilla.h"
#include "demo/archivo_terminal.h"
#include "demo/catalogo.h"
#include "demo/central.h"
#include "demo/jornada.h"
#include "demo/sembrar.h"
#include "demo/sql_demo.h"
#include "foundation/parametros.h"

namespace quimo::demo {

using namespace Qt::StringLiterals;
using base::Error;
using base::Result;
using data::Transaccion;
using dayclose::Terminal;

namespace {

// Also what tells a demonstration from a real restaurant's folder.
constexpr char kLeeme[] =
    "Restaurante de demostración de QUIMO\n"
    "\n"
    "central.db     la base de datos central, con un mes de ventas\n"
    "quimo/         la carpeta del programa\n"
    "red/           lo que comparten las terminales: sus bases con las ventas del día\n"
    "\n"
    "Abrir el programa:\n"
    "  QUIMO_DIR=quimo QUIMO_CLAVE_ARCHIVO=quimo/clave quimo embebido central.db\n"
    "Cerrar el día:\n"
    "  quimoctl cerrar embebido central.db --dir quimo --red red\n"
    "Vender otro día (después de cerrar):\n"
    "  quimoctl demo .\n"
    "\n"
    "Todo es inventado y se puede borrar. Sin este archivo la carpeta deja de ser una "
    "demostración.\n";

/// Where things are in the demonstration's folder.
struct Lugares {
    QString raiz;
    QString Central() const { return raiz + u"/central.db"_s; }
    QString Programa() const { return raiz + u"/quimo"_s; }
    QString Plantilla() const { return Programa() + u"/Plantilla.mdb"_s; }
    QString Clave() const { return Programa() + u"/clave"_s; }
    QString Leeme() const { return raiz + u"/LEEME.txt"_s; }
    QString Red() const { return raiz + u"/red"_s; }
    QString Terminal(const QString& nombre, const QString& directorio) const {
        return Red() + u'/' + nombre + u'/' + directorio + u"/Quimo_Terminal.mdb"_s;
    }
};

CifrasVentas operator+(const CifrasVentas& a, const CifrasVentas& b) {
    return {a.comandas + b.comandas, a.abiertas + b.abiertas, a.articulos + b.articulos,
            a.anulados + b.anulados, a.total + b.total};
}

Result<jet::BaseDatos> AbrirTerminal(const QString& archivo, jet::Modo modo) {
    return jet::BaseDatos::Abrir(archivo.toStdString(), modo);
}

// Gives every terminal a database from the template and the current catalogues, as a close does.
Result<void> Repartir(Central& central, const Lugares& lugares) {
    QUIMO_TRY(const QString directorio, central.DirectorioTerminal());
    QUIMO_TRY(const QVector<Terminal> terminales, central.Terminales());
    QUIMO_TRY(auto nueva,
              Traducido(dayclose::BaseNueva::Preparar(central.Ado(), lugares.Programa())));
    for (const Terminal& terminal : terminales) {
        const QString destino = lugares.Terminal(terminal.nombre, directorio);
        QUIMO_TRY_VOID(Traducido(dayclose::CrearCarpeta(QFileInfo(destino).path())));
        QUIMO_TRY_VOID(Traducido(nueva.Adaptar(terminal)));
        QUIMO_TRY_VOID(Traducido(dayclose::CopiarEntero(nueva.Archivo(), destino)));
    }
    return {};
}

struct Puesto {
    Ritmo ritmo = Ritmo::Salon;
    Catalogo catalogo;
};

Result<std::vector<Puesto>> LeerPuestos(Central& central, const Lugares& lugares) {
    QUIMO_TRY(const QString directorio, central.DirectorioTerminal());
    QUIMO_TRY(const QVector<Terminal> terminales, central.Terminales());
    std::vector<Puesto> puestos;
    for (const Terminal& terminal : terminales) {
        QUIMO_TRY(const jet::BaseDatos base,
                  AbrirTerminal(lugares.Terminal(terminal.nombre, directorio), jet::Modo::Lectura));
        QUIMO_TRY(Catalogo catalogo, LeerCatalogo(base));
        puestos.push_back({RitmoDe(terminal), std::move(catalogo)});
    }
    return puestos;
}

// The days before the working date, straight into the central tables.
Result<CifrasVentas> VenderHistoria(Central& central, const Lugares& lugares, const QDate& hoy,
                                    int dias) {
    QUIMO_TRY(std::vector<Puesto> puestos, LeerPuestos(central, lugares));
    QUIMO_TRY(Folios folios, central.LeerFolios());
    QUIMO_TRY(auto transaccion, Traducido(Transaccion::Iniciar(central.Conexion())));
    CifrasVentas cifras;
    for (QDate dia = hoy.addDays(-dias); dia < hoy; dia = dia.addDays(1)) {
        std::vector<VentasDia> ventas;
        for (Puesto& puesto : puestos) {
            ventas.push_back(SimularJornada(puesto.catalogo, {dia.toString(u"ddMMyyyy"_s), dia},
                                            puesto.ritmo, AlCerrar::TodoPagado));
            puesto.catalogo.siguiente_articulo = ventas.back().siguiente_articulo;
        }
        Numerar(ventas, folios);
        for (const VentasDia& de_terminal : ventas) {
            QUIMO_TRY_VOID(central.Agregar(de_terminal));
            cifras = cifras + Cifras(de_terminal);
        }
    }
    QUIMO_TRY_VOID(central.GuardarFolios(folios));
    QUIMO_TRY_VOID(Traducido(transaccion.Confirmar()));
    return cifras;
}

// A terminal's file and what it is about to sell.
struct Venta {
    jet::BaseDatos base;
    Puesto puesto;
    std::size_t renglon = 0;  ///< in the summary
};

Result<std::vector<Venta>> AbrirSinVentas(Central& central, const Lugares& lugares,
                                          ResumenDemo& resumen, Folios& folios) {
    QUIMO_TRY(const QString directorio, central.DirectorioTerminal());
    QUIMO_TRY(const QVector<Terminal> terminales, central.Terminales());
    std::vector<Venta> ventas;
    for (const Terminal& terminal : terminales) {
        using Estado = VentasDeTerminal::Estado;
        resumen.terminales.append({terminal.nombre, Estado::SinBaseDeDatos});
        VentasDeTerminal& renglon = resumen.terminales.last();
        const QString archivo = lugares.Terminal(terminal.nombre, directorio);
        if (!QFileInfo::exists(archivo)) continue;
        QUIMO_TRY(jet::BaseDatos base, AbrirTerminal(archivo, jet::Modo::Escritura));
        QUIMO_TRY(const NumerosUsados usados, LeerNumerosUsados(base));
        folios.comanda = std::max(folios.comanda, usados.comanda + 1);
        folios.pago = std::max(folios.pago, usados.pago + 1);
        renglon.estado = usados.comanda > 0 ? Estado::YaTeniaVentas : Estado::Vendio;
        if (renglon.estado == Estado::YaTeniaVentas) continue;
        QUIMO_TRY(Catalogo catalogo, LeerCatalogo(base));
        ventas.push_back({std::move(base),
                          {RitmoDe(terminal), std::move(catalogo)},
                          static_cast<std::size_t>(resumen.terminales.size()) - 1});
    }
    return ventas;
}

// Every terminal without sales sells the working date into its file.
Result<void> VenderHoy(Central& central, const Lugares& lugares, ResumenDemo& resumen) {
    QUIMO_TRY(const DiaDeTrabajo dia, central.FechaTrabajo());
    resumen.fecha_trabajo = dia.texto;
    QUIMO_TRY(Folios folios, central.LeerFolios());
    QUIMO_TRY(std::vector<Venta> terminales, AbrirSinVentas(central, lugares, resumen, folios));
    std::vector<VentasDia> ventas;
    ventas.reserve(terminales.size());
    for (const Venta& terminal : terminales) {
        ventas.push_back(SimularJornada(terminal.puesto.catalogo, dia, terminal.puesto.ritmo,
                                        AlCerrar::QuedanAbiertas));
    }
    Numerar(ventas, folios);
    // Numbers are taken before they are used: after a failure they are missing, never repeated.
    QUIMO_TRY_VOID(central.GuardarFolios(folios));
    for (std::size_t i = 0; i < terminales.size(); ++i) {
        QUIMO_TRY_VOID(VenderEnTerminal(terminales[i].base, ventas[i]));
        resumen.terminales[static_cast<qsizetype>(terminales[i].renglon)].cifras =
            Cifras(ventas[i]);
    }
    return {};
}

Result<void> CrearCentral(Central& central, const QDate& hoy) {
    QUIMO_TRY_VOID(Traducido(data::CrearBase(central.Conexion())));
    QUIMO_TRY(auto transaccion, Traducido(Transaccion::Iniciar(central.Conexion())));
    QUIMO_TRY_VOID(Sembrar(central.Conexion(), hoy));
    return Traducido(transaccion.Confirmar());
}

Result<ResumenDemo> Montar(const Lugares& lugares, foundation::Dialogos& dialogos,
                           const data::Reloj& reloj, int dias) {
    const QDate hoy = reloj.Ahora().date();
    ResumenDemo resumen{.nueva = true, .dias_de_historia = dias};
    QUIMO_TRY_VOID(Traducido(dayclose::CrearCarpeta(lugares.Programa())));
    QUIMO_TRY_VOID(dayclose::EscribirPlantilla(lugares.Plantilla().toStdU16String()));
    QUIMO_TRY(const auto central,
              Central::Abrir(lugares.Central(), foundation::SiFalta::Crear, dialogos, reloj));
    QUIMO_TRY_VOID(Traducido(dayclose::EscribirEntero(lugares.Leeme(), kLeeme)));
    dialogos.Progreso(u"Creando el restaurante de demostración"_s);
    QUIMO_TRY_VOID(CrearCentral(*central, hoy));
    QUIMO_TRY(resumen.acceso, PrepararAcceso(*central, lugares.Clave()));
    QUIMO_TRY_VOID(Repartir(*central, lugares));
    dialogos.Progreso(u"Vendiendo la historia"_s);
    QUIMO_TRY(resumen.historia, VenderHistoria(*central, lugares, hoy, dias));
    dialogos.Progreso(u"Vendiendo el día en las terminales"_s);
    QUIMO_TRY_VOID(Repartir(*central, lugares));
    QUIMO_TRY_VOID(VenderHoy(*central, lugares, resumen));
    return resumen;
}

Error NoSePuedeEscribir(const QString& carpeta) {
    return {Error::Codigo::Archivo,
            u"No se puede escribir en la carpeta %1."_s.arg(carpeta).toStdString()};
}

// Moves what is complete from one folder to another; on failure all of it is back.
bool Mudar(const QString& origen, const QString& destino) {
    const QStringList nombres{u"quimo"_s, u"red"_s, u"central.db"_s, u"LEEME.txt"_s};
    for (qsizetype i = 0; i < nombres.size(); ++i) {
        if (QDir().rename(origen + u'/' + nombres[i], destino + u'/' + nombres[i])) continue;
        while (--i >= 0)
            QDir().rename(destino + u'/' + nombres[i], origen + u'/' + nombres[i]);
        return false;
    }
    return true;
}

// Sets it up in a folder of its own inside, and puts it in its place when it is complete.
Result<ResumenDemo> Estrenar(const Lugares& lugares, foundation::Dialogos& dialogos,
                             const data::Reloj& reloj, int dias) {
    if (!QDir().mkpath(lugares.raiz)) return NoSePuedeEscribir(lugares.raiz);
    const QTemporaryDir taller(lugares.raiz + u"/.quimo-demo-XXXXXX"_s);
    if (!taller.isValid()) return NoSePuedeEscribir(lugares.raiz);
    QUIMO_TRY(ResumenDemo resumen, Montar({taller.path()}, dialogos, reloj, dias));
    if (!Mudar(taller.path(), lugares.raiz)) return NoSePuedeEscribir(lugares.raiz);
    return resumen;
}

Result<ResumenDemo> Continuar(const Lugares& lugares, foundation::Dialogos& dialogos,
                              const data::Reloj& reloj) {
    QUIMO_TRY(const auto central,
              Central::Abrir(lugares.Central(), foundation::SiFalta::Fallar, dialogos, reloj));
    ResumenDemo resumen;
    QUIMO_TRY(resumen.acceso, PrepararAcceso(*central, lugares.Clave()));
    QUIMO_TRY_VOID(VenderHoy(*central, lugares, resumen));
    return resumen;
}

QString Linea(const VentasDeTerminal& terminal) {
    switch (terminal.estado) {
        case VentasDeTerminal::Estado::YaTeniaVentas:
            return terminal.terminal + u": ya tenía ventas; falta cerrar el día"_s;
        case VentasDeTerminal::Estado::SinBaseDeDatos:
            return terminal.terminal + u": su base de datos no está"_s;
        case VentasDeTerminal::Estado::Vendio:
            break;
    }
    const CifrasVentas& cifras = terminal.cifras;
    return u"%1: %2 comandas (%3 abiertas), %4 artículos (%5 anulados), %6"_s.arg(terminal.terminal)
        .arg(cifras.comandas)
        .arg(cifras.abiertas)
        .arg(cifras.articulos)
        .arg(cifras.anulados)
        .arg(QString::fromStdString(cifras.total.AMoneda()));
}

}  // namespace

Result<ResumenDemo> PrepararDemo(const QString& carpeta, foundation::Dialogos& dialogos,
                                 const data::Reloj& reloj, int dias_de_historia) {
    const Lugares lugares{QFileInfo(carpeta).absoluteFilePath()};
    const QFileInfo destino(lugares.raiz);
    const bool es_demo = QFileInfo(lugares.Central()).isFile() &&
                         QFileInfo(lugares.Leeme()).isFile() && QFileInfo(lugares.Red()).isDir();
    if (es_demo) {
        QUIMO_TRY(ResumenDemo continuada, Continuar(lugares, dialogos, reloj));
        continuada.archivo_clave = lugares.Clave();
        return continuada;
    }
    if (destino.exists() &&
        (!destino.isDir() ||
         !QDir(lugares.raiz).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot))) {
        return Error{
            Error::Codigo::Restriccion,
            u"%1 ya existe y no es un restaurante de demostración. Elija una carpeta nueva "
            "o vacía."_s.arg(carpeta)
                .toStdString()};
    }
    const bool ya_existia = destino.exists();
    auto resumen = Estrenar(lugares, dialogos, reloj, dias_de_historia);
    if (resumen) {
        resumen->archivo_clave = lugares.Clave();
    } else if (!ya_existia) {
        QDir().rmdir(lugares.raiz);
    }
    return resumen;
}

QStringList Lineas(const ResumenDemo& resumen) {
    QStringList lineas;
    if (resumen.nueva) {
        lineas << u"Historia: %1 días, %2 comandas, %3 artículos, %4"_s
                      .arg(resumen.dias_de_historia)
                      .arg(resumen.historia.comandas)
                      .arg(resumen.historia.articulos)
                      .arg(QString::fromStdString(resumen.historia.total.AMoneda()));
    }
    lineas << u"Fecha de trabajo: "_s + foundation::FechaTrabajoVisible(resumen.fecha_trabajo);
    for (const VentasDeTerminal& terminal : resumen.terminales)
        lineas << Linea(terminal);
    lineas << u"Para entrar: usuario %1, contraseña %2, con QUIMO_CLAVE_ARCHIVO=%3"_s.arg(
        resumen.acceso.usuario, resumen.acceso.contrasena, resumen.archivo_clave);
    return lineas;
}

}  // namespace quimo::demo
