// How long a catalogue of 20,000 products takes to open, to go to the next row and to take a
// keystroke, on the real windows. Prints the least, the median and the most of each, in
// milliseconds.

#include <algorithm>
#include <cstdio>

#include <QApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

#include "catalog/editores/editores.h"
#include "data/esquema.h"
#include "foundation/conector.h"
#include "ui/editores/ventana_editor.h"
#include "ui/principal/mdi_principal.h"

using namespace Qt::StringLiterals;

namespace {

using namespace quimo;

constexpr int kProductos = 20000;
constexpr int kVeces = 9;
constexpr int kPasos = 200;
constexpr double kPorMs = 1e6;

QString Datos() {
    QString sql =
        u"INSERT INTO Parametros (ID_Parametro,Valor_Cad) VALUES ('FECHA_TRABAJO','14112026')\n"
        "INSERT INTO Categoria (ID_Categoria,Nombre_Categoria,Tipo_Categoria) VALUES (1,'C','V')\n"
        "INSERT INTO Menu (ID_Menu,Nombre_Menu) VALUES (1,'Restaurante')\n"
        "INSERT INTO Menu (ID_Menu,Nombre_Menu) VALUES (2,'Bar')\n"
        "INSERT INTO Tipos_Impuesto (ID_Tipo_Impuesto,Nombre_Tipo_Impuesto) VALUES (1,'IVA')\n"_s;
    for (int i = 1; i <= kProductos; ++i) {
        sql +=
            u"INSERT INTO Producto (ID_Producto,Nombre_Completo,Nombre_Boton,Nombre_Cuenta,"
            "Existencia,Estado,ID_Categoria) VALUES (%1,'Producto de prueba %1','Prueba\\n%1',"
            "'Prueba %1',12.50,'A',1)\n"
            "INSERT INTO PreciosXMenu (ID_Menu,ID_Producto,Precio) VALUES (1,%1,35.50)\n"
            "INSERT INTO PreciosXMenu (ID_Menu,ID_Producto,Precio) VALUES (2,%1,40)\n"
            "INSERT INTO ImpuestosXProducto (ID_Tipo_Impuesto,ID_Producto) VALUES (1,%1)\n"_s.arg(
                i);
    }
    return sql;
}

void Contar(const char* que, QVector<double> ms) {
    std::sort(ms.begin(), ms.end());
    std::printf("%-12s %8.2f %8.2f %8.2f ms\n", que, ms.first(), ms[ms.size() / 2], ms.last());
}

/// A key to whatever has the focus, until everything is drawn.
double Tecla(int tecla, const QString& texto = {}) {
    QElapsedTimer reloj;
    reloj.start();
    QKeyEvent evento(QEvent::KeyPress, tecla, Qt::NoModifier, texto);
    QCoreApplication::sendEvent(QApplication::focusWidget(), &evento);
    QCoreApplication::processEvents();
    return static_cast<double>(reloj.nsecsElapsed()) / kPorMs;
}

double AbrirProductos(ui::MDIPrincipal& principal, foundation::ClsAdo& ado) {
    QElapsedTimer reloj;
    reloj.start();
    principal.Abrir(ui::VentanaEditor::Abrir(catalog::kOpProductos, ado));
    QCoreApplication::processEvents();
    return static_cast<double>(reloj.nsecsElapsed()) / kPorMs;
}

}  // namespace

int main(int argc, char* argv[]) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication aplicacion(argc, argv);
    const QTemporaryDir carpeta;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, carpeta.path());
    const data::RelojSistema reloj;
    ui::DialogosQt dialogos;
    foundation::ClsBitacora bitacora({.PArchivoLog = carpeta.filePath(u"log"_s), .PMsgBox = false},
                                     dialogos, reloj);
    foundation::ClsAdo ado(foundation::CrearConector(reloj, foundation::SiFalta::Crear), dialogos,
                           bitacora);
    QString servidor = u"embebido"_s;
    QString archivo = carpeta.filePath(u"central.db"_s);
    QString nadie;
    if (!ado.Conectar(servidor, archivo, nadie, nadie)) return 1;
    if (!data::CrearBase(ado.Conexion(), Datos())) return 1;

    foundation::EstadoSesion sesion;
    ui::MDIPrincipal principal({ado, sesion, reloj, dialogos});
    principal.show();
    if (!QTest::qWaitForWindowActive(&principal)) return 1;
    QVector<double> abrir;
    for (int i = 0; i < kVeces; ++i) {
        abrir << AbrirProductos(principal, ado);
        if (i + 1 < kVeces) principal.findChild<QAction*>(u"mnuArCerrar"_s)->trigger();
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    QVector<double> siguiente;
    for (int i = 0; i < kPasos; ++i)
        siguiente << Tecla(Qt::Key_PageUp);
    const double ultimo = Tecla(Qt::Key_End);
    Tecla(Qt::Key_F6);
    QVector<double> letra;
    for (int i = 0; i < kPasos / 4; ++i)
        letra << Tecla(Qt::Key_A, u"a"_s);
    const double guardar = Tecla(Qt::Key_F5);
    Contar("open", abrir);
    Contar("next row", siguiente);
    Contar("last row", {ultimo});
    Contar("keystroke", letra);
    Contar("save", {guardar});
    return 0;
}
