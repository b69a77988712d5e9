#include <QApplication>

#include "app/escritorio/escritorio.h"
#include "ui/controles/aspecto.h"

int main(int argc, char* argv[]) {
    QApplication aplicacion(argc, argv);
    QApplication::setApplicationName(QStringLiteral("quimo"));
    QApplication::setApplicationVersion(QStringLiteral(QUIMO_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("quimo"));
    // Between two windows there is none: the program says itself when it ends.
    QApplication::setQuitOnLastWindowClosed(false);
    quimo::ui::PonerTema(aplicacion);
    if (!quimo::ui::PonerIdioma(aplicacion)) {
        qWarning("quimo: faltan los textos de Qt en español (paquete qt6-translations-l10n)");
    }
    const quimo::data::RelojSistema reloj;
    quimo::app::Escritorio escritorio(reloj);
    QObject::connect(&escritorio, &quimo::app::Escritorio::Termino, &aplicacion,
                     [](int estado) { QApplication::exit(estado); });
    escritorio.Iniciar(QApplication::arguments().mid(1));
    return QApplication::exec();
}
