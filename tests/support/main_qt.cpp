#include <gtest/gtest.h>

#include <QApplication>
#include <QTemporaryDir>

#include "ui/controles/aspecto.h"

// The tests of windows: one application without a display, whose settings are nobody's own.
int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const QTemporaryDir ajustes;
    qputenv("XDG_CONFIG_HOME", ajustes.path().toUtf8());
    QApplication aplicacion(argc, argv);
    QApplication::setApplicationVersion(QStringLiteral("0.0.0"));
    QApplication::setQuitOnLastWindowClosed(false);
    if (!quimo::ui::PonerIdioma(aplicacion)) return 1;
    return RUN_ALL_TESTS();
}
