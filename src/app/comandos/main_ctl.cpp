#include <QCoreApplication>

#include "app/comandos/comando.h"

int main(int argc, char* argv[]) {
    QCoreApplication aplicacion(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("quimoctl"));
    QCoreApplication::setApplicationVersion(QStringLiteral(QUIMO_VERSION));
    const quimo::data::RelojSistema reloj;
    return quimo::app::EjecutarComando(QCoreApplication::arguments().mid(1), {reloj});
}
