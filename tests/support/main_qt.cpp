#include <gtest/gtest.h>

#include <QApplication>
#include <QSettings>
#include <QTemporaryDir>

#include "ui/controles/aspecto.h"

namespace {

/// No test finds what another one left to be remembered.
class SinAjustes final : public testing::EmptyTestEventListener {
    // NOLINTNEXTLINE(readability-identifier-naming): named by GoogleTest
    void OnTestStart(const testing::TestInfo& /*prueba*/) override {
        QSettings(QStringLiteral("QUIMO"), QStringLiteral("QUIMO")).clear();
    }
};

}  // namespace

// The tests of windows: one application without a display, whose settings are nobody's own.
int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const QTemporaryDir ajustes;
    qputenv("XDG_CONFIG_HOME", ajustes.path().toUtf8());
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("LC_ALL", "C.UTF-8");
    QApplication aplicacion(argc, argv);
    QApplication::setApplicationVersion(QStringLiteral("0.0.0"));
    QApplication::setQuitOnLastWindowClosed(false);
    if (!quimo::ui::PonerIdioma(aplicacion)) return 1;
    testing::UnitTest::GetInstance()->listeners().Append(new SinAjustes);
    return RUN_ALL_TESTS();
}
